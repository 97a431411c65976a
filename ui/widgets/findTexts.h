// The words of the find bar, in the languages that the viewers and the console speak.
#pragma once

namespace ui {

enum class Language { english, french, german };

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
