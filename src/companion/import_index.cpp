#include "companion/import_index.h"

#include <optional>

#include "companion/import_naming.h"
#include "companion/utf8_text.h"
#include "library/system_text.h"

namespace {

constexpr size_t kFieldCount = 7;

// A plain name inside the screen-saver folder, never a way out of it.
bool IsPlainCopyName(const std::wstring& name) {
    return IsImportedFileName(name) && name.find_first_of(L"\\/:") == std::wstring::npos;
}

void AppendText(std::string& line, const std::wstring& text) {
    std::string bytes;
    Utf8FromWide(text, bytes);
    line += bytes;
}

std::vector<std::string> SplitTabs(const std::string& line) {
    std::vector<std::string> fields;
    size_t start = 0;
    for (size_t tab = line.find('\t'); tab != std::string::npos; tab = line.find('\t', start)) {
        fields.push_back(line.substr(start, tab - start));
        start = tab + 1;
    }
    fields.push_back(line.substr(start));
    return fields;
}

// Decimal digits only, and no more than 64 bits hold.
std::optional<uint64_t> ParseNumber(const std::string& text) {
    if (text.empty() || text.size() > 20) return std::nullopt;
    uint64_t value = 0;
    for (const char c : text) {
        if (c < '0' || c > '9') return std::nullopt;
        const auto digit = static_cast<uint64_t>(c - '0');
        if (value > (UINT64_MAX - digit) / 10) return std::nullopt;
        value = value * 10 + digit;
    }
    return value;
}

std::optional<ImportRecord> ParseRecord(const std::string& line) {
    const std::vector<std::string> fields = SplitTabs(line);
    if (fields.size() != kFieldCount) return std::nullopt;
    const auto sourceSize = ParseNumber(fields[1]);
    const auto sourceTime = ParseNumber(fields[2]);
    const auto copySize = ParseNumber(fields[4]);
    const auto takenTime = ParseNumber(fields[5]);
    if (!sourceSize || !sourceTime || !copySize || !takenTime) return std::nullopt;
    ImportRecord record{WideFromUtf8(fields[0]), *sourceSize, *sourceTime,
                        WideFromUtf8(fields[3]), *copySize,   *takenTime,
                        WideFromUtf8(fields[6])};
    if (!IsValidRecord(record)) return std::nullopt;
    return record;
}

} // namespace

bool IsRecordableText(const std::wstring& text) {
    std::string bytes;
    return Utf8FromWide(text, bytes) && text.find_first_of(L"\t\n\r") == std::wstring::npos;
}

bool IsValidRecord(const ImportRecord& record) {
    return !record.sourcePath.empty() && !record.root.empty() &&
           IsRecordableText(record.sourcePath) && IsRecordableText(record.root) &&
           IsRecordableText(record.copyName) &&
           (record.copyName.empty() || IsPlainCopyName(record.copyName));
}

std::string SerialiseImportIndex(const std::vector<ImportRecord>& records) {
    std::string text = std::string(kImportIndexHeader) + "\n";
    for (const ImportRecord& record : records) {
        if (!IsValidRecord(record)) continue;
        AppendText(text, record.sourcePath);
        for (const uint64_t number : {record.sourceSize, record.sourceTime})
            text += "\t" + std::to_string(number);
        text += "\t";
        AppendText(text, record.copyName);
        for (const uint64_t number : {record.copySize, record.takenTime})
            text += "\t" + std::to_string(number);
        text += "\t";
        AppendText(text, record.root);
        text += "\n";
    }
    return text;
}

std::vector<ImportRecord> ParseImportIndex(const std::string& text) {
    std::vector<ImportRecord> records;
    size_t end = text.find('\n');
    std::string header = text.substr(0, end);
    if (!header.empty() && header.back() == '\r') header.pop_back();
    if (end == std::string::npos || header != kImportIndexHeader) return records;
    for (size_t start = end + 1; (end = text.find('\n', start)) != std::string::npos;
         start = end + 1) {
        std::string line = text.substr(start, end - start);
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (auto record = ParseRecord(line)) records.push_back(std::move(*record));
    }
    return records;
}
