// Words of the host's viewers in the languages that the machine may speak.
#pragma once

#include <array>
#include <string>

namespace viewer {

enum class Language { english, french, german };

struct Texts {
    // Labels of a copied event, in the order of its lines; each with its colon and tabs.
    std::array<const char*, 9> copiedLabels;
    // By type: error, warning, information, success audit, failure audit.
    std::array<const char*, 5> types;
    const char* noCategory;
    const char* noUser;

    const char* eventViewer;
    const char* log;
    std::array<const char*, 2> logs;  // Application, System
    const char* show;
    const char* allTypes;
    std::array<const char*, 8> columns;  // type, date, time, source, category, id, user, computer
    const char* refresh;
    const char* copy;
    const char* copied;
    const char* count;  // %1 of %2
    const char* details;
    const char* cannotRead;  // %1

    const char* find;
    const char* next;
    const char* previous;
    const char* notFound;  // %1

    const char* textViewer;
    const char* follow;
    const char* cannotOpen;  // %1 the file, %2 why
    const char* noFile;
    const char* beginningLeftOut;  // %1 bytes
};

const Texts& texts(Language language);
// The language of this machine's user; English when it is none of these.
Language userLanguage();

}  // namespace viewer
