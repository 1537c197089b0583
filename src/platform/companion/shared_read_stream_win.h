#pragma once

#include <windows.h>

#include <objidl.h>
#include <wrl/client.h>

#include <string>

// A read-only stream over the file at `path`, opened so that others may go on reading, writing,
// renaming and deleting it while we read: the user's own photo must never be held against them.
// (The streams that the imaging component and the shell open for a name don't share deletion.)
// Null when the file can't be opened.
Microsoft::WRL::ComPtr<IStream> OpenSharedReadStream(const std::wstring& path);
