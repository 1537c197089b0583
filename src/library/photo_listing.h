#pragma once

#include <string>
#include <vector>

// The .jpg files directly in `folder`, as full paths, newest first.
//
// Stand-in until the photo listing lands: it gives the empty list, the answer for a folder that
// can't be read. The library issue replaces the body.
std::vector<std::wstring> ListPhotos(const std::wstring& folder);
