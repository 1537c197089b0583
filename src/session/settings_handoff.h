#pragma once

#include <cstdint>
#include <functional>
#include <string>

// What the hand-over of the settings may do; src/platform/ carries it out with a window message,
// the shell and a message box.
struct HandoffCalls {
    // Finds the companion's tray window; if there is one, lets it come to the front, posts it the
    // settings request without waiting, and gives true.
    std::function<bool()> postToTray;
    // Starts `program` with `parameters`; false when it couldn't be started.
    std::function<bool(const std::wstring& program, const std::wstring& parameters)> start;
    // Shows `text` under `title` and returns once the user has closed it.
    std::function<void(const std::wstring& text, const std::wstring& title)> showMessage;
};

// Hands the user over to the companion application's settings: to its running tray instance,
// else by starting it from the folder of `exePath` (the saver's own file; with no backslash in
// it, by its file name alone), else with a message, in the user's language, that says to open it.
void HandOffSettings(const std::wstring& exePath, const HandoffCalls& calls);

// The settings mode: HandOffSettings with the system's calls and the saver's own path.
void OpenSettings();
// The number of the registered message "Lumivane.OpenSettings", fetched once per process.
uint32_t OpenSettingsMessage();
