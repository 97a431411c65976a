#include "host/viewer/texts.h"

#include "platform/machine/language.h"

namespace viewer {

namespace {

// Every text in English, French and German, and of these the ones of a language.
constexpr Texts textsIn(Language language) {
    const auto in = [language](const char* english, const char* french, const char* german) {
        return ui::oneOf(language, english, french, german);
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
        .countNotifications =
            in("%1 of %2 notifications", "%1 notifications sur %2", "%1 von %2 Benachrichtigungen"),
        .details = in("&Details", "&Détails", "&Einzelheiten"),
        .cannotRead = in("The log cannot be read: %1", "Le journal ne peut pas être lu : %1",
                         "Das Protokoll kann nicht gelesen werden: %1"),
        .notifications = in("Notifications", "Notifications", "Benachrichtigungen"),
        .journal = in("This machine's journal", "Journal de cette machine", "Journal dieses Rechners"),
        .fates = {in("Told", "Averti", "Benachrichtigt"), in("Refused", "Refusé", "Abgewiesen"),
                  in("Given up", "Abandonné", "Aufgegeben"), in("Waiting", "En attente", "Wartet"),
                  in("Held back", "Retenu", "Zurückgehalten")},
        .notificationColumns = {in("Outcome", "Résultat", "Ergebnis"), in("Date", "Date", "Datum"),
                                in("Time", "Heure", "Zeit"), in("Source", "Source", "Quelle"),
                                in("Event ID", "ID", "Ereignis-ID"),
                                in("Recipient", "Destinataire", "Empfänger"),
                                in("Device", "Appareil", "Gerät"), in("Answer", "Réponse", "Antwort"),
                                in("Attempts", "Essais", "Versuche"), in("Address", "Adresse", "Adresse")},
        .devices = {in("Voice mail", "Messagerie vocale", "Sprachnachricht"),
                    in("Pager", "Récepteur d'appels", "Pager"), in("E-mail", "E-mail", "E-Mail"),
                    in("SMTP address", "Adresse SMTP", "SMTP-Adresse"),
                    in("SNMP trap", "Interruption SNMP", "SNMP-Trap"), in("Syslog", "Syslog", "Syslog"),
                    in("Failover", "Basculement", "Failover")},
        .monitoredEvent = in("Monitored event", "Événement surveillé", "Überwachtes Ereignis"),
        .subject = in("Subject", "Objet", "Betreff"),
        .message = in("Description", "Description", "Beschreibung"),
        .nextAttempt = in("next attempt %1", "prochain essai %1", "nächster Versuch %1"),
        .source = in("S&ource:", "S&ource :", "&Quelle:"),
        .allSources = in("All sources", "Toutes les sources", "Alle Quellen"),
        .outcome = in("Outco&me:", "Résu&ltat :", "Er&gebnis:"),
        .allOutcomes = in("All outcomes", "Tous les résultats", "Alle Ergebnisse"),
        .followNews = in("Follo&w what comes", "Suivre les nou&veaux", "Neuen &folgen"),
        .exportShown = in("&Export...", "&Exporter...", "E&xportieren..."),
        .exportTitle = in("Export what is shown", "Exporter ce qui est affiché", "Gezeigtes exportieren"),
        .exported = in("%1 rows are in %2", "%1 lignes dans %2", "%1 Zeilen stehen in %2"),
        .exportEnded = in("The export has ended: other rows were asked for.",
                          "L'exportation a pris fin : d'autres lignes ont été demandées.",
                          "Der Export ist beendet: Andere Zeilen wurden verlangt."),
        .cannotExport = in("The rows cannot be written: %1", "Les lignes ne peuvent pas être écrites : %1",
                           "Die Zeilen können nicht geschrieben werden: %1"),
        .readingAll = in("Reading to the log's beginning...", "Lecture jusqu'au début du journal...",
                         "Das Protokoll wird bis zum Anfang gelesen..."),
        .sendAgain = in("Send &again", "Renvo&yer", "Er&neut senden"),
        .sentAgain = in("A new message waits for the service.", "Un nouveau message attend le service.",
                        "Eine neue Nachricht wartet auf den Dienst."),
        .waitsAlready = in("The same message waits already.", "Le même message attend déjà.",
                           "Dieselbe Nachricht wartet schon."),
        .messageGone = in("The service has forgotten the words of this message.",
                          "Le service a oublié le texte de ce message.",
                          "Der Dienst hat den Text dieser Nachricht vergessen."),
        .wasTold = in("The message has not failed.", "Le message n'a pas échoué.",
                      "Die Nachricht ist nicht gescheitert."),
        .cannotSendAgain =
            in("Nothing is sent again: %1", "Rien n'est renvoyé : %1", "Nichts wird erneut gesendet: %1"),
        .whoIsTold = in("Who is &told", "&Qui est averti", "Wer &benachrichtigt wird"),
        .asIfNow = in("As &if it came now", "Comme s'il arrivait &maintenant", "Als käme es &jetzt"),
        .reasons = {in("told", "averti", "wird benachrichtigt"),
                    in("the event is inactive", "l'événement est inactif", "das Ereignis ist inaktiv"),
                    in("source and ID are excluded", "source et ID sont exclus",
                       "Quelle und ID sind ausgeschlossen"),
                    in("less grave than the event asks for", "moins grave que l'événement ne le demande",
                       "weniger schwer als das Ereignis verlangt"),
                    in("the device is off for this event", "l'appareil est désactivé pour cet événement",
                       "das Gerät ist für dieses Ereignis aus"),
                    in("the device is cut off: its entry in the directory is gone",
                       "l'appareil est coupé : son entrée dans l'annuaire a disparu",
                       "das Gerät ist abgeschnitten: sein Verzeichniseintrag fehlt"),
                    in("the recipient is inactive", "le destinataire est inactif",
                       "der Empfänger ist inaktiv"),
                    in("this host is not set up for such devices",
                       "cet hôte n'est pas configuré pour de tels appareils",
                       "dieser Host ist für solche Geräte nicht eingerichtet"),
                    in("within the notification interval", "dans l'intervalle de notification",
                       "innerhalb des Benachrichtigungsintervalls"),
                    in("the same address is told already", "la même adresse est déjà avertie",
                       "dieselbe Adresse wird schon benachrichtigt")},
        .heldBackUntil = in("held back until %1", "retenu jusqu'à %1", "zurückgehalten bis %1"),
        .noEvent = in("No monitored event has this source and ID.",
                      "Aucun événement surveillé n'a cette source et cet ID.",
                      "Kein überwachtes Ereignis hat diese Quelle und ID."),
        .noDevice = in("The event has no devices.", "L'événement n'a pas d'appareils.",
                       "Das Ereignis hat keine Geräte."),
        .cannotDecide = in("Nobody can say who is told: %1", "Impossible de dire qui est averti : %1",
                           "Wer benachrichtigt wird, ist nicht zu sagen: %1"),
        .whoColumns = {in("Event, recipient", "Événement, destinataire", "Ereignis, Empfänger"),
                       in("Told or why not", "Averti ou pourquoi non", "Benachrichtigt oder warum nicht"),
                       in("Device", "Appareil", "Gerät"), in("Address", "Adresse", "Adresse")},
        .lastDays = in("In the last &7 days...", "Les &7 derniers jours...", "In den letzten &7 Tagen..."),
        .monitoredEvents = in("&Monitored events", "Événements &surveillés", "Über&wachte Ereignisse"),
        .countRecords = in("&Count", "&Compter", "&Zählen"),
        .cancel = in("C&ancel", "&Annuler", "&Abbrechen"),
        .counting = in("%1 records looked at", "%1 enregistrements examinés", "%1 Einträge angesehen"),
        .cancelled = in("Cancelled.", "Annulé.", "Abgebrochen."),
        .daysColumns = {in("Day", "Jour", "Tag"), in("Records", "Enregistrements", "Einträge"),
                        in("Notifications", "Notifications", "Benachrichtigungen")},
        .daysResult = in("%1 records would have matched and meant %2 notifications, with an interval of %3 "
                         "minutes.",
                         "%1 enregistrements auraient correspondu, soit %2 notifications, avec un intervalle "
                         "de %3 minutes.",
                         "%1 Einträge hätten gepasst und %2 Benachrichtigungen bedeutet, bei einem Intervall "
                         "von %3 Minuten."),
        .noMonitoredEvents = in("No events are monitored.", "Aucun événement n'est surveillé.",
                                "Es werden keine Ereignisse überwacht."),
        .findBar = ui::findTexts(language),
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
    return ui::languageOf(platform::userDefaultLanguageId());
}

}  // namespace viewer
