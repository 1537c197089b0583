#include "library/json_reader.h"

#include <cstdlib>

#include "library/utf8.h"

namespace {

constexpr int kMaxDepth = 64;

// The state of one parse: the whole text and a byte offset into it.
struct JsonReader {
    const std::string& text;
    size_t pos = 0;

    bool AtEnd() const { return pos >= text.size(); }
    // The byte at `pos`; 0 at the end of the text.
    char Peek() const { return AtEnd() ? '\0' : text[pos]; }
    void SkipSpace() {
        while (!AtEnd() &&
               (text[pos] == ' ' || text[pos] == '\t' || text[pos] == '\n' || text[pos] == '\r'))
            ++pos;
    }
    bool StartsWith(const char* word) const {
        return text.compare(pos, std::char_traits<char>::length(word), word) == 0;
    }

    bool Value(JsonValue& out, int depth);
    bool Object(JsonValue& out, int depth);
    bool Array(JsonValue& out, int depth);
    bool String(std::string& out);
    bool Escape(std::string& out);
    bool Hex4(uint32_t& out);
};

bool JsonReader::Value(JsonValue& out, int depth) {
    if (depth > kMaxDepth) return false;
    SkipSpace();
    const char c = Peek();
    if (c == '{') return Object(out, depth);
    if (c == '[') return Array(out, depth);
    if (c == '"') {
        out.type = JsonValue::String;
        return String(out.text);
    }
    // Nothing is tested behind the words: a letter that follows fails at the enclosing rule.
    if (StartsWith("true") || StartsWith("false")) {
        out.type = JsonValue::Boolean;
        out.boolean = text[pos] == 't';
        pos += out.boolean ? 4 : 5;
        return true;
    }
    if (StartsWith("null")) {
        pos += 4;
        return true;
    }
    if (c == '-' || (c >= '0' && c <= '9')) {
        // The runtime's strtod decides what a number is; what it accepts beyond JSON passes.
        const char* start = text.c_str() + pos;
        char* end = nullptr;
        const double number = std::strtod(start, &end);
        if (end == start) return false;
        pos += static_cast<size_t>(end - start);
        out.type = JsonValue::Number;
        out.number = number;
        return true;
    }
    return false;
}

bool JsonReader::Object(JsonValue& out, int depth) {
    out.type = JsonValue::Object;
    ++pos;
    SkipSpace();
    if (Peek() == '}') {
        ++pos;
        return true;
    }
    for (;;) {
        SkipSpace();
        if (Peek() != '"') return false;
        std::string key;
        if (!String(key)) return false;
        SkipSpace();
        if (Peek() != ':') return false;
        ++pos;
        JsonValue item;
        if (!Value(item, depth + 1)) return false;
        out.keys.push_back(std::move(key));
        out.items.push_back(std::move(item));
        SkipSpace();
        if (AtEnd()) return false;
        const char next = text[pos++];
        if (next == '}') return true;
        if (next != ',') return false;
    }
}

bool JsonReader::Array(JsonValue& out, int depth) {
    out.type = JsonValue::Array;
    ++pos;
    SkipSpace();
    if (Peek() == ']') {
        ++pos;
        return true;
    }
    for (;;) {
        JsonValue item;
        if (!Value(item, depth + 1)) return false;
        out.items.push_back(std::move(item));
        SkipSpace();
        if (AtEnd()) return false;
        const char next = text[pos++];
        if (next == ']') return true;
        if (next != ',') return false;
    }
}

bool JsonReader::String(std::string& out) {
    ++pos;
    out.clear();
    while (!AtEnd()) {
        const char c = text[pos++];
        if (c == '"') return true;
        if (c != '\\') {
            // Control characters and invalid UTF-8 are copied as they are.
            out += c;
        } else if (!Escape(out)) {
            return false;
        }
    }
    return false;
}

bool JsonReader::Escape(std::string& out) {
    if (AtEnd()) return false;
    const char c = text[pos++];
    switch (c) {
    case '"':
    case '/':
    case '\\': out += c; return true;
    case 'b': out += '\x08'; return true;
    case 'f': out += '\x0C'; return true;
    case 'n': out += '\x0A'; return true;
    case 'r': out += '\x0D'; return true;
    case 't': out += '\x09'; return true;
    case 'u': break;
    default: return false;
    }
    uint32_t u = 0;
    if (!Hex4(u)) return false;
    uint32_t code = u;
    if (u >= 0xDC00 && u <= 0xDFFF) {
        code = 0xFFFD;
    } else if (u >= 0xD800 && u <= 0xDBFF) {
        code = 0xFFFD;
        // A high surrogate pairs only with an escape that follows at once; a second escape
        // that isn't a low surrogate is used up all the same.
        if (text.compare(pos, 2, "\\u") == 0) {
            pos += 2;
            uint32_t v = 0;
            if (!Hex4(v)) return false;
            if (v >= 0xDC00 && v <= 0xDFFF) code = 0x10000 + ((u - 0xD800) << 10) + (v - 0xDC00);
        }
    }
    AppendUtf8(out, code);
    return true;
}

bool JsonReader::Hex4(uint32_t& out) {
    out = 0;
    for (int i = 0; i < 4; ++i) {
        const char c = Peek();
        uint32_t digit = 0;
        if (c >= '0' && c <= '9') digit = static_cast<uint32_t>(c - '0');
        else if (c >= 'a' && c <= 'f') digit = static_cast<uint32_t>(c - 'a' + 10);
        else if (c >= 'A' && c <= 'F') digit = static_cast<uint32_t>(c - 'A' + 10);
        else return false;
        out = out * 16 + digit;
        ++pos;
    }
    return true;
}

} // namespace

bool JsonValue::Parse(const std::string& text, JsonValue& out) {
    out = JsonValue();
    JsonReader reader{text};
    bool parsed = reader.Value(out, 0);
    if (parsed) {
        reader.SkipSpace();
        parsed = reader.AtEnd();
    }
    if (!parsed) out = JsonValue();
    return parsed;
}

const JsonValue& JsonValue::Find(const std::string& key) const {
    static const JsonValue none;
    if (type == Object) {
        for (size_t i = 0; i < keys.size(); ++i)
            if (keys[i] == key) return items[i];
    }
    return none;
}

std::string JsonValue::GetString(const std::string& key, const std::string& fallback) const {
    const JsonValue& value = Find(key);
    return value.type == String ? value.text : fallback;
}
