#include "library/memory_registry.h"

#include "library/settings_key.h"

namespace {

constexpr int32_t kMoreData = 234; // ERROR_MORE_DATA

class MemoryKey : public SettingsKey {
public:
    explicit MemoryKey(MemoryRegistry& store) : registry(store) {}

    ValueQuery Query(const std::wstring& name, void* buffer, uint32_t capacity) override {
        const auto found = registry.values.find(name);
        if (found == registry.values.end()) return {};
        const auto& bytes = found->second.bytes;
        const ValueQuery answer{true, found->second.type, static_cast<uint32_t>(bytes.size())};
        if (!buffer) return answer;
        if (bytes.size() > capacity) return {false, answer.type, answer.size};
        std::copy(bytes.begin(), bytes.end(), static_cast<uint8_t*>(buffer));
        return answer;
    }

    void Set(const std::wstring& name, uint32_t type, const void* data, uint32_t bytes) override {
        const auto* first = static_cast<const uint8_t*>(data);
        registry.values[name] = {type, std::vector<uint8_t>(first, first + bytes)};
        registry.writes.push_back(name);
    }

    ValueEntry Enumerate(uint32_t index) override {
        if (index >= registry.values.size()) return {kNoMoreValues, {}, 0, 0};
        const auto& [name, value] = *std::next(registry.values.begin(), index);
        ValueEntry entry{0, name, value.type, static_cast<uint32_t>(value.bytes.size())};
        if (name.size() >= 256) entry = {kMoreData, {}, 0, 0};
        return entry;
    }

private:
    MemoryRegistry& registry;
};

} // namespace

void MemoryRegistry::Put(const std::wstring& name, uint32_t type, std::vector<uint8_t> bytes) {
    keyExists = true;
    values[name] = {type, std::move(bytes)};
}

void MemoryRegistry::PutString(const std::wstring& name, const std::wstring& text) {
    auto bytes = Utf16(text);
    bytes.insert(bytes.end(), {0, 0});
    Put(name, kRegistryString, std::move(bytes));
}

std::vector<uint8_t> MemoryRegistry::Utf16(const std::wstring& text) {
    std::vector<uint8_t> bytes;
    for (const wchar_t c : text) {
        bytes.push_back(static_cast<uint8_t>(c & 0xFF));
        bytes.push_back(static_cast<uint8_t>((c >> 8) & 0xFF));
    }
    return bytes;
}

std::optional<std::wstring> MemoryRegistry::String(const std::wstring& name) const {
    const auto found = values.find(name);
    if (found == values.end() || found->second.type != kRegistryString) return std::nullopt;
    std::wstring text;
    const auto& bytes = found->second.bytes;
    for (size_t i = 0; i + 1 < bytes.size() && (bytes[i] | bytes[i + 1]) != 0; i += 2)
        text.push_back(static_cast<wchar_t>(bytes[i] | bytes[i + 1] << 8));
    return text;
}

MemoryRegistry& TestRegistry() {
    static MemoryRegistry registry;
    return registry;
}

std::unique_ptr<SettingsKey> OpenSettingsKey(KeyAccess access) {
    MemoryRegistry& registry = TestRegistry();
    if (access == KeyAccess::ReadWrite) registry.keyExists = true;
    if (!registry.keyExists) return nullptr;
    return std::make_unique<MemoryKey>(registry);
}
