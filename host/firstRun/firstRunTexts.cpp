#include "host/firstRun/firstRunTexts.h"

namespace firstRun {

namespace {

constexpr Texts english{
    "Quillon Service",
    "What is this console to administer?",
    "&This machine",
    "The service watches this machine's journal and notifies its people.",
    "A &demonstration",
    "An invented server to try everything on. Mail stays in the demonstration's own mailboxes.",
    "1 or 2 (anything else ends): ",
    "Cancel",
    "The host is being made …",
    "The host could not be made.",
    "&Start the console",
    "The service runs, and starts with your session. \"loginctl enable-linger\" lets it run while nobody is "
    "logged in.",
    "The service was not set up to start by itself: %1",
};

constexpr Texts french{
    "Quillon Service",
    "Que doit administrer cette console ?",
    "&Cette machine",
    "Le service surveille le journal de cette machine et avertit ses utilisateurs.",
    "Une &démonstration",
    "Un serveur fictif pour tout essayer. Les messages restent dans les boîtes de la démonstration.",
    "1 ou 2 (toute autre réponse arrête) : ",
    "Annuler",
    "L'hôte est en cours de création …",
    "L'hôte n'a pas pu être créé.",
    "&Lancer la console",
    "Le service fonctionne et démarre avec votre session. « loginctl enable-linger » le laisse fonctionner "
    "quand personne n'est connecté.",
    "Le démarrage automatique du service n'a pas pu être mis en place : %1",
};

constexpr Texts german{
    "Quillon Service",
    "Was soll diese Konsole verwalten?",
    "&Diesen Rechner",
    "Der Dienst überwacht das Journal dieses Rechners und benachrichtigt seine Benutzer.",
    "Eine &Vorführung",
    "Ein erfundener Server, um alles auszuprobieren. Nachrichten bleiben in den Postfächern der Vorführung.",
    "1 oder 2 (alles andere beendet): ",
    "Abbrechen",
    "Der Host wird angelegt …",
    "Der Host konnte nicht angelegt werden.",
    "&Konsole starten",
    "Der Dienst läuft und startet mit Ihrer Sitzung. \"loginctl enable-linger\" lässt ihn laufen, wenn "
    "niemand "
    "angemeldet ist.",
    "Der Dienst startet nicht von selbst: %1",
};

}  // namespace

const Texts& texts(viewer::Language language) {
    return language == viewer::Language::french   ? french
           : language == viewer::Language::german ? german
                                                  : english;
}

}  // namespace firstRun
