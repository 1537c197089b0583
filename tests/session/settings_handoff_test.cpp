// The hand-over of the settings: tray first, then the companion program, then the message.
#include <gtest/gtest.h>

#include "diagnostics/string_table.h"
#include "session/settings_handoff.h"

namespace {

TEST(SettingsHandoff, TrayFirstThenTheCompanionBesideTheSaverThenTheMessage) {
    // The box speaks the language of the process, whichever an earlier test left.
    const std::wstring box = L"|box " + StringTable::Get(kOpenSettingsText) + L" Lumivane";
    // A tray window runs, the companion starts, the saver's path, the calls made.
    const std::tuple<bool, bool, std::wstring, std::wstring> cases[] = {
        {true, true, L"C:\\Windows\\System32\\Lumivane.scr", L"tray"},
        {false, true, L"C:\\Program Files\\L\\Lumivane.scr",
         L"tray|start C:\\Program Files\\L\\Lumivane.exe --settings"},
        {false, false, L"D:\\Lumivane.scr", L"tray|start D:\\Lumivane.exe --settings" + box},
        {false, false, L"Lumivane.scr", L"tray|start Lumivane.exe --settings" + box}};
    for (const auto& [tray, starts, exePath, expected] : cases) {
        std::wstring calls;
        HandOffSettings(
            exePath,
            {[&, tray = tray] { return calls += L"tray", tray; },
             [&, starts = starts](const std::wstring& program, const std::wstring& parameters) {
                 return calls += L"|start " + program + L" " + parameters, starts;
             },
             [&](const std::wstring& text, const std::wstring& title) {
                 calls += L"|box " + text + L" " + title;
             }});
        EXPECT_EQ(calls, expected);
    }
}

} // namespace
