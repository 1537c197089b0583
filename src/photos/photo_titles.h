#pragma once

#include <array>
#include <string>

// Whether captions show: element 0 for ordinary photos, element 1 for imported ones.
using TitleFlags = std::array<bool, 2>;

// A photo's caption and its sort key both come from its file name. The folder separator is the
// backslash alone; lengths count 16-bit characters.

// The text behind the last backslash of `path` (possibly empty), or the whole path without one.
std::wstring PhotoFileName(const std::wstring& path);

// The file name without its last 13 characters (the tail, such as "-z1234567.jpg"); empty for a
// name of 13 characters or fewer. Nothing else is changed.
std::wstring PhotoTitleStem(const std::wstring& path);

// What is shown with the photo: its title stem when its kind's flag is on, else empty. A path
// whose 13th character from the end is "-" and 12th is "z" is an imported photo (flag 1); all
// others are ordinary (flag 0).
std::wstring PhotoCaption(const std::wstring& path, const TitleFlags& flags);

// True if `a` sorts before `b`: their file names compared as the runtime's _wcsicmp does in its
// default locale (A to Z folded to lower case, then unsigned code units). Folders don't count.
bool ComparePhotoNames(const std::wstring& a, const std::wstring& b);
