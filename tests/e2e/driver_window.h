#pragma once

#include <windows.h>

#include <future>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace e2e {

// A window of the driver with its own thread and message loop. The saver talks to it from
// another process (a preview child sends its parent messages as it is made, the settings
// handoff posts to the tray), so it must keep pumping while the test thread waits and polls.
class DriverWindow {
public:
    struct Options {
        std::wstring className;
        std::wstring title;
        DWORD style = WS_OVERLAPPEDWINDOW;
        DWORD exStyle = 0;
        int x = 0, y = 0;
        int clientWidth = 0, clientHeight = 0;
        bool show = true;            // shown without activation, so it never takes the focus
        std::vector<UINT> recorded;  // messages whose arrival is counted
    };

    explicit DriverWindow(Options options);
    DriverWindow(const DriverWindow&) = delete;
    DriverWindow& operator=(const DriverWindow&) = delete;
    ~DriverWindow();

    HWND Hwnd() const { return hwnd; }
    // Destroys the window on its own thread and waits for that thread to end.
    void Destroy();
    // How many times `message` (one of Options::recorded) has arrived.
    int Count(UINT message) const;

private:
    static LRESULT CALLBACK Procedure(HWND, UINT, WPARAM, LPARAM);
    void Run(std::promise<HWND>* created);

    Options options;
    HWND hwnd = nullptr;
    std::thread thread;
    mutable std::mutex lock;
    std::vector<UINT> arrived;
};

// A top-level window with a client area of `width` x `height`, where the system's settings
// page would show the saver's preview.
DriverWindow::Options PreviewHostOptions(int width = 320, int height = 200);
// The companion's tray window as the saver looks for it: class "LumivaneTray", recording the
// registered message "Lumivane.OpenSettings".
DriverWindow::Options FakeTrayOptions();
UINT OpenSettingsMessage();

} // namespace e2e
