// The language of the process, from the option Language and the system's language.
#include <gtest/gtest.h>

#include <set>

#include "diagnostics/string_table.h"
#include "library/memory_registry.h"

namespace {

// The no-photos text after a start with `value` of Language (null: none) on a system whose
// language identifier is `system` (its primary language in the low 10 bits).
std::wstring TextFor(const wchar_t* value, uint16_t system) {
    TestRegistry() = {};
    if (value) TestRegistry().PutString(L"Language", value);
    StringTable::Init(system);
    return StringTable::Get(kNoPhotosText);
}

TEST(StringTable, LanguageValueMatchesExactlyElseTheSystemsPrimaryLanguageDecides) {
    // Each code gives a text of its own on an English system, and the same on a system of
    // that language without a value.
    std::set<std::wstring> texts{kNoPhotosText};
    const std::pair<const wchar_t*, uint16_t> languages[] = {
        {L"de", 0x0407}, {L"es", 0x0C0A}, {L"fr", 0x040C}, {L"it", 0x0810}, {L"nl", 0x0813},
        {L"pt", 0x0816}};
    for (const auto& [code, system] : languages) {
        const std::wstring text = TextFor(code, 0x0409);
        EXPECT_TRUE(texts.insert(text).second) << code;
        EXPECT_EQ(TextFor(nullptr, system), text) << code;
    }
    // The value, its system, what it reads as (null: English).
    const std::tuple<const wchar_t*, uint16_t, const wchar_t*> cases[] = {
        {L"de", 0x0411, L"de"}, {L"DE", 0x0409, nullptr}, {L"DE", 0x0407, L"de"},
        {L"de-DE", 0x040C, L"fr"}, {L"en", 0x0407, nullptr}, {L"", 0x0416, L"pt"},
        {nullptr, 0x0411, nullptr}};
    for (const auto& [value, system, reads] : cases)
        EXPECT_EQ(TextFor(value, system), reads ? TextFor(reads, 0x0409) : kNoPhotosText) << system;
    // A key that isn't in the table gives itself, the same element each time.
    const std::wstring& missing = StringTable::Get(L"No such text");
    EXPECT_EQ(missing, L"No such text");
    EXPECT_EQ(&StringTable::Get(std::wstring(L"No such text")), &missing);
}

} // namespace
