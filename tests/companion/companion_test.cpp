// The tray application's logic: the settings dialog's values against the options key, the start
// of a second instance, and the texts of its windows.
#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <set>
#include <sstream>

#include "companion/companion_texts.h"
#include "companion/settings_form.h"
#include "companion/start_plan.h"
#include "diagnostics/string_table.h"
#include "library/memory_registry.h"
#include "library/settings.h"

namespace {

std::vector<uint8_t> Dword(uint32_t value) {
    return {uint8_t(value), uint8_t(value >> 8), uint8_t(value >> 16), uint8_t(value >> 24)};
}

// UTF-8 text of up to three bytes a character, as the resource script holds it.
std::wstring FromUtf8(const std::string& text) {
    std::wstring wide;
    for (size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<uint8_t>(text[i]);
        if (byte < 0x80) {
            wide.push_back(byte);
        } else if (byte < 0xE0 && i + 1 < text.size()) {
            wide.push_back(wchar_t((byte & 0x1F) << 6 | (text[++i] & 0x3F)));
        } else if (i + 2 < text.size()) {
            const auto second = text[++i] & 0x3F;
            wide.push_back(wchar_t((byte & 0x0F) << 12 | second << 6 | (text[++i] & 0x3F)));
        }
    }
    return wide;
}

} // namespace

// What the dialog shows for what the store holds: the saver's reading of every value, so that an
// unknown value shows the default that the saver uses in its place.
TEST(SettingsForm, StoredValuesShowAsTheSaverReadsThem) {
    const auto Utf16 = MemoryRegistry::Utf16;
    struct Case {
        const wchar_t* name;
        uint32_t type;
        std::vector<uint8_t> bytes;
        SettingsForm expected; // the default form with the one difference of the case
    };
    const auto with = [](auto change) {
        SettingsForm form;
        change(form);
        return form;
    };
    // clang-format off
    const Case cases[] = {
        {L"SaverShow", 1, Utf16(L"kber"), with([](auto& f) { f.show = SettingsForm::Panner; })},
        {L"SaverShow", 1, Utf16(L"fourup"), with([](auto& f) { f.show = SettingsForm::FourUp; })},
        {L"SaverShow", 1, Utf16(L"random"), with([](auto& f) { f.show = SettingsForm::Random; })},
        {L"SaverShow", 1, Utf16(L"Slider"), SettingsForm{}},           // exact, so the Fader
        {L"SaverShow", 2, Utf16(L"slider"), SettingsForm{}},           // not a plain string
        {L"SaverPause", 1, Utf16(L"5"), with([](auto& f) { f.pauseIndex = 5; })},
        {L"SaverPause", 1, Utf16(L"0"), with([](auto& f) { f.pauseIndex = 0; })},
        {L"SaverPause", 1, Utf16(L"6"), SettingsForm{}},
        {L"SaverPause", 1, Utf16(L"10"), SettingsForm{}},
        {L"SaverFit", 4, Dword(0xFFFFFFFF), with([](auto& f) { f.fit = true; })},
        {L"SaverRandom", 4, Dword(2), with([](auto& f) { f.shuffle = true; })},
        {L"SaverTitle", 4, Dword(0), with([](auto& f) { f.titles = false; })},
        {L"SaverTitle", 1, Utf16(L"0"), SettingsForm{}},               // a string reads 1
        {L"SaverImportedTitle", 4, Dword(0), with([](auto& f) { f.importedTitles = false; })},
        {L"SaverImportedTitle", 11, std::vector<uint8_t>(8), SettingsForm{}},
        {L"Language", 1, Utf16(L"pt"), with([](auto& f) { f.language = 7; })},
        {L"Language", 1, Utf16(L"de"), with([](auto& f) { f.language = 2; })},
        {L"Language", 1, Utf16(L"DE"), SettingsForm{}},
        {L"ImportBudget", 4, Dword(10240), with([](auto& f) { f.budgetIndex = 4; })},
        {L"ImportBudget", 4, Dword(500), with([](auto& f) { f.budgetIndex = 0; })},
        {L"ImportBudget", 4, Dword(3000), SettingsForm{}},
    };
    // clang-format on
    for (const Case& c : cases) {
        TestRegistry() = {};
        TestRegistry().Put(c.name, c.type, c.bytes);
        SettingsForm expected = c.expected;
        expected.folders = {L"C:\\Users\\Ann\\Pictures"};
        EXPECT_TRUE(ReadSettingsForm(L"C:\\Users\\Ann\\Pictures") == expected) << c.name;
        EXPECT_TRUE(TestRegistry().writes.empty()) << "reading writes nothing";
    }
}

// OK and Apply store every value in the form that the saver reads: numbers as REG_DWORD 0 or 1,
// texts as REG_SZ with their zero, the folders as a REG_MULTI_SZ; and what was written reads back.
TEST(SettingsForm, WritesEachValueInItsRegistryForm) {
    const auto Utf16 = MemoryRegistry::Utf16;
    SettingsForm form;
    form.show = SettingsForm::Panner;
    form.pauseIndex = 4;
    form.fit = true;
    form.titles = false;
    form.language = 3;
    form.folders = {L"D:\\Fotos", L"E:\\"};
    TestRegistry() = {};
    WriteSettingsForm(form);
    const std::map<std::wstring, std::pair<uint32_t, std::vector<uint8_t>>> expected = {
        {L"SaverShow", {1, Utf16(std::wstring(L"kber\0", 5))}},
        {L"SaverPause", {1, Utf16(std::wstring(L"4\0", 2))}},
        {L"SaverFit", {4, Dword(1)}},
        {L"SaverRandom", {4, Dword(0)}},
        {L"SaverTitle", {4, Dword(0)}},
        {L"SaverImportedTitle", {4, Dword(1)}},
        {L"Language", {1, Utf16(std::wstring(L"es\0", 3))}},
        {L"ImportFolders", {7, Utf16(std::wstring(L"D:\\Fotos\0E:\\\0\0", 14))}},
        {L"ImportBudget", {4, Dword(2048)}},
    };
    EXPECT_EQ(TestRegistry().values, expected);
    EXPECT_TRUE(ReadSettingsForm(L"C:\\Pictures") == form);

    form = {};
    form.pauseIndex = kPauseCount; // no choice made in a list: the defaults
    form.budgetIndex = kBudgetCount;
    TestRegistry() = {};
    WriteSettingsForm(form); // the Fader and the system's language are empty strings
    EXPECT_EQ(TestRegistry().values.at(L"SaverShow").second, Utf16(std::wstring(1, L'\0')));
    EXPECT_EQ(TestRegistry().values.at(L"Language").second, Utf16(std::wstring(1, L'\0')));
    EXPECT_EQ(TestRegistry().values.at(L"SaverPause").second, Utf16(std::wstring(L"2\0", 2)));
    EXPECT_EQ(TestRegistry().values.at(L"ImportBudget").second, Dword(2048));
    Settings::WriteDword(L"ImportBudget", -2); // all four bytes, as an administrator might
    EXPECT_EQ(TestRegistry().values.at(L"ImportBudget").second, Dword(0xFFFFFFFE));
}

// A new user's list holds their Pictures folder; once a list is stored, even an empty one, it is
// the list. The same folder is never listed twice.
TEST(SettingsForm, FoldersStartWithPicturesAndNeverRepeat) {
    TestRegistry() = {};
    EXPECT_EQ(ReadSettingsForm(L"C:\\P").folders, std::vector<std::wstring>{L"C:\\P"});
    EXPECT_TRUE(ReadSettingsForm(L"").folders.empty());
    TestRegistry().Put(L"ImportFolders", 7, {0, 0});
    EXPECT_TRUE(ReadSettingsForm(L"C:\\P").folders.empty());
    TestRegistry().Put(L"ImportFolders", 7, MemoryRegistry::Utf16(L"C:\\A")); // no zeros at all
    EXPECT_EQ(ReadSettingsForm(L"C:\\P").folders, std::vector<std::wstring>{L"C:\\A"});
    TestRegistry().Put(L"ImportFolders", 1, MemoryRegistry::Utf16(std::wstring(L"C:\\A\0", 5)));
    EXPECT_EQ(ReadSettingsForm(L"C:\\P").folders, std::vector<std::wstring>{L"C:\\P"})
        << "a value of another type isn't a list";

    std::vector<std::wstring> folders = {L"C:\\Photos", L"D:\\"};
    EXPECT_EQ(AddFolder(folders, L"c:\\photos\\"), 0u);
    EXPECT_EQ(AddFolder(folders, L"D:\\"), 1u);
    EXPECT_EQ(AddFolder(folders, L"C:\\Photos 2"), 2u);
    EXPECT_EQ(folders.size(), 3u);
}

// The import's disk: the stored size in megabytes, any size an administrator set included; 2 GB
// while none is stored.
TEST(SettingsForm, ImportBudgetIsTheStoredMegabytesElseTwoGigabytes) {
    const std::pair<std::vector<uint8_t>, uint64_t> cases[] = {
        {{}, 2048}, {Dword(0), 2048}, {Dword(0xFFFFFFFF), 2048}, {Dword(3000), 3000}};
    for (const auto& [stored, megabytes] : cases) {
        TestRegistry() = {};
        if (!stored.empty()) TestRegistry().Put(L"ImportBudget", 4, stored);
        EXPECT_EQ(ImportBudgetBytes(), megabytes << 20) << megabytes;
    }
}

// One tray instance: any later start asks the running one for the settings and ends; a first
// start becomes the tray, and opens the settings only with the switch. An import on its own runs
// whatever else runs.
TEST(StartPlan, ALaterStartHandsOverAndOnlyTheSwitchOpensTheSettings) {
    struct Case {
        std::vector<std::wstring> arguments;
        bool instanceRuns, handOver, runTray, openSettings, importOnce = false;
    };
    const Case cases[] = {
        {{}, false, false, true, false},
        {{L"--settings"}, false, false, true, true},
        {{L"--SETTINGS"}, false, false, true, true},
        {{L"--other", L"--settings"}, false, false, true, true},
        {{L"/settings"}, false, false, true, false},
        {{}, true, true, false, false},
        {{L"--settings"}, true, true, false, false},
        {{L"--Import"}, false, false, false, false, true},
        {{L"--import"}, true, false, false, false, true},
    };
    for (const Case& c : cases) {
        const StartPlan plan = PlanStart(c.arguments, c.instanceRuns);
        EXPECT_EQ(std::tie(plan.handOver, plan.runTray, plan.openSettings, plan.importOnce),
                  std::tie(c.handOver, c.runTray, c.openSettings, c.importOnce))
            << testing::PrintToString(c.arguments) << " instance " << c.instanceRuns;
    }
}

// Every text of the settings dialog's resource and of the tray's code is a key of the string
// table with a text in each of the six languages besides English.
TEST(CompanionTexts, EveryTextOfTheDialogAndTheMenuHasItsTranslations) {
    std::ifstream resource(LUMIVANE_SOURCE_DIR "/res/companion.rc", std::ios::binary);
    std::stringstream bytes;
    bytes << resource.rdbuf();
    const std::string script = bytes.str();
    const std::string dialog =
        script.substr(script.find("DIALOGEX"), script.find("\nEND") - script.find("DIALOGEX"));
    std::vector<std::wstring> keys(std::begin(kCompanionTexts), std::end(kCompanionTexts));
    const std::regex quoted("\"([^\"]*)\"");
    for (std::sregex_iterator it(dialog.begin(), dialog.end(), quoted), end; it != end; ++it) {
        const std::string text = (*it)[1];
        // "OK" is "OK" in most languages, so a translation can't be told from its absence.
        if (!text.empty() && text != "Static" && text != "Segoe UI" && text != "OK")
            keys.push_back(FromUtf8(text));
    }
    ASSERT_EQ(keys.size(), 12u + 18u) << "the texts of the code and of the dialog";
    for (const wchar_t* code : {L"de", L"es", L"fr", L"it", L"nl", L"pt"}) {
        TestRegistry() = {};
        TestRegistry().PutString(L"Language", code);
        StringTable::Init(0);
        // Texts that a language writes as English does.
        const std::set<std::wstring> same = {L"it Screen saver", L"fr %1 photos, %2"};
        for (const std::wstring& key : keys)
            if (!same.count(code + (L" " + key)))
                EXPECT_NE(StringTable::Get(key), key)
                    << code << ": " << testing::PrintToString(key);
    }
    TestRegistry() = {};
    StringTable::Init(0);
}
