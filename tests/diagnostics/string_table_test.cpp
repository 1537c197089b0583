// The language of the process, from the option Language and the system's language.
#include <gtest/gtest.h>

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
    const std::wstring de = L"Lumivane hat noch keine Fotos. Öffnen Sie es über den Infobereich, "
                            L"um sich anzumelden.",
                       fr = L"Lumivane n'a pas encore de photos. Ouvrez-le depuis la zone de "
                            L"notification pour vous connecter.",
                       pt = L"O Lumivane ainda não tem fotos. Abra-o a partir da área de "
                            L"notificação para iniciar sessão.",
                       en = kNoPhotosText;
    const std::tuple<const wchar_t*, uint16_t, std::wstring> cases[] = {
        {L"de", 0x0411, de}, {L"DE", 0x0409, en},   {L"DE", 0x0407, de}, {L"de-DE", 0x040C, fr},
        {L"en", 0x0407, en}, {nullptr, 0x0416, pt}, {L"", 0x0816, pt},   {nullptr, 0x0411, en}};
    for (const auto& [value, system, expected] : cases)
        EXPECT_EQ(TextFor(value, system), expected) << system;
    for (auto [code, system] : {std::pair{L"es", 0x0C0A}, {L"it", 0x0810}, {L"nl", 0x0813}}) {
        const std::wstring text = TextFor(code, 0x0409);
        EXPECT_TRUE(text != en && TextFor(nullptr, uint16_t(system)) == text) << code;
    }
    // A key that isn't in the table gives itself, the same element each time.
    const std::wstring& missing = StringTable::Get(L"No such text");
    EXPECT_EQ(missing, L"No such text");
    EXPECT_EQ(&StringTable::Get(std::wstring(L"No such text")), &missing);
}

} // namespace
