#include "library/memory_registry.h"

#include <algorithm>

MemoryRegistry& TestRegistry() {
    static MemoryRegistry registry;
    return registry;
}

namespace {

// One opening of the key.
struct MemoryKey : SettingsKey {
    MemoryRegistry& registry = TestRegistry();

    ValueQuery Query(const std::wstring& name, void* buffer, uint32_t capacity) override {
        if (!registry.values.count(name)) return {};
        const auto& [type, bytes] = registry.values[name];
        const bool fits = bytes.size() <= capacity;
        if (buffer && fits) std::copy(bytes.begin(), bytes.end(), static_cast<uint8_t*>(buffer));
        return {!buffer || fits, type, static_cast<uint32_t>(bytes.size())};
    }
    void Set(const std::wstring& name, uint32_t type, const void* data, uint32_t bytes) override {
        const auto* first = static_cast<const uint8_t*>(data);
        registry.values[name] = {type, {first, first + bytes}};
        registry.writes.push_back(name);
    }
    ValueEntry Enumerate(uint32_t index) override {
        if (index >= registry.values.size()) return {kNoMoreValues, {}, 0, 0};
        const auto& [name, value] = *std::next(registry.values.begin(), index);
        if (name.size() >= 256) return {234, {}, 0, 0}; // ERROR_MORE_DATA
        return {0, name, value.first, static_cast<uint32_t>(value.second.size())};
    }
};

} // namespace

std::unique_ptr<SettingsKey> MemoryRegistry::OpenKey(KeyAccess) {
    return std::make_unique<MemoryKey>();
}
