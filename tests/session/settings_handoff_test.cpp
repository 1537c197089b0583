// The hand-over of the settings: tray first, then the companion program, then the message.
#include <gtest/gtest.h>

#include "diagnostics/string_table.h"
#include "session/settings_handoff.h"

namespace {

TEST(SettingsHandoff, TrayFirstThenTheCompanionBesideTheSaverThenTheMessage) {
    const std::wstring box = std::wstring(L"box ") + kOpenSettingsText + L" | Lumivane";
    struct Case {
        bool tray, starts;
        std::wstring exePath;
        std::vector<std::wstring> calls;
    } const cases[] = {
        {true, true, L"C:\\Windows\\System32\\Lumivane.scr", {L"tray"}},
        {false, true, L"C:\\Program Files\\L\\Lumivane.scr", {L"tray", L"start C:\\Program Files\\L\\Lumivane.exe --settings"}},
        {false, false, L"D:\\Lumivane.scr", {L"tray", L"start D:\\Lumivane.exe --settings", box}},
        {false, false, L"Lumivane.scr", {L"tray", L"start Lumivane.exe --settings", box}},
    };
    for (const Case& c : cases) {
        std::vector<std::wstring> calls;
        const auto tray = [&] { return calls.push_back(L"tray"), c.tray; };
        const auto start = [&](const std::wstring& program, const std::wstring& parameters) {
            return calls.push_back(L"start " + program + L" " + parameters), c.starts;
        };
        const auto show = [&](const std::wstring& text, const std::wstring& title) {
            calls.push_back(L"box " + text + L" | " + title);
        };
        HandOffSettings(c.exePath, {tray, start, show});
        EXPECT_EQ(calls, c.calls);
    }
}

} // namespace
