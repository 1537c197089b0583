#pragma once

#include <array>
#include <string>

// Whether captions show: element 0 for ordinary photos, element 1 for imported ones.
using TitleFlags = std::array<bool, 2>;

// Orders two photo paths by their file names (the text behind the last backslash, or the whole
// path without one), ignoring case: below 0, 0 or above 0.
//
// Stand-in until the photo titles land: it folds only the letters A to Z, which is what the
// system's comparison does for every name of plain letters and digits. The library issue
// replaces the body with the system's full folding.
int ComparePhotoNames(const std::wstring& a, const std::wstring& b);
