#include "diagnostics/string_table.h"

#include <array>
#include <mutex>
#include <set>
#include <unordered_map>

#include "library/companion.h"
#include "library/settings.h"

namespace {

constexpr int32_t kLanguageCount = 7;

// Indexed by language number; language 0 is English, which needs no translation.
constexpr const wchar_t* kLanguageCodes[kLanguageCount] = {L"en", L"de", L"es", L"fr",
                                                           L"it", L"nl", L"pt"};
// The system's primary language identifier of each language number from 1 on.
constexpr uint16_t kPrimaryLanguages[kLanguageCount] = {0, 7, 10, 12, 16, 19, 22};
constexpr uint16_t kPrimaryLanguageMask = 0x3FF;

// The English key, then its text in languages 1 to 6; null where a row has no text in a
// language. A row with a null key ends the table.
using TextRow = std::array<const wchar_t*, kLanguageCount>;
constexpr TextRow kTexts[] = {
    {kNoPhotosText,
     L"Lumivane hat noch keine Fotos. Öffnen Sie es über den Infobereich, um sich anzumelden.",
     L"Lumivane aún no tiene fotos. Ábrelo desde el área de notificación para iniciar sesión.",
     L"Lumivane n'a pas encore de photos. Ouvrez-le depuis la zone de notification pour vous "
     L"connecter.",
     L"Lumivane non ha ancora foto. Aprilo dall'area di notifica per accedere.",
     L"Lumivane heeft nog geen foto's. Open het via het systeemvak om je aan te melden.",
     L"O Lumivane ainda não tem fotos. Abra-o a partir da área de notificação para iniciar "
     L"sessão."},
    {kOpenSettingsText,
     L"Öffnen Sie Lumivane, um die Einstellungen des Bildschirmschoners zu ändern.",
     L"Abre Lumivane para cambiar los ajustes del protector de pantalla.",
     L"Ouvrez Lumivane pour modifier les paramètres de l'économiseur d'écran.",
     L"Apri Lumivane per cambiare le impostazioni dello screen saver.",
     L"Open Lumivane om de instellingen van de schermbeveiliging te wijzigen.",
     L"Abra o Lumivane para alterar as definições do protector de ecrã."},
    {nullptr},
};

// Built once and never freed: any thread may still look a text up while the process ends.
// `translations` is written by Init alone, before other threads exist, and is read without a
// lock; `fallbacks` only grows, so references to its elements stay valid.
std::unordered_map<std::wstring, std::wstring>& Translations() {
    static auto& translations = *new std::unordered_map<std::wstring, std::wstring>();
    return translations;
}

std::set<std::wstring>& Fallbacks() {
    static auto& fallbacks = *new std::set<std::wstring>();
    return fallbacks;
}

std::mutex fallbackLock;

int32_t ChooseLanguage(const std::wstring& value, uint16_t systemLanguage) {
    for (int32_t number = 0; number < kLanguageCount; ++number)
        if (value == kLanguageCodes[number]) return number;
    const uint16_t primary = systemLanguage & kPrimaryLanguageMask;
    for (int32_t number = 1; number < kLanguageCount; ++number)
        if (primary == kPrimaryLanguages[number]) return number;
    return 0;
}

} // namespace

void StringTable::Init(uint16_t systemLanguage) {
    const int32_t language = ChooseLanguage(Settings::ReadString(kValueLanguage), systemLanguage);
    auto& translations = Translations();
    translations.clear();
    if (language == 0) return;
    for (const TextRow* row = kTexts; (*row)[0]; ++row)
        if (const wchar_t* text = (*row)[language]) translations[(*row)[0]] = text;
}

const std::wstring& StringTable::Get(const std::wstring& key) {
    const auto& translations = Translations();
    if (const auto found = translations.find(key); found != translations.end())
        return found->second;
    std::lock_guard<std::mutex> hold(fallbackLock);
    return *Fallbacks().insert(key).first;
}
