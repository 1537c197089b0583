#include "library/photo_listing.h"

#include <algorithm>
#include <cstdint>

namespace {

// One photo of a listing, with the time that orders it.
struct PhotoFile {
    std::wstring path;
    uint64_t writeTime;
};

} // namespace

std::vector<std::wstring> ListPhotos(const std::wstring& folder) {
    return ListPhotosIn(SystemFileTree(), folder);
}

std::vector<std::wstring> ListPhotosIn(FileTree& tree, const std::wstring& folder) {
    // Only the system's search chooses the files; their names get no other test.
    std::vector<FolderEntry> entries;
    if (!tree.List(folder + L"\\*.jpg", entries)) return {};
    std::vector<PhotoFile> files;
    for (FolderEntry& entry : entries) {
        if ((entry.attributes & kDirectoryBit) != 0) continue;
        files.push_back({folder + L"\\" + entry.name, entry.writeTime});
    }
    // Newest first; equal times in any order (the session's name sort is the stable one).
    std::sort(files.begin(), files.end(),
              [](const PhotoFile& a, const PhotoFile& b) { return a.writeTime > b.writeTime; });
    std::vector<std::wstring> paths;
    paths.reserve(files.size());
    for (PhotoFile& file : files) paths.push_back(std::move(file.path));
    return paths;
}
