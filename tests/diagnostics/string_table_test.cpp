// The language of the process, from the option Language and the system's language.
#include <gtest/gtest.h>

#include "diagnostics/string_table.h"
#include "library/memory_registry.h"

TEST(StringTable, LanguageValueMatchesExactlyElseTheSystemsPrimaryLanguageDecides) {
    // The no-photos text after a start with `value` of Language (null: none) on a system whose
    // language identifier is `system` (its primary language in the low 10 bits).
    const auto textFor = [](const wchar_t* value, uint16_t system) {
        TestRegistry() = {};
        if (value) TestRegistry().PutString(L"Language", value);
        StringTable::Init(system);
        return StringTable::Get(kNoPhotosText);
    };
    // Each code gives a translation on an English system, and the same on a system of that
    // language without a value; a value in other letters counts for nothing.
    const std::pair<const wchar_t*, uint16_t> languages[] = {{L"de", 0x0407}, {L"es", 0x0C0A},
                                                             {L"fr", 0x040C}, {L"it", 0x0810},
                                                             {L"nl", 0x0813}, {L"pt", 0x0816}};
    for (const auto& [code, system] : languages) {
        const std::wstring text = textFor(code, 0x0409);
        EXPECT_NE(text, kNoPhotosText) << code;
        EXPECT_EQ(textFor(nullptr, system), text) << code;
    }
    EXPECT_EQ(textFor(L"DE", 0x0409), kNoPhotosText);
    EXPECT_EQ(textFor(L"en", 0x0407), kNoPhotosText);
}
