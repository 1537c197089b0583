#pragma once

#include <windows.h>

#include <optional>
#include <string>

namespace e2e {

// Where Lumivane.scr is: `--scr <path>` on the driver's command line, else the LUMIVANE_SCR
// variable, else beside the driver or one folder up (build/win/tests/.. holds the saver).
std::wstring SaverPath();
void SetSaverPath(const std::wstring& path);

// One started saver process. Whatever is still running when the object goes away is
// terminated, so a failed scenario never leaves a saver on the screen for the next one.
class SaverProcess {
public:
    SaverProcess() = default;
    SaverProcess(const SaverProcess&) = delete;
    SaverProcess& operator=(const SaverProcess&) = delete;
    ~SaverProcess();

    // Starts the saver with `arguments` behind its quoted path; false if CreateProcessW failed.
    bool Start(const std::wstring& arguments);
    bool Running() const;
    // The exit code once the process has ended within `timeoutMs`, nothing otherwise.
    std::optional<DWORD> WaitForExit(DWORD timeoutMs);
    void Terminate();

    DWORD Id() const { return id; }
    HANDLE Handle() const { return process; }

private:
    HANDLE process = nullptr;
    DWORD id = 0;
};

} // namespace e2e
