#pragma once

#include <string>

#include "library/file_tree.h"

// The folder that the companion's settings file names under "data-dir", without trailing
// slashes beyond the third character; empty when the file, the document or the key isn't usable.
std::wstring ReadDataDirSetting(FileTree& tree);
