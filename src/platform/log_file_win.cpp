// The log's file work: one open, append and close per line, under one process-wide lock that
// also covers the rotation, so that lines of different threads never mix and no line falls
// between the size check and the move.
#include "platform/log_file_win.h"

#include <windows.h>

#include <mutex>
#include <string>

#include "diagnostics/log.h"
#include "library/data_paths.h"

namespace {

// Made on the first line, deleted at process exit. Held through std::lock_guard: a line's
// strings are allocated under it, and a failed allocation must not leave the log locked for good.
struct LogLock {
    CRITICAL_SECTION section;
    LogLock() { InitializeCriticalSection(&section); }
    ~LogLock() { DeleteCriticalSection(&section); }
    void lock() { EnterCriticalSection(&section); }
    void unlock() { LeaveCriticalSection(&section); }
};

std::string ToUtf8(const std::wstring& text) {
    if (text.empty()) return {};
    const int size = WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()),
                                         nullptr, 0, nullptr, nullptr);
    std::string utf8(size > 0 ? size : 0, '\0');
    if (size > 0)
        WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), &utf8[0], size,
                            nullptr, nullptr);
    return utf8;
}

void RotateIfLarge(const std::wstring& path, const std::wstring& oldPath) {
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data) &&
        LogNeedsRotation(data.nFileSizeLow))
        MoveFileExW(path.c_str(), oldPath.c_str(), MOVEFILE_REPLACE_EXISTING);
}

} // namespace

void AppendLogLine(const std::wstring& folder, const std::wstring& text) {
    static LogLock lock;
    const std::lock_guard<LogLock> hold(lock);
    SYSTEMTIME now;
    GetLocalTime(&now);
    const LogTime time{now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond};
    const std::string utf8 = ToUtf8(LogLine(time, GetCurrentProcessId(), text));
    const std::wstring path = folder + L"\\" + kLogFileName;
    RotateIfLarge(path, folder + L"\\" + kOldLogFileName);
    HANDLE file = CreateFileW(path.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE,
                              nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file != INVALID_HANDLE_VALUE) {
        DWORD written = 0;
        WriteFile(file, utf8.data(), static_cast<DWORD>(utf8.size()), &written, nullptr);
        CloseHandle(file);
    }
}

void Log::Write(const std::wstring& text) { AppendLogLine(DataPaths::Get().dataDir, text); }
