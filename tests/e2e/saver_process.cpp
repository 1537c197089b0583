#include "e2e/saver_process.h"

#include <cstdlib>

namespace e2e {

namespace {

std::wstring& OverriddenPath() {
    static std::wstring path;
    return path;
}

std::wstring DriverFolder() {
    wchar_t buffer[MAX_PATH] = {};
    DWORD length = GetModuleFileNameW(nullptr, buffer, MAX_PATH);
    std::wstring path(buffer, length);
    return path.substr(0, path.find_last_of(L"\\/") + 1);
}

bool FileExists(const std::wstring& path) {
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

} // namespace

void SetSaverPath(const std::wstring& path) { OverriddenPath() = path; }

std::wstring SaverPath() {
    if (!OverriddenPath().empty()) return OverriddenPath();
    if (const wchar_t* fromEnvironment = _wgetenv(L"LUMIVANE_SCR"); fromEnvironment && *fromEnvironment)
        return fromEnvironment;
    const std::wstring folder = DriverFolder();
    for (const wchar_t* candidate : {L"Lumivane.scr", L"..\\Lumivane.scr"})
        if (FileExists(folder + candidate)) return folder + candidate;
    return folder + L"..\\Lumivane.scr";
}

SaverProcess::~SaverProcess() {
    Terminate();
    if (process) CloseHandle(process);
}

bool SaverProcess::Start(const std::wstring& arguments) {
    std::wstring commandLine = L"\"" + SaverPath() + L"\"";
    if (!arguments.empty()) commandLine += L" " + arguments;
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION info{};
    if (!CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                        &startup, &info))
        return false;
    CloseHandle(info.hThread);
    process = info.hProcess;
    id = info.dwProcessId;
    return true;
}

bool SaverProcess::Running() const {
    return process && WaitForSingleObject(process, 0) == WAIT_TIMEOUT;
}

std::optional<DWORD> SaverProcess::WaitForExit(DWORD timeoutMs) {
    if (!process || WaitForSingleObject(process, timeoutMs) != WAIT_OBJECT_0) return std::nullopt;
    DWORD code = 0;
    GetExitCodeProcess(process, &code);
    return code;
}

void SaverProcess::Terminate() {
    if (!Running()) return;
    TerminateProcess(process, 0xDEAD);
    WaitForSingleObject(process, 5000);
}

} // namespace e2e
