// Feeds arbitrary bytes to the JSON reader: it must never crash, overflow its stack or read
// outside the text, a failed parse must leave a null value, and a tree must keep every object's
// keys beside its values.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "library/json_reader.h"

namespace {

void Check(const JsonValue& value) {
    if (value.type == JsonValue::Object && value.keys.size() != value.items.size()) std::abort();
    if (value.type != JsonValue::Object && !value.keys.empty()) std::abort();
    for (const JsonValue& item : value.items) Check(item);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    JsonValue value;
    if (JsonValue::Parse(text, value)) {
        Check(value);
        value.GetString("data-dir", "");
    } else if (value.type != JsonValue::Null || !value.items.empty()) {
        std::abort();
    }
    return 0;
}
