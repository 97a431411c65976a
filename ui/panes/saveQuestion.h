// The question before edits would be lost.
#pragma once

#include "platform/prompts.h"

namespace ui {

inline constexpr long eventSettingsChanged = 1134;
inline constexpr long recipientSettingsChanged = 1137;

// Asks with Yes, No and Cancel. `changed` is the string-table text that tells what has changed.
platform::BoxAnswer askToSave(long changed);

}  // namespace ui
