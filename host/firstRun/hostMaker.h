// Makes the host that was chosen, with the tool beside this program.
#pragma once

#include <QString>
#include <QStringList>

#include "host/firstRun/firstRunTexts.h"

namespace firstRun {

enum class Choice { thisMachine, demonstration };

struct Outcome {
    bool isMade = false;
    QString told;  // what the tool printed, and what became of the service, or why nothing was made
};

// A program and its words; `tree` is the folder of the new installation tree.
QStringList makingCommand(Choice choice, const QString& tree);

// Runs it to its end, and for this machine has the service started with the user's session, where the system
// can do that.
Outcome makeHost(Choice choice, const QString& tree, const Texts& texts);

}  // namespace firstRun
