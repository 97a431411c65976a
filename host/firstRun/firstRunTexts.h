// Words of the first run's question, in the languages that the machine may speak.
#pragma once

#include "host/viewer/texts.h"

namespace firstRun {

struct Texts {
    const char* title;
    const char* question;
    const char* thisMachine;
    const char* thisMachineMeans;
    const char* demonstration;
    const char* demonstrationMeans;
    const char* answer;  // in a terminal: 1, 2, anything else ends
    const char* cancel;
    const char* making;
    const char* failed;
    const char* startConsole;
    const char* startsWithMachine;
    const char* doesNotStart;  // %1 why
};

const Texts& texts(viewer::Language language);

}  // namespace firstRun
