#pragma once

#include <cstdint>
#include <string>
#include <vector>

// One node of a JSON document: a small reader for the companion's settings file. It reads only,
// and builds a tree of plain values.
struct JsonValue {
    enum : int32_t { Null = 0, Boolean = 1, Number = 2, String = 3, Array = 4, Object = 5 };

    int32_t type = Null;
    bool boolean = false;
    double number = 0;
    std::string text;              // a string's value, in UTF-8
    std::vector<std::string> keys; // an object's keys in file order; duplicates stay
    std::vector<JsonValue> items;  // an array's elements, or an object's values beside `keys`

    // Parses the UTF-8 document `text` into `out`: true on success, otherwise `out` is null.
    // Containers nest at most 64 levels below the root, and only white space may follow it.
    static bool Parse(const std::string& text, JsonValue& out);
    // The first value of this object under `key`, compared byte for byte; a shared null value
    // when this isn't an object or has no such key.
    const JsonValue& Find(const std::string& key) const;
    // The text of Find(key) when that is a string, else `fallback`.
    std::string GetString(const std::string& key, const std::string& fallback) const;
};
