#pragma once

#include <string>

#include "library/file_tree.h"

// The photo directory, under which the photo tree hangs: the stored value ImportsDir, returned
// untested; or, when it is empty, a folder chosen now and stored for good.
std::wstring LinkPhotoDirectory(FileTree& tree, const std::wstring& dataDir);

// The first usable of: the companion's "data-dir" (unless it lies inside the companion's own
// roaming folder), the documents folder (unless a cloud service keeps it), "C:\LumivaneItems",
// and `dataDir`, which needs no test. A candidate must pass the write test.
std::wstring ChoosePhotoDirectory(FileTree& tree, const std::wstring& dataDir);

// Whether `path` is `folder` or lies below it, ignoring the case of A to Z; only a backslash
// separates.
bool IsInsideFolder(const std::wstring& path, const std::wstring& folder);

// Whether `path` holds the name of a cloud service anywhere, ignoring case.
bool IsCloudFolder(const std::wstring& path);

// The line "linked: photo directory ..." of the last choice, empty when none was made. It can't
// be logged while the data folders are being worked out.
const std::wstring& PhotoDirectoryLine();
