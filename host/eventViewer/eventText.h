// One event as text, in the form that it is copied in.
#pragma once

#include <string>

#include "host/viewer/texts.h"
#include "platform/machine/eventLog.h"

namespace viewer {

// Index of a record's type in Texts::types; a type that is none of the system's counts as information.
std::size_t typeIndex(std::uint16_t type);
// The words of a record's columns: type, date, time, source, category, id, user, computer. Date and time are
// in the machine's form.
std::array<std::string, 8> columnTexts(const platform::EventRecord& event, const Texts& texts);
// Lines of label and value, each ended by carriage return and line feed; the description stands last, on
// lines of its own.
std::string copiedText(const platform::EventRecord& event, const Texts& texts);

}  // namespace viewer
