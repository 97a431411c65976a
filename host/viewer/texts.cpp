#include "host/viewer/texts.h"

#include "platform/language.h"

namespace viewer {

namespace {

constexpr Texts english{
    .copiedLabels = {"Event Type:\t", "Event Source:\t", "Event Category:\t", "Event ID:\t", "Date:\t\t",
                     "Time:\t\t", "User:\t\t", "Computer:\t", "Description:"},
    .types = {"Error", "Warning", "Information", "Success Audit", "Failure Audit"},
    .noCategory = "None",
    .noUser = "N/A",
    .eventViewer = "Event Viewer",
    .log = "&Log:",
    .logs = {"Application", "System"},
    .show = "&Show:",
    .allTypes = "All types",
    .columns = {"Type", "Date", "Time", "Source", "Category", "Event ID", "User", "Computer"},
    .refresh = "&Refresh",
    .copy = "&Copy",
    .copied = "The event is on the clipboard.",
    .count = "%1 of %2 events",
    .details = "&Details",
    .cannotRead = "The log cannot be read: %1",
    .find = "&Find:",
    .next = "&Next",
    .previous = "&Previous",
    .notFound = "Not found: %1",
    .textViewer = "Text Viewer",
    .follow = "F&ollow the end",
    .cannotOpen = "%1 cannot be opened.\n%2",
    .noFile = "Name the file to show: notepad FILE",
    .beginningLeftOut = "The first %1 bytes are not shown.",
};

constexpr Texts french{
    .copiedLabels = {"Type de l'événement :\t", "Source de l'événement :\t", "Catégorie de l'événement :\t",
                     "ID de l'événement :\t", "Date :\t\t", "Heure :\t\t", "Utilisateur :\t",
                     "Ordinateur :\t", "Description :"},
    .types = {"Erreur", "Avertissement", "Informations", "Audit des succès", "Audit des échecs"},
    .noCategory = "Aucune",
    .noUser = "N/A",
    .eventViewer = "Observateur d'événements",
    .log = "&Journal :",
    .logs = {"Application", "Système"},
    .show = "Aff&icher :",
    .allTypes = "Tous les types",
    .columns = {"Type", "Date", "Heure", "Source", "Catégorie", "ID", "Utilisateur", "Ordinateur"},
    .refresh = "&Actualiser",
    .copy = "&Copier",
    .copied = "L'événement est dans le presse-papiers.",
    .count = "%1 événements sur %2",
    .details = "&Détails",
    .cannotRead = "Le journal ne peut pas être lu : %1",
    .find = "&Rechercher :",
    .next = "&Suivant",
    .previous = "&Précédent",
    .notFound = "Introuvable : %1",
    .textViewer = "Visionneuse de texte",
    .follow = "Suivre la &fin",
    .cannotOpen = "%1 ne peut pas être ouvert.\n%2",
    .noFile = "Indiquez le fichier à afficher : notepad FICHIER",
    .beginningLeftOut = "Les %1 premiers octets ne sont pas affichés.",
};

constexpr Texts german{
    .copiedLabels = {"Ereignistyp:\t", "Ereignisquelle:\t", "Ereigniskategorie:\t", "Ereigniskennung:\t",
                     "Datum:\t\t", "Zeit:\t\t", "Benutzer:\t\t", "Computer:\t", "Beschreibung:"},
    .types = {"Fehler", "Warnung", "Informationen", "Erfolgsüberwachung", "Fehlerüberwachung"},
    .noCategory = "Keine",
    .noUser = "Nicht zutreffend",
    .eventViewer = "Ereignisanzeige",
    .log = "&Protokoll:",
    .logs = {"Anwendung", "System"},
    .show = "An&zeigen:",
    .allTypes = "Alle Typen",
    .columns = {"Typ", "Datum", "Zeit", "Quelle", "Kategorie", "Ereignis-ID", "Benutzer", "Computer"},
    .refresh = "&Aktualisieren",
    .copy = "&Kopieren",
    .copied = "Das Ereignis ist in der Zwischenablage.",
    .count = "%1 von %2 Ereignissen",
    .details = "&Einzelheiten",
    .cannotRead = "Das Protokoll kann nicht gelesen werden: %1",
    .find = "&Suchen:",
    .next = "&Weiter",
    .previous = "Zu&rück",
    .notFound = "Nicht gefunden: %1",
    .textViewer = "Textanzeige",
    .follow = "Dem Ende &folgen",
    .cannotOpen = "%1 kann nicht geöffnet werden.\n%2",
    .noFile = "Nennen Sie die Datei: notepad DATEI",
    .beginningLeftOut = "Die ersten %1 Bytes werden nicht gezeigt.",
};

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
