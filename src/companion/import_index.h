#pragma once

#include <cstdint>
#include <string>
#include <vector>

// The companion's record of the copies it wrote into the screen-saver folder, kept as a text
// file in the data folder. A run writes, replaces and deletes only the copies that it lists.

// One source photo and what became of it. Times are FILETIME units (100 ns since 1601).
struct ImportRecord {
    std::wstring sourcePath; // the photo's full path
    uint64_t sourceSize = 0; // its size in bytes and last-write time when it was last handled
    uint64_t sourceTime = 0;
    std::wstring copyName; // the copy's file name in the screen-saver folder; empty: no copy
    // With a copy, its size in bytes. Without one: 0 when the source couldn't be decoded (it isn't
    // tried again until it changes), else the size its copy takes, or was reckoned to take, when
    // the disk budget left it out.
    uint64_t copySize = 0;
    uint64_t takenTime = 0; // when the photo was taken; 0 when it doesn't say
    std::wstring root;      // the chosen folder it was found in

    // Whether the source couldn't be decoded when it was last handled.
    bool Failed() const { return copyName.empty() && copySize == 0; }
};

// The first line of an index file: a format word and the version.
inline constexpr char kImportIndexHeader[] = "lumivane-import 1";

// Whether `text` can stand in a field of the index: UTF-8 holds it unchanged, and it has no tab,
// line feed or carriage return. A source whose path can't be recorded is never imported, since
// its copy couldn't be found again.
bool IsRecordableText(const std::wstring& text);

// Whether `record` can be written and read back: its texts are recordable, its paths aren't
// empty, and its copy, if it has one, is a plain file name with the imported mark.
bool IsValidRecord(const ImportRecord& record);

// The index as UTF-8 text: the header line, then one line per valid record (others are left
// out) with its seven fields in the order of ImportRecord, separated by tabs, numbers in decimal,
// each line ending in a line feed.
std::string SerialiseImportIndex(const std::vector<ImportRecord>& records);

// The records of an index file. A line that doesn't parse into a valid record, and a last line
// without its line feed (a file cut short), are passed over; text with another first line (a
// later version, or no index at all) gives no records.
std::vector<ImportRecord> ParseImportIndex(const std::string& text);
