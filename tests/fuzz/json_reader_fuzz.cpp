// Feeds arbitrary bytes to the JSON reader: it must never crash, overflow its stack or read
// outside the text, and a failed parse must leave a null value.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "library/json_reader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    JsonValue value;
    const bool parsed =
        JsonValue::Parse(std::string(reinterpret_cast<const char*>(data), size), value);
    if (!parsed && (value.type != JsonValue::Null || !value.items.empty())) std::abort();
    return 0;
}
