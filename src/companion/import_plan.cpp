#include "companion/import_plan.h"

#include <algorithm>
#include <map>

#include "companion/import_naming.h"
#include "library/system_text.h"

namespace {

uint64_t AddSaturating(uint64_t a, uint64_t b) { return a > UINT64_MAX - b ? UINT64_MAX : a + b; }

// A chosen folder as compared: lower case, without a trailing backslash unless it is a drive's.
std::wstring RootKey(const std::wstring& root) {
    std::wstring key = LowerCase(root);
    while (key.size() > 3 && key.back() == L'\\') key.pop_back();
    return key;
}

// A copy that competes for the budget: one to keep (no source) or one to write.
struct Candidate {
    uint64_t time = 0;   // taken, else last written: the newest win
    uint64_t bytes = 0;  // known, or reckoned for a copy not written yet
    std::wstring key;    // the source's path in lower case, which settles ties
    ImportRecord record; // the record that stays if kept; for a write, the previous one
    const ImportSource* source = nullptr;
    std::wstring root;
};

class Planner {
public:
    explicit Planner(const ImportInputs& inputs) : in(inputs) {}

    ImportPlan Run() {
        TakeStock();
        for (const ImportRecord& record : in.index) MatchRecord(record);
        for (const auto& [key, source] : sources)
            if (!matched.count(key)) AddWrite(*source, key, ImportRecord{});
        Admit();
        // Every file there now is off limits to a new copy, but for a write's own previous one.
        plan.occupied = present;
        return std::move(plan);
    }

private:
    const ImportInputs& in;
    ImportPlan plan;
    std::map<std::wstring, const ImportSource*> sources; // by lower-case path, the first found
    std::set<std::wstring> matched;                      // lower-case paths with a record
    std::set<std::wstring> unreadableRoots;
    std::set<std::wstring> present; // lower-case names in the screen-saver folder
    std::vector<Candidate> candidates;
    uint64_t fixedBytes = 0; // the copies under unreadable folders
    uint64_t average = kCopyEstimate;

    bool IsPresent(const std::wstring& name) const {
        return !name.empty() && present.count(LowerCase(name)) != 0;
    }

    void TakeStock() {
        std::set<std::wstring> listed;
        uint64_t total = 0, count = 0;
        for (const ImportRecord& record : in.index) {
            if (!record.copyName.empty()) listed.insert(LowerCase(record.copyName));
            if (record.copySize > 0) {
                total = AddSaturating(total, record.copySize);
                ++count;
            }
        }
        if (count > 0) average = std::max<uint64_t>(total / count, 1);
        for (const std::wstring& name : in.present) {
            present.insert(LowerCase(name));
            if (!listed.count(LowerCase(name))) plan.foreign.push_back(name);
        }
        for (const ImportRoot& root : in.roots)
            if (!root.readable) unreadableRoots.insert(RootKey(root.path));
        for (const ImportSource& source : in.sources)
            if (source.root < in.roots.size() && IsRecordableText(source.path) &&
                IsRecordableText(in.roots[source.root].path) && !source.path.empty())
                Found(source);
    }

    // A source under two chosen folders (one inside the other) belongs to the first of them.
    void Found(const ImportSource& source) {
        const auto [entry, added] = sources.emplace(LowerCase(source.path), &source);
        if (!added && source.root < entry->second->root) entry->second = &source;
    }

    void MatchRecord(const ImportRecord& record) {
        const std::wstring key = LowerCase(record.sourcePath);
        if (!matched.insert(key).second) return; // a second record of one source: the first holds
        const auto found = sources.find(key);
        if (found == sources.end()) return Unmatched(record);
        const ImportSource& source = *found->second;
        if (record.sourceSize != source.size || record.sourceTime != source.writeTime ||
            (!record.Failed() && !IsPresent(record.copyName)))
            return AddWrite(source, key, record);
        ImportRecord kept = record;
        kept.sourcePath = source.path;
        kept.root = in.roots[source.root].path;
        if (record.Failed()) return plan.records.push_back(kept);
        const uint64_t time = record.takenTime != 0 ? record.takenTime : record.sourceTime;
        candidates.push_back({time, record.copySize, key, kept, nullptr, {}});
    }

    void Unmatched(const ImportRecord& record) {
        if (unreadableRoots.count(RootKey(record.root))) {
            if (!record.copyName.empty()) fixedBytes = AddSaturating(fixedBytes, record.copySize);
            return plan.records.push_back(record);
        }
        if (IsPresent(record.copyName)) plan.deletes.push_back(record.copyName);
    }

    void AddWrite(const ImportSource& source, const std::wstring& key,
                  const ImportRecord& previous) {
        const uint64_t time = previous.takenTime != 0 ? previous.takenTime : source.writeTime;
        const uint64_t bytes = previous.copySize != 0 ? previous.copySize : average;
        candidates.push_back({time, bytes, key, previous, &source, in.roots[source.root].path});
    }

    void Admit() {
        std::sort(candidates.begin(), candidates.end(), [](const Candidate& a, const Candidate& b) {
            return a.time != b.time ? a.time > b.time : a.key < b.key;
        });
        const uint64_t room = in.budget > fixedBytes ? in.budget - fixedBytes : 0;
        uint64_t used = 0;
        bool admitting = true;
        for (Candidate& candidate : candidates) {
            admitting = admitting && candidate.bytes <= room - used;
            if (admitting) used += candidate.bytes;
            if (candidate.source && admitting) {
                plan.writes.push_back(
                    {*candidate.source, candidate.root, candidate.record, candidate.bytes});
            } else if (candidate.source) {
                LeaveOutWrite(candidate);
            } else if (admitting) {
                plan.records.push_back(candidate.record);
            } else {
                LeaveOut(candidate.record);
            }
        }
    }

    // The source stays known without a copy, with the bytes its copy takes, so that later
    // runs judge it by the same measure and don't write and delete it by turns.
    void LeaveOut(ImportRecord record) {
        if (IsPresent(record.copyName)) plan.deletes.push_back(record.copyName);
        record.copyName.clear();
        plan.records.push_back(record);
    }

    void LeaveOutWrite(const Candidate& candidate) {
        const ImportSource& source = *candidate.source;
        ImportRecord record = candidate.record;
        record.sourcePath = source.path;
        record.sourceSize = source.size;
        record.sourceTime = source.writeTime;
        record.copySize = candidate.bytes;
        record.root = candidate.root;
        LeaveOut(record);
    }
};

} // namespace

ImportPlan PlanImport(const ImportInputs& inputs) { return Planner(inputs).Run(); }

std::wstring ClaimCopyName(ImportPlan& plan, const ImportWrite& write, const std::wstring& title) {
    const std::wstring name = ImportedFileName(title, SourceIdentifier(write.source.path));
    const std::wstring key = LowerCase(name);
    const bool own = key == LowerCase(write.previous.copyName);
    if (!plan.occupied.insert(key).second && !own) return {};
    return name;
}

ImportRecord RecordOfWrite(const ImportWrite& write, const std::wstring& copyName,
                           uint64_t copySize, uint64_t takenTime) {
    const ImportSource& source = write.source;
    const uint64_t size = copyName.empty() ? 0 : copySize;
    return {source.path, source.size, source.writeTime, copyName, size, takenTime, write.root};
}

ImportSummary SummariseIndex(const std::vector<ImportRecord>& records) {
    ImportSummary summary;
    for (const ImportRecord& record : records) {
        if (record.copyName.empty()) continue;
        ++summary.photos;
        summary.bytes = AddSaturating(summary.bytes, record.copySize);
    }
    return summary;
}
