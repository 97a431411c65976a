// The chapters of the tour, in the order in which they are played. Each starts from the main window with no
// other window open and ends there.
#pragma once

#include <filesystem>

#include "support/windowScript.h"
#include "ui/shell/frmMain.h"
#include "ui/widgets/keyedTree.h"

namespace tour {

struct Play {
    frmMain& window;
    support::WindowScript& script;
    std::filesystem::path root;  // of host and installation tree

    ui::KeyedTree& tree() const { return *window.tvNavigation; }
};

// What comes before the main window of the first run: the password, wrong and right, and the service's start.
void expectInstallation(support::WindowScript& script);
// The event that catches all errors, and the sources that it leaves alone.
void playCatchAll(const Play& play);
// New events, from the menu, from a copied event, with a voice file; the list of events.
void playEvents(const Play& play);
// New recipients with every device that this server has, their list, and a test.
void playRecipients(const Play& play);
// An event, its recipients and the questions on its way to being watched for.
void playAssignment(const Play& play);
// A record of that event, the mail that it leads to, and the list that tells of it.
void playNotification(const Play& play);
void playExclusions(const Play& play);
// Options, import, log file, help, languages.
void playTools(const Play& play);

// What comes before the main window of a later run: a newer service that does not start.
void expectUpgrade(support::WindowScript& script);
// All seven kinds of devices and the reports, which this version shows nobody.
void playDormant(const Play& play);
// The end of the run and of the service.
void playRemoval(const Play& play);

}  // namespace tour
