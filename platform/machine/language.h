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
// Name of a language such as "German (Germany)"; empty when the system does not know the id.
std::string languageName(long id);

}  // namespace platform
