#include "library/memory_registry.h"

#include "library/settings_key.h"

namespace {

class MemoryKey : public SettingsKey {
public:
    ValueQuery Query(const std::wstring& name, void* buffer, uint32_t capacity) override {
        const auto found = TestRegistry().values.find(name);
        if (found == TestRegistry().values.end()) return {};
        const auto& bytes = found->second.bytes;
        const auto size = static_cast<uint32_t>(bytes.size());
        if (buffer && size <= capacity) std::copy(bytes.begin(), bytes.end(), (uint8_t*)buffer);
        return {!buffer || size <= capacity, found->second.type, size};
    }
    void Set(const std::wstring& name, uint32_t type, const void* data, uint32_t bytes) override {
        const auto* first = static_cast<const uint8_t*>(data);
        TestRegistry().values[name] = {type, {first, first + bytes}};
        TestRegistry().writes.push_back(name);
    }
    ValueEntry Enumerate(uint32_t index) override {
        const auto& values = TestRegistry().values;
        if (index >= values.size()) return {kNoMoreValues, {}, 0, 0};
        const auto& [name, value] = *std::next(values.begin(), index);
        if (name.size() >= 256) return {234, {}, 0, 0}; // ERROR_MORE_DATA
        return {0, name, value.type, static_cast<uint32_t>(value.bytes.size())};
    }
};

} // namespace

MemoryRegistry& TestRegistry() {
    static MemoryRegistry registry;
    return registry;
}

std::unique_ptr<SettingsKey> MemoryRegistry::OpenKey(KeyAccess access) {
    if (access == KeyAccess::ReadWrite) keyExists = true;
    if (!keyExists) return nullptr;
    return std::make_unique<MemoryKey>();
}
