// The words of the find bar, in the languages that the viewers and the console speak.
#pragma once

namespace ui {

enum class Language { english, french, german };

// The one of a system's language id; English for a language that has no texts. Its regions are one language.
constexpr Language languageOf(long id) {
    constexpr long primaryLanguage = 0x3FF;
    constexpr long german = 0x07;
    constexpr long french = 0x0C;
    const long primary = id & primaryLanguage;
    return primary == french ? Language::french : primary == german ? Language::german : Language::english;
}

struct FindTexts {
    const char* find;
    const char* next;
    const char* previous;
    const char* notFound;  // %1
    const char* onlyMatches;
    const char* hidden;  // %1 of %2 rows are shown
};

// One of three texts, by language.
constexpr const char* oneOf(Language language, const char* english, const char* french, const char* german) {
    return language == Language::french ? french : language == Language::german ? german : english;
}

constexpr FindTexts findTexts(Language language) {
    const auto in = [language](const char* english, const char* french, const char* german) {
        return oneOf(language, english, french, german);
    };
    return {
        .find = in("&Find:", "&Rechercher :", "&Suchen:"),
        .next = in("&Next", "&Suivant", "&Weiter"),
        .previous = in("&Previous", "&Précédent", "Zu&rück"),
        .notFound = in("Not found: %1", "Introuvable : %1", "Nicht gefunden: %1"),
        .onlyMatches = in("Onl&y matching rows", "Lignes &trouvées seulement", "Nur &Treffer zeigen"),
        .hidden = in("Filter: %1 of %2 rows are shown", "Filtre : %1 lignes affichées sur %2",
                     "Filter: %1 von %2 Zeilen werden gezeigt"),
    };
}

}  // namespace ui
