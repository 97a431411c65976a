#include "host/viewer/texts.h"

#include "platform/machine/language.h"

namespace viewer {

namespace {

// Every text in English, French and German, and of these the ones of a language.
constexpr Texts textsIn(Language language) {
    const auto in = [language](const char* english, const char* french, const char* german) {
        return language == Language::french ? french : language == Language::german ? german : english;
    };
    return {
        .copiedLabels = {in("Event Type:\t", "Type de l'événement :\t", "Ereignistyp:\t"),
                         in("Event Source:\t", "Source de l'événement :\t", "Ereignisquelle:\t"),
                         in("Event Category:\t", "Catégorie de l'événement :\t", "Ereigniskategorie:\t"),
                         in("Event ID:\t", "ID de l'événement :\t", "Ereigniskennung:\t"),
                         in("Date:\t\t", "Date :\t\t", "Datum:\t\t"),
                         in("Time:\t\t", "Heure :\t\t", "Zeit:\t\t"),
                         in("User:\t\t", "Utilisateur :\t", "Benutzer:\t\t"),
                         in("Computer:\t", "Ordinateur :\t", "Computer:\t"),
                         in("Description:", "Description :", "Beschreibung:")},
        .types = {in("Error", "Erreur", "Fehler"), in("Warning", "Avertissement", "Warnung"),
                  in("Information", "Informations", "Informationen"),
                  in("Success Audit", "Audit des succès", "Erfolgsüberwachung"),
                  in("Failure Audit", "Audit des échecs", "Fehlerüberwachung")},
        .noCategory = in("None", "Aucune", "Keine"),
        .noUser = in("N/A", "N/A", "Nicht zutreffend"),
        .eventViewer = in("Event Viewer", "Observateur d'événements", "Ereignisanzeige"),
        .log = in("&Log:", "&Journal :", "&Protokoll:"),
        .logs = {in("Application", "Application", "Anwendung"), in("System", "Système", "System")},
        .show = in("&Show:", "Aff&icher :", "An&zeigen:"),
        .allTypes = in("All types", "Tous les types", "Alle Typen"),
        .columns = {in("Type", "Type", "Typ"), in("Date", "Date", "Datum"), in("Time", "Heure", "Zeit"),
                    in("Source", "Source", "Quelle"), in("Category", "Catégorie", "Kategorie"),
                    in("Event ID", "ID", "Ereignis-ID"), in("User", "Utilisateur", "Benutzer"),
                    in("Computer", "Ordinateur", "Computer")},
        .refresh = in("&Refresh", "&Actualiser", "&Aktualisieren"),
        .copy = in("&Copy", "&Copier", "&Kopieren"),
        .copied = in("The event is on the clipboard.", "L'événement est dans le presse-papiers.",
                     "Das Ereignis ist in der Zwischenablage."),
        .count = in("%1 of %2 events", "%1 événements sur %2", "%1 von %2 Ereignissen"),
        .details = in("&Details", "&Détails", "&Einzelheiten"),
        .cannotRead = in("The log cannot be read: %1", "Le journal ne peut pas être lu : %1",
                         "Das Protokoll kann nicht gelesen werden: %1"),
        .find = in("&Find:", "&Rechercher :", "&Suchen:"),
        .next = in("&Next", "&Suivant", "&Weiter"),
        .previous = in("&Previous", "&Précédent", "Zu&rück"),
        .notFound = in("Not found: %1", "Introuvable : %1", "Nicht gefunden: %1"),
        .textViewer = in("Text Viewer", "Visionneuse de texte", "Textanzeige"),
        .follow = in("F&ollow the end", "Suivre la &fin", "Dem Ende &folgen"),
        .cannotOpen = in("%1 cannot be opened.\n%2", "%1 ne peut pas être ouvert.\n%2",
                         "%1 kann nicht geöffnet werden.\n%2"),
        .noFile =
            in("Name the file to show: notepad FILE", "Indiquez le fichier à afficher : notepad FICHIER",
               "Nennen Sie die Datei: notepad DATEI"),
        .beginningLeftOut =
            in("The first %1 bytes are not shown.", "Les %1 premiers octets ne sont pas affichés.",
               "Die ersten %1 Bytes werden nicht gezeigt."),
    };
}

constexpr Texts english = textsIn(Language::english);
constexpr Texts french = textsIn(Language::french);
constexpr Texts german = textsIn(Language::german);

}  // namespace

const Texts& texts(Language language) {
    return language == Language::french ? french : language == Language::german ? german : english;
}

Language userLanguage() {
    constexpr long primaryLanguage = 0x3FF;
    constexpr long germanId = 0x07;
    constexpr long frenchId = 0x0C;
    const long id = platform::userDefaultLanguageId() & primaryLanguage;
    return id == frenchId ? Language::french : id == germanId ? Language::german : Language::english;
}

}  // namespace viewer
