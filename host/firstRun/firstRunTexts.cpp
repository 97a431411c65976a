#include "host/firstRun/firstRunTexts.h"

namespace firstRun {

namespace {

constexpr Texts textsIn(viewer::Language language) {
    const auto in = [language](const char* english, const char* french, const char* german) {
        return ui::oneOf(language, english, french, german);
    };
    return {
        .title = "Quillon Service",
        .question = in("What is this console to administer?", "Que doit administrer cette console ?",
                       "Was soll diese Konsole verwalten?"),
        .thisMachine = in("&This machine", "&Cette machine", "&Diesen Rechner"),
        .thisMachineMeans =
            in("The service watches this machine's journal and notifies its people.",
               "Le service surveille le journal de cette machine et avertit ses utilisateurs.",
               "Der Dienst überwacht das Journal dieses Rechners und benachrichtigt seine Benutzer."),
        .demonstration = in("A &demonstration", "Une &démonstration", "Eine &Vorführung"),
        .demonstrationMeans = in("An invented server to try everything on."
                                 " Mail stays in the demonstration's own mailboxes.",
                                 "Un serveur fictif pour tout essayer."
                                 " Les messages restent dans les boîtes de la démonstration.",
                                 "Ein erfundener Server, um alles auszuprobieren."
                                 " Nachrichten bleiben in den Postfächern der Vorführung."),
        .answer = in("1 or 2 (anything else ends): ", "1 ou 2 (toute autre réponse arrête) : ",
                     "1 oder 2 (alles andere beendet): "),
        .cancel = in("Cancel", "Annuler", "Abbrechen"),
        .making =
            in("The host is being made …", "L'hôte est en cours de création …", "Der Host wird angelegt …"),
        .failed = in("The host could not be made.", "L'hôte n'a pas pu être créé.",
                     "Der Host konnte nicht angelegt werden."),
        .startConsole = in("&Start the console", "&Lancer la console", "&Konsole starten"),
        .startsWithMachine =
            in("The service runs, and starts with your session."
               " \"loginctl enable-linger\" lets it run while nobody is logged in.",
               "Le service fonctionne et démarre avec votre session."
               " « loginctl enable-linger » le laisse fonctionner quand personne n'est connecté.",
               "Der Dienst läuft und startet mit Ihrer Sitzung."
               " \"loginctl enable-linger\" lässt ihn laufen, wenn niemand angemeldet ist."),
        .doesNotStart = in("The service was not set up to start by itself: %1",
                           "Le démarrage automatique du service n'a pas pu être mis en place : %1",
                           "Der Dienst startet nicht von selbst: %1"),
    };
}

constexpr Texts english = textsIn(viewer::Language::english);
constexpr Texts french = textsIn(viewer::Language::french);
constexpr Texts german = textsIn(viewer::Language::german);

}  // namespace

const Texts& texts(viewer::Language language) {
    return language == viewer::Language::french   ? french
           : language == viewer::Language::german ? german
                                                  : english;
}

}  // namespace firstRun
