#pragma once

#include <windows.h>

#include <string>
#include <thread>

namespace e2e {

// A window of the driver with a thread and message loop of its own: the saver talks to it
// from another process (a preview child sends its parent messages as it is made, the settings
// handoff posts to the tray), so it must keep pumping while the test thread waits.
class DriverWindow {
public:
    struct Options {
        std::wstring className;
        DWORD style = WS_OVERLAPPEDWINDOW;
        int clientWidth = 0, clientHeight = 0;
        bool show = true; // shown without activation, so it never takes the focus
    };

    explicit DriverWindow(Options options);
    DriverWindow(const DriverWindow&) = delete;
    DriverWindow& operator=(const DriverWindow&) = delete;
    ~DriverWindow() { Destroy(); }

    HWND Hwnd() const { return hwnd; }
    // Destroys the window on its own thread and waits for that thread to end.
    void Destroy();

private:
    HWND hwnd = nullptr;
    std::thread thread;
};

// A top-level window with a client area of `width` x `height`, where the system's settings
// page would show the saver's preview.
DriverWindow::Options PreviewHostOptions(int width, int height);
// The companion's tray window as the saver looks for it: hidden, of class "LumivaneTray".
DriverWindow::Options FakeTrayOptions();
// How many "Lumivane.OpenSettings" messages the driver's windows have received so far.
int SettingsRequests();

} // namespace e2e
