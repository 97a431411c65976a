// The user's default language and the system's names of languages.
#pragma once

#include <string>

#include "platform/machine/clock.h"

namespace platform {

// Language id of the user's default language (1033 for English of the United States), from the environment
// (LC_ALL, LC_MESSAGES, LANG); 1033 when it says nothing usable.
long userDefaultLanguageId();
// Which part of a date the user's locale writes first, from the environment (LC_ALL, LC_TIME, LANG).
DateOrder userDateOrder();
// Name of a language in that language, such as "Deutsch (Deutschland)"; empty for an id that the system does
// not know.
std::string languageName(long id);

}  // namespace platform
