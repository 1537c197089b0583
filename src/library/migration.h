#pragma once

#include <string>

#include "library/file_tree.h"

// Brings the data folder from its older name "LumivaneW" to "Lumivane", both inside `base` (the
// local application data folder): by one rename, or item by item when the new folder exists
// too. No file is overwritten or deleted; only an emptied folder is removed. Afterwards the
// string options that named the old folder name the new one. Returns the folder to use: the new
// one, or the old one when it couldn't be moved.
std::wstring MigrateDataFolder(FileTree& tree, const std::wstring& base);

// Moves everything of `from` into `to` that finds a free place, entering only real folders that
// exist on both sides (never links or junctions), and removes `from` if it was emptied. True
// when `from` is gone.
bool MergeFolder(FileTree& tree, const std::wstring& from, const std::wstring& to);

// The line that the last migration composed ("data: moved ..."), empty when there was nothing
// to move. It can't be logged while the data folders are being worked out.
const std::wstring& MigrationLine();
