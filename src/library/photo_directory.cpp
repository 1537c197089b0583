#include "library/photo_directory.h"

#include <cwctype>

#include "library/companion.h"
#include "library/data_dir_setting.h"
#include "library/settings.h"
#include "library/wide_fold.h"

namespace {

std::wstring& LastLine() {
    static std::wstring line;
    return line;
}

} // namespace

std::wstring LinkPhotoDirectory(FileTree& tree, const std::wstring& dataDir) {
    std::wstring stored = Settings::ReadString(kValueImportsDir);
    if (!stored.empty()) return stored;
    const std::wstring chosen = ChoosePhotoDirectory(tree, dataDir);
    // Stored for every outcome, so the choice is made once per user; a write that fails makes
    // the next start choose again.
    Settings::WriteString(kValueImportsDir, chosen);
    LastLine() = L"linked: photo directory " + chosen;
    return chosen;
}

std::wstring ChoosePhotoDirectory(FileTree& tree, const std::wstring& dataDir) {
    const std::wstring dataDirSetting = ReadDataDirSetting(tree);
    const std::wstring roaming = tree.RoamingAppData();
    // The companion's own folder is never a photo directory, however it is named in its file.
    const bool inside = !roaming.empty() &&
                        IsInsideFolder(dataDirSetting, roaming + L"\\" + kCompanionRoamingFolder);
    if (!dataDirSetting.empty() && !inside && tree.CanWriteTo(dataDirSetting))
        return dataDirSetting;
    const std::wstring documents = tree.Documents();
    if (!documents.empty() && !IsCloudFolder(documents) && tree.CanWriteTo(documents))
        return documents;
    // A folder at the root of the system drive would take on the drive's rights, under which
    // every account of the PC may change what is made there: this one is the user's own from the
    // start, so that no other account reads or replaces the photos, nor passes its write test
    // and shares the tree. It is never made any other way.
    if ((tree.CreateOwnFolder(kFixedItemsFolder) || Exists(tree, kFixedItemsFolder)) &&
        tree.CanWriteTo(kFixedItemsFolder))
        return kFixedItemsFolder;
    return dataDir;
}

bool IsInsideFolder(const std::wstring& path, const std::wstring& folder) {
    if (folder.empty() || path.size() < folder.size()) return false;
    if (CompareFolded(path, folder, folder.size()) != 0) return false;
    return path.size() == folder.size() || path[folder.size()] == L'\\';
}

bool IsCloudFolder(const std::wstring& path) {
    std::wstring lower = path;
    for (wchar_t& c : lower) c = static_cast<wchar_t>(std::towlower(static_cast<wint_t>(c)));
    for (const wchar_t* word : {L"onedrive", L"icloud", L"dropbox", L"google drive"})
        if (lower.find(word) != std::wstring::npos) return true;
    return false;
}

const std::wstring& PhotoDirectoryLine() { return LastLine(); }
