#include "diagnostics/string_table.h"

#include <array>
#include <mutex>
#include <set>
#include <unordered_map>

#include "library/companion.h"
#include "library/settings.h"

namespace {

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
    // Texts of the companion application's tray menu and settings dialog.
    {L"Lumivane settings", L"Lumivane-Einstellungen", L"Ajustes de Lumivane",
     L"Paramètres de Lumivane", L"Impostazioni di Lumivane", L"Lumivane-instellingen",
     L"Definições do Lumivane"},
    {L"Screen saver", L"Bildschirmschoner", L"Protector de pantalla", L"Économiseur d'écran",
     L"Screen saver", L"Schermbeveiliging", L"Protector de ecrã"},
    {L"&Presentation:", L"&Präsentation:", L"&Presentación:", L"&Présentation :",
     L"&Presentazione:", L"&Presentatie:", L"Apre&sentação:"},
    {L"&Time per photo:", L"&Zeit pro Foto:", L"&Tiempo por foto:", L"&Durée par photo :",
     L"&Tempo per foto:", L"&Duur per foto:", L"&Tempo por foto:"},
    {L"%1 seconds", L"%1 Sekunden", L"%1 segundos", L"%1 secondes", L"%1 secondi", L"%1 seconden",
     L"%1 segundos"},
    {L"&Fill the screen (crop the edges)", L"Bildschirm &füllen (Ränder abschneiden)",
     L"&Rellenar la pantalla (recortar los bordes)", L"&Remplir l'écran (rogner les bords)",
     L"Riempi lo &schermo (ritaglia i bordi)", L"Scherm &vullen (randen bijsnijden)",
     L"Preencher o &ecrã (recortar as margens)"},
    {L"S&huffle the photos", L"Fotos in zufälliger &Reihenfolge", L"&Mezclar las fotos",
     L"&Mélanger les photos", L"&Mescola le foto", L"Foto's in &willekeurige volgorde",
     L"&Baralhar as fotos"},
    {L"Show &captions", L"Beschriftungen &anzeigen", L"Mostrar &leyendas",
     L"Afficher les lé&gendes", L"Mostra &didascalie", L"&Bijschriften weergeven",
     L"Mostrar &legendas"},
    {L"Show captions of &imported photos", L"Beschriftungen &importierter Fotos anzeigen",
     L"Mostrar leyendas de fotos &importadas", L"Afficher les légendes des photos &importées",
     L"Mostra didascalie delle foto &importate",
     L"Bijschriften van &geïmporteerde foto's weergeven",
     L"Mostrar legendas das fotos i&mportadas"},
    {L"&Language:", L"&Sprache:", L"I&dioma:", L"&Langue :", L"&Lingua:", L"T&aal:", L"&Idioma:"},
    {L"System language", L"Systemsprache", L"Idioma del sistema", L"Langue du système",
     L"Lingua di sistema", L"Systeemtaal", L"Idioma do sistema"},
    {L"Random", L"Zufällig", L"Aleatoria", L"Aléatoire", L"Casuale", L"Willekeurig", L"Aleatória"},
    {L"Preview", L"Vorschau", L"Vista previa", L"Aperçu", L"Anteprima", L"Voorbeeld",
     L"Pré-visualização"},
    {L"Photo f&olders", L"Foto&ordner", L"&Carpetas de fotos", L"D&ossiers de photos",
     L"&Cartelle di foto", L"&Fotomappen", L"&Pastas de fotos"},
    {L"Lumivane brings in the photos of these folders and their sub-folders.",
     L"Lumivane übernimmt die Fotos aus diesen Ordnern und ihren Unterordnern.",
     L"Lumivane incorpora las fotos de estas carpetas y de sus subcarpetas.",
     L"Lumivane récupère les photos de ces dossiers et de leurs sous-dossiers.",
     L"Lumivane importa le foto di queste cartelle e delle loro sottocartelle.",
     L"Lumivane haalt de foto's op uit deze mappen en hun submappen.",
     L"O Lumivane importa as fotos destas pastas e das suas subpastas."},
    {L"A&dd…", L"&Hinzufügen…", L"A&gregar…", L"Ajou&ter…", L"A&ggiungi…", L"T&oevoegen…",
     L"A&dicionar…"},
    {L"&Remove", L"&Entfernen", L"&Quitar", L"&Supprimer", L"&Rimuovi", L"Ve&rwijderen",
     L"&Remover"},
    {L"Import &now", L"&Jetzt importieren", L"Importar a&hora", L"Importer mai&ntenant",
     L"Importa &ora", L"&Nu importeren", L"Importar a&gora"},
    {L"(not found)", L"(nicht gefunden)", L"(no encontrada)", L"(introuvable)", L"(non trovata)",
     L"(niet gevonden)", L"(não encontrada)"},
    {L"Choose a folder of photos", L"Ordner mit Fotos auswählen", L"Elegir una carpeta de fotos",
     L"Choisir un dossier de photos", L"Scegli una cartella di foto", L"Kies een map met foto's",
     L"Escolher uma pasta de fotos"},
    {L"OK", L"OK", L"Aceptar", L"OK", L"OK", L"OK", L"OK"},
    {L"Cancel", L"Abbrechen", L"Cancelar", L"Annuler", L"Annulla", L"Annuleren", L"Cancelar"},
    {L"&Apply", L"Ü&bernehmen", L"&Aplicar", L"&Appliquer", L"&Applica", L"&Toepassen",
     L"&Aplicar"},
    {L"&Settings…", L"&Einstellungen…", L"&Ajustes…", L"&Paramètres…", L"&Impostazioni…",
     L"&Instellingen…", L"&Definições…"},
    {L"Start screen sa&ver now", L"Bildschirmschoner jetzt &starten",
     L"&Iniciar ahora el protector de pantalla", L"&Démarrer l'économiseur d'écran maintenant",
     L"Avvia ora lo &screen saver", L"Schermbeveiliging nu &starten",
     L"&Iniciar agora o protector de ecrã"},
    {L"&Open photo folder", L"&Fotoordner öffnen", L"Abrir la &carpeta de fotos",
     L"&Ouvrir le dossier de photos", L"&Apri la cartella delle foto", L"&Fotomap openen",
     L"&Abrir a pasta de fotos"},
    {L"E&xit", L"&Beenden", L"&Salir", L"&Quitter", L"&Esci", L"&Afsluiten", L"&Sair"},
    {L"Use at &most:", L"Höchstens &verwenden:", L"Usar como má&ximo:", L"&Utiliser au plus :",
     L"&Usa al massimo:", L"&Maximaal gebruiken:", L"&Usar no máximo:"},
    {L"Importing %1 of %2 photos", L"%1 von %2 Fotos werden importiert",
     L"Importando %1 de %2 fotos", L"Importation de %1 photos sur %2",
     L"Importazione di %1 foto su %2", L"%1 van %2 foto's importeren",
     L"A importar %1 de %2 fotos"},
    {L"%1 photos, %2", L"%1 Fotos, %2", L"%1 fotos, %2", L"%1 photos, %2", L"%1 foto, %2",
     L"%1 foto's, %2", L"%1 fotos, %2"},
    {L"Your photos are in. The screen saver shows them from now on.",
     L"Ihre Fotos sind da. Der Bildschirmschoner zeigt sie ab jetzt.",
     L"Tus fotos ya están aquí. El protector de pantalla las muestra a partir de ahora.",
     L"Vos photos sont là. L'économiseur d'écran les affiche désormais.",
     L"Le tue foto sono arrivate. Lo screen saver le mostra da ora in poi.",
     L"Je foto's zijn binnen. De schermbeveiliging toont ze vanaf nu.",
     L"As suas fotos chegaram. O protector de ecrã mostra-as a partir de agora."},
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
