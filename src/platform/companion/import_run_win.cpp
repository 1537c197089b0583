#include "platform/companion/import_run_win.h"

#include <windows.h>

#include <knownfolders.h>
#include <shlobj.h>
#include <wincodec.h>
#include <wrl/client.h>

#include <set>
#include <vector>

#include "companion/import_index.h"
#include "companion/import_naming.h"
#include "companion/import_plan.h"
#include "companion/import_size.h"
#include "companion/settings_form.h"
#include "diagnostics/string_table.h"
#include "library/companion.h"
#include "library/data_paths.h"
#include "library/settings.h"
#include "library/system_text.h"
#include "platform/companion/photo_import_win.h"
#include "platform/win_handles.h"

using Microsoft::WRL::ComPtr;

namespace {

// Held for the length of a run, so that the tray's runs and a "--import" take turns.
constexpr wchar_t kImportMutex[] = L"Local\\Lumivane.Import";
constexpr wchar_t kIndexFile[] = L"\\Imports.txt";
// A copy is written under a name that doesn't end in ".jpg", so the saver never lists it half
// written, and renamed into place once the index names it.
constexpr wchar_t kPartSuffix[] = L".lumivane-part";
// Copies staged before the index is saved and they are renamed in: the index is written once per
// batch rather than once per photo.
constexpr size_t kBatch = 16;
// Folders nested deeper than this are passed over; it also bounds the recursion.
constexpr int kMaxDepth = 64;
// Cloud placeholders (files on demand) and offline files: reading them would download them.
constexpr DWORD kRemoteAttributes = FILE_ATTRIBUTE_OFFLINE | 0x00400000 | 0x00040000;

uint64_t TimeValue(const FILETIME& time) {
    return uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime;
}

std::wstring Extension(const std::wstring& name) {
    const size_t dot = name.rfind(L'.');
    return dot == std::wstring::npos ? std::wstring() : LowerCase(name.substr(dot));
}

// The extensions of the formats that every system's imaging component decodes. Wine's registry
// leaves some of its decoders without extensions, so these count even when the list doesn't say.
constexpr const wchar_t* kBuiltInExtensions[] = {L".jpg", L".jpeg", L".jpe", L".jfif", L".png",
                                                 L".bmp", L".dib",  L".gif", L".tif",  L".tiff"};

// The file extensions of every image decoder installed: ".jpg", ".png", ".heic", ...
std::set<std::wstring> DecoderExtensions(IWICImagingFactory* factory) {
    std::set<std::wstring> extensions(std::begin(kBuiltInExtensions), std::end(kBuiltInExtensions));
    ComPtr<IEnumUnknown> decoders;
    if (FAILED(factory->CreateComponentEnumerator(WICDecoder, WICComponentEnumerateDefault,
                                                  &decoders)))
        return extensions;
    for (ComPtr<IUnknown> item; decoders->Next(1, &item, nullptr) == S_OK; item.Reset()) {
        ComPtr<IWICBitmapCodecInfo> info;
        UINT length = 0;
        if (FAILED(item.As(&info)) || FAILED(info->GetFileExtensions(0, nullptr, &length)) ||
            length == 0)
            continue;
        std::wstring list(length, L'\0');
        if (FAILED(info->GetFileExtensions(length, list.data(), &length))) continue;
        list.resize(wcsnlen(list.c_str(), list.size()));
        for (size_t start = 0; start <= list.size();) {
            const size_t comma = std::min(list.find_first_of(L",;", start), list.size());
            if (comma > start) extensions.insert(LowerCase(list.substr(start, comma - start)));
            start = comma + 1;
        }
    }
    return extensions;
}

// A folder can be listed now (it may be empty); false when it is gone, can't be read or lies on
// a drive that isn't there.
bool Readable(const std::wstring& folder) {
    WIN32_FIND_DATAW data;
    const HANDLE find = FindFirstFileExW((folder + L"\\*").c_str(), FindExInfoBasic, &data,
                                         FindExSearchNameMatch, nullptr, 0);
    if (find == INVALID_HANDLE_VALUE) return GetLastError() == ERROR_FILE_NOT_FOUND;
    FindClose(find);
    return true;
}

struct Listing {
    const std::set<std::wstring>& extensions;
    const std::wstring& skipped; // the photo tree, lower case: never a source of itself
    const std::atomic<bool>& stop;
    std::vector<ImportSource>& sources;
};

void ListFolder(const Listing& listing, const std::wstring& folder, size_t root, int depth) {
    if (depth > kMaxDepth || listing.stop) return;
    const std::wstring lower = LowerCase(folder);
    if (lower == listing.skipped || lower.rfind(listing.skipped + L"\\", 0) == 0) return;
    WIN32_FIND_DATAW data;
    const HANDLE find = FindFirstFileExW((folder + L"\\*").c_str(), FindExInfoBasic, &data,
                                         FindExSearchNameMatch, nullptr, FIND_FIRST_EX_LARGE_FETCH);
    if (find == INVALID_HANDLE_VALUE) return;
    std::vector<std::wstring> folders;
    do {
        const std::wstring name = data.cFileName;
        if (name == L"." || name == L"..") continue;
        // Links and junctions are passed over: they may lead in circles or off the disk.
        if (data.dwFileAttributes & (FILE_ATTRIBUTE_REPARSE_POINT | kRemoteAttributes)) continue;
        const std::wstring path = folder + L"\\" + name;
        if (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) {
            folders.push_back(path);
        } else if (listing.extensions.count(Extension(name))) {
            listing.sources.push_back({path, uint64_t{data.nFileSizeHigh} << 32 | data.nFileSizeLow,
                                       TimeValue(data.ftLastWriteTime), root});
        }
    } while (FindNextFileW(find, &data));
    FindClose(find);
    for (const std::wstring& sub : folders) ListFolder(listing, sub, root, depth + 1);
}

std::vector<std::wstring> FilesIn(const std::wstring& folder, const std::wstring& pattern) {
    std::vector<std::wstring> names;
    WIN32_FIND_DATAW data;
    const HANDLE find = FindFirstFileExW((folder + L"\\" + pattern).c_str(), FindExInfoBasic, &data,
                                         FindExSearchNameMatch, nullptr, 0);
    if (find == INVALID_HANDLE_VALUE) return names;
    do {
        if (!(data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)) names.push_back(data.cFileName);
    } while (FindNextFileW(find, &data));
    FindClose(find);
    return names;
}

bool ReadWholeFile(const std::wstring& path, std::string& bytes) {
    UniqueHandle file(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                  OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    LARGE_INTEGER size{};
    if (!file.Valid() || !GetFileSizeEx(file.Get(), &size) || size.QuadPart > (64 << 20))
        return false;
    bytes.resize(static_cast<size_t>(size.QuadPart));
    DWORD read = 0;
    return bytes.empty() ||
           (ReadFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr) &&
            read == bytes.size());
}

// Writes the index beside itself and renames it over the old one, so a run that is cut off
// leaves one whole index, old or new.
void SaveIndex(const std::wstring& path, const std::vector<ImportRecord>& records) {
    const std::string text = SerialiseImportIndex(records);
    const std::wstring fresh = path + L".new";
    {
        UniqueHandle file(CreateFileW(fresh.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                      FILE_ATTRIBUTE_NORMAL, nullptr));
        DWORD written = 0;
        if (!file.Valid() ||
            !WriteFile(file.Get(), text.data(), static_cast<DWORD>(text.size()), &written,
                       nullptr) ||
            written != text.size() || !FlushFileBuffers(file.Get()))
            return;
    }
    MoveFileExW(fresh.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH);
}

BOOL CALLBACK AddMonitor(HMONITOR monitor, HDC, LPRECT, LPARAM list) {
    MONITORINFO info{};
    info.cbSize = sizeof info;
    // The process is per-monitor aware, so these are the monitor's physical pixels.
    if (GetMonitorInfoW(monitor, &info))
        reinterpret_cast<std::vector<ImageSize>*>(list)->push_back(
            {static_cast<uint32_t>(info.rcMonitor.right - info.rcMonitor.left),
             static_cast<uint32_t>(info.rcMonitor.bottom - info.rcMonitor.top)});
    return TRUE;
}

// When a photo was taken, by the camera's clock, as a system time and in FILETIME units; false
// when the file doesn't say or it is no real date.
bool TakenAt(const TakenDate& taken, SYSTEMTIME& date, uint64_t& time) {
    if (!taken.Known()) return false;
    date = {};
    date.wYear = taken.year;
    date.wMonth = taken.month;
    date.wDay = taken.day;
    date.wHour = taken.hour;
    date.wMinute = taken.minute;
    date.wSecond = taken.second;
    FILETIME value{};
    if (!SystemTimeToFileTime(&date, &value)) return false;
    time = TimeValue(value);
    return true;
}

// The locale that names the months in photo titles: the chosen language's, else empty for the
// user's own.
std::wstring TitleLocale() {
    const std::wstring language = Settings::ReadString(kValueLanguage);
    for (const wchar_t* code : kLanguageCodes)
        if (language == code) return language;
    return {};
}

// The month and year of `date` in `locale` ("August 2024"); empty when that can't be written.
std::wstring MonthAndYear(const SYSTEMTIME& date, const std::wstring& locale) {
    wchar_t text[80] = {};
    if (!GetDateFormatEx(locale.empty() ? LOCALE_NAME_USER_DEFAULT : locale.c_str(), 0, &date,
                         L"MMMM yyyy", text, 80, nullptr))
        return {};
    return text;
}

// One copy of a batch, decoded under its part name and waiting to be renamed into place.
struct Staged {
    std::wstring part;     // empty when nothing was written
    std::wstring name;     // the copy's name
    std::wstring previous; // the copy it replaces, deleted once the new one is in
};

// The index as it stands between batches: the plan's records, the writes done, and the records
// of writes still to come, whose old copies are still there.
std::vector<ImportRecord> CurrentIndex(const ImportPlan& plan,
                                       const std::vector<ImportRecord>& done, size_t next) {
    std::vector<ImportRecord> records = plan.records;
    records.insert(records.end(), done.begin(), done.end());
    for (size_t i = next; i < plan.writes.size(); ++i)
        if (!plan.writes[i].previous.sourcePath.empty()) records.push_back(plan.writes[i].previous);
    return records;
}

} // namespace

std::wstring PicturesFolder() {
    PWSTR path = nullptr;
    std::wstring folder;
    if (SUCCEEDED(SHGetKnownFolderPath(FOLDERID_Pictures, 0, nullptr, &path))) folder = path;
    CoTaskMemFree(path);
    return folder;
}

std::vector<std::wstring> ImportFolders() { return ReadSettingsForm(PicturesFolder()).folders; }

ImportOutcome RunImport(const std::function<void(size_t done, size_t total)>& progress,
                        const std::atomic<bool>& stop) {
    ImportOutcome outcome;
    UniqueHandle mutex(CreateMutexW(nullptr, FALSE, kImportMutex));
    if (!mutex.Valid()) return outcome;
    for (DWORD wait;
         (wait = WaitForSingleObject(mutex.Get(), 500)) != WAIT_OBJECT_0 && wait != WAIT_ABANDONED;)
        if (stop || wait == WAIT_FAILED) return outcome;
    struct Release {
        HANDLE mutex;
        ~Release() { ReleaseMutex(mutex); }
    } release{mutex.Get()};

    ComPtr<IWICImagingFactory> factory;
    if (FAILED(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                                IID_PPV_ARGS(&factory))))
        return outcome;
    const DataPaths& paths = DataPaths::Get();
    const std::wstring& target = paths.screenSaverDir;
    const std::wstring indexPath = paths.dataDir + kIndexFile;
    // Part files of a run that was cut off: ours by their suffix, which no photo has.
    for (const std::wstring& part : FilesIn(target, std::wstring(L"*") + kPartSuffix))
        DeleteFileW((target + L"\\" + part).c_str());

    ImportInputs inputs;
    std::string indexText;
    ReadWholeFile(indexPath, indexText);
    inputs.index = ParseImportIndex(indexText);
    const size_t photosBefore = SummariseIndex(inputs.index).photos;
    inputs.budget = ImportBudgetBytes();
    const std::set<std::wstring> extensions = DecoderExtensions(factory.Get());
    const std::wstring skipped = LowerCase(paths.itemsDir);
    const Listing listing{extensions, skipped, stop, inputs.sources};
    for (const std::wstring& folder : ImportFolders()) {
        inputs.roots.push_back({folder, Readable(folder)});
        if (inputs.roots.back().readable) ListFolder(listing, folder, inputs.roots.size() - 1, 0);
    }
    if (stop) return outcome;
    inputs.present = FilesIn(target, L"*");
    ImportPlan plan = PlanImport(inputs);

    for (const std::wstring& name : plan.deletes) DeleteFileW((target + L"\\" + name).c_str());
    std::vector<ImageSize> monitors;
    EnumDisplayMonitors(nullptr, nullptr, AddMonitor, reinterpret_cast<LPARAM>(&monitors));
    const ImageSize box = CopyTargetBox(monitors);
    const std::wstring titleLocale = TitleLocale();
    const auto copySize = [box](ImageSize upright) { return CopySize(upright, box); };

    std::vector<ImportRecord> done;
    size_t next = 0;
    while (next < plan.writes.size() && !stop) {
        std::vector<Staged> staged;
        for (; next < plan.writes.size() && staged.size() < kBatch && !stop; ++next) {
            const ImportWrite& write = plan.writes[next];
            Staged copy{target + L"\\~" + SourceIdentifier(write.source.path) + kPartSuffix,
                        {},
                        write.previous.copyName};
            ImportedPhotoInfo info;
            SYSTEMTIME date{};
            uint64_t takenTime = 0;
            if (ImportPhoto(write.source.path, copy.part, copySize, info, factory.Get())) {
                const std::wstring month = TakenAt(info.taken, date, takenTime)
                                               ? MonthAndYear(date, titleLocale)
                                               : std::wstring();
                copy.name = ClaimCopyName(plan, write, ImportTitle(write.source.path, month));
            }
            if (copy.name.empty()) {
                DeleteFileW(copy.part.c_str());
                copy.part.clear();
            }
            done.push_back(RecordOfWrite(write, copy.name,
                                         copy.name.empty() ? 0 : info.writtenBytes, takenTime));
            staged.push_back(std::move(copy));
            progress(next + 1, plan.writes.size());
        }
        // The index names the new copies before they appear: a run cut off between the two
        // leaves a listed copy missing, which the next run writes, never an unlisted one.
        SaveIndex(indexPath, CurrentIndex(plan, done, next));
        for (const Staged& copy : staged) {
            const std::wstring final = target + L"\\" + copy.name;
            if (!copy.part.empty() &&
                !MoveFileExW(copy.part.c_str(), final.c_str(), MOVEFILE_REPLACE_EXISTING))
                DeleteFileW(copy.part.c_str());
            if (!copy.previous.empty() && LowerCase(copy.previous) != LowerCase(copy.name))
                DeleteFileW((target + L"\\" + copy.previous).c_str());
            outcome.written += !copy.part.empty();
        }
    }
    const std::vector<ImportRecord> records = CurrentIndex(plan, done, next);
    // Unchanged, the index isn't written: its folder may lie inside a chosen one, and a write
    // would wake the next run.
    if (SerialiseImportIndex(records) != indexText) SaveIndex(indexPath, records);
    const ImportSummary summary = SummariseIndex(records);
    outcome.ran = !stop;
    outcome.photos = summary.photos;
    outcome.bytes = summary.bytes;
    outcome.firstPhotos = photosBefore == 0 && summary.photos > 0;
    return outcome;
}
