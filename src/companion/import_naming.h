#pragma once

#include <string>

// The names of the copies that the import writes into the screen-saver folder. A copy is named
// "<title>-z<identifier>.jpg": the saver cuts the last 13 characters off a file name for the
// caption, and a hyphen and a lower-case "z" at the start of those 13 mark an imported photo.

// The 7 characters (0-9, a-z) that name the source at `sourcePath` for good: a 64-bit FNV-1a hash
// of the path's UTF-16 units after LowerCase, low byte of each unit first, reduced modulo 36^7 and
// written in base 36, most significant digit first. Copies of files of the same name in two
// folders differ, and a later run finds the same name. Never change it: copies already written
// carry it.
std::wstring SourceIdentifier(const std::wstring& sourcePath);

// Whether a file name without its extension is one that a camera or a phone counts up
// (IMG_0001, DSC01234, PXL_20240812_123456789.MP, 20240812_123456, ...) rather than one a
// person gave. Case doesn't matter.
bool IsCameraCounterName(const std::wstring& stem);

// The caption of the copy of `sourcePath`: the file name without its extension; for a camera's
// counter, the nearest folder that a person named, then ", " and `takenText` (the month and year
// the photo was taken, in the user's language) unless that is empty. Folders that cameras make
// (DCIM, 100CANON, Camera) and folders named by numbers or dates (2024, 08) are passed over. A
// counter with no such folder above it (a card's root) gives `takenText`, or the counter itself
// when there is no date either: it is still better than no caption.
std::wstring ImportTitle(const std::wstring& sourcePath, const std::wstring& takenText);

// The longest title a copy's name holds, in UTF-16 units: with the 13 characters of the tail the
// name stays far below the 255 units of a file name and leaves room for long folder paths.
inline constexpr size_t kMaxTitleUnits = 100;

// The file name of a copy: `title` made fit for a file name, then "-z", `identifier` and ".jpg".
// Control characters and \ / : * ? " < > | become spaces, runs of spaces become one, spaces and
// dots at either end go, and the title is cut to kMaxTitleUnits without splitting a surrogate
// pair. An empty title stays empty: the name is then the tail alone, which the saver shows
// without a caption (a stand-in word would be English in every language).
std::wstring ImportedFileName(const std::wstring& title, const std::wstring& identifier);

// The saver's mark of an imported photo on a file name: at least 13 characters, a hyphen 13th
// from the end and a lower-case "z" 12th, and ".jpg" at the end in any case.
bool IsImportedFileName(const std::wstring& name);
