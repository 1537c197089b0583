#pragma once

#include <string>
#include <vector>

#include "library/file_tree.h"

// The .jpg files directly in `folder` (no trailing backslash), as full paths, newest first.
// Folders are left out, hidden and system files are not; a folder that is missing or can't be
// read gives the empty list. Nothing on disk changes.
std::vector<std::wstring> ListPhotos(const std::wstring& folder);

// The same on a given tree.
std::vector<std::wstring> ListPhotosIn(FileTree& tree, const std::wstring& folder);
