// The language of the process, from the option Language and the system's language.
#include <gtest/gtest.h>

#include "diagnostics/string_table.h"
#include "library/memory_registry.h"

namespace {

TEST(StringTable, LanguageValueMatchesExactlyElseTheSystemsPrimaryLanguageDecides) {
    const std::wstring de = L"Lumivane hat noch keine Fotos. Öffnen Sie es über den Infobereich, "
                            L"um sich anzumelden.",
                       fr = L"Lumivane n'a pas encore de photos. Ouvrez-le depuis la zone de "
                            L"notification pour vous connecter.",
                       pt = L"O Lumivane ainda não tem fotos. Abra-o a partir da área de "
                            L"notificação para iniciar sessão.",
                       en = kNoPhotosText;
    // Language (null: none), the system's language identifier (primary language in the low 10
    // bits).
    const std::tuple<const wchar_t*, uint16_t, std::wstring> cases[] = {
        {L"de", 0x0411, de}, {L"DE", 0x0409, en},   {L"DE", 0x0407, de}, {L"de-DE", 0x040C, fr},
        {L"en", 0x0407, en}, {nullptr, 0x0416, pt}, {L"", 0x0816, pt},   {nullptr, 0x0411, en}};
    for (const auto& [value, system, expected] : cases) {
        TestRegistry() = {};
        if (value) TestRegistry().PutString(L"Language", value);
        StringTable::Init(system);
        EXPECT_EQ(StringTable::Get(kNoPhotosText), expected) << system;
    }
    // A key that isn't in the table gives itself, the same element each time.
    const std::wstring& missing = StringTable::Get(L"No such text");
    EXPECT_EQ(missing, L"No such text");
    EXPECT_EQ(&StringTable::Get(std::wstring(L"No such text")), &missing);
}

} // namespace
