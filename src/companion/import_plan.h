#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "companion/import_index.h"

// What one import run does, worked out before it touches a file: which sources it writes, which
// copies it deletes and which records stay. It never plans to write over or delete a file that
// the index doesn't list.

// A chosen folder, and whether it could be listed on this run. A folder that is gone, can't be
// read or lies on a drive that isn't there keeps all its records and copies as they are.
struct ImportRoot {
    std::wstring path;
    bool readable = false;
};

// A photo file found under a chosen folder on this run.
struct ImportSource {
    std::wstring path;
    uint64_t size = 0;
    uint64_t writeTime = 0; // FILETIME units
    size_t root = 0;        // index into the run's roots; a source with no such root is passed over
};

// Everything a plan is made of.
struct ImportInputs {
    std::vector<ImportRoot> roots;
    std::vector<ImportSource> sources; // found under the readable roots, in any order
    std::vector<ImportRecord> index;
    std::vector<std::wstring> present; // the file names in the screen-saver folder now
    uint64_t budget = 0;               // the most bytes the copies may take
};

// A source to decode and write. Its copy replaces `previous.copyName` when the source has a copy
// already: the new copy goes in by rename, and the previous one is deleted afterwards if the new
// name differs or the write fails. Until the write is done, `previous` (if its sourcePath isn't
// empty) is the source's record in the index.
struct ImportWrite {
    ImportSource source;
    std::wstring root; // the chosen folder, as the record keeps it
    ImportRecord previous;
    uint64_t estimate = 0; // the bytes the copy was reckoned to take within the budget
};

// The copies in the screen-saver folder and the bytes they take, for the dialog.
struct ImportSummary {
    size_t photos = 0;
    uint64_t bytes = 0;
};

// A run's plan.
struct ImportPlan {
    std::vector<ImportWrite> writes;   // the newest first
    std::vector<std::wstring> deletes; // copies to delete, each listed in the index and present
    std::vector<ImportRecord> records; // the index after the run, but for the writes
    std::vector<std::wstring> foreign; // present files the index doesn't list: never touched
    std::set<std::wstring> occupied;   // lower-case names that no new copy may take
};

// The bytes reckoned for a copy not written yet when no copy has been written at all: a copy
// of 2 to 8 megapixels at the import's quality. Later runs reckon with the average of the copies
// written, and with a source's own copy once it has one.
inline constexpr uint64_t kCopyEstimate = 1500000;

// The plan for `inputs`. Sources are matched to records by path, ignoring case; a source under
// two chosen folders counts once, under the first. New sources, changed ones (another size or
// time), and known ones whose copy is missing or was left out for the budget are written; a
// source that failed is tried again only once it changes. A record whose source wasn't found is
// dropped, and its copy deleted, when its folder is readable or no longer chosen; it stays as it
// is when its folder couldn't be read. The budget goes first to the copies of unreadable folders,
// which can't be removed; the rest is filled by the newest photos (taken time, else last-write
// time), up to the first that no longer fits. Copies left out are deleted, and their sources
// recorded without a copy.
ImportPlan PlanImport(const ImportInputs& inputs);

// The file name for the copy of `write` under `title`, or empty when another file has that name:
// one the index doesn't list, or another source's copy. Nothing is then written, and the source is
// recorded as failed, so a copy that lost its record is neither written over nor duplicated. A
// name given out is taken for the rest of the run.
std::wstring ClaimCopyName(ImportPlan& plan, const ImportWrite& write, const std::wstring& title);

// The record of a write once it is done: `copyName` and `copySize` as written, or empty and 0
// when the source couldn't be decoded or no name was free; `takenTime` 0 when unknown.
ImportRecord RecordOfWrite(const ImportWrite& write, const std::wstring& copyName,
                           uint64_t copySize, uint64_t takenTime);

// How many copies `records` list and the bytes they take.
ImportSummary SummariseIndex(const std::vector<ImportRecord>& records);
