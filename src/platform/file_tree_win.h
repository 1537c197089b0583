#pragma once

#include <string>

// Makes `folder` with its ancestors, then creates ".lumivane-write-test" in it with
// delete-on-close: true if that worked. The system deletes the file when it is closed, so the
// test leaves nothing behind; a folder that it made stays.
bool CanWriteTo(const std::wstring& folder);
