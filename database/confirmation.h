// The question before an operation that cannot be taken back.
#pragma once

#include <string>

#include "platform/prompts.h"

namespace mdlDatabase {

// True only when the administrator answers Yes.
inline bool confirmed(const std::string& text, const std::string& title) {
    using namespace platform;
    return prompts().messageBox({text, title, BoxIcon::question, BoxButtons::yesNo}) == BoxAnswer::yes;
}

}  // namespace mdlDatabase
