// An event that somebody copied in the event viewer of this machine.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace mdlUtility {

// Reads the viewer's text, in English, French or German: lines that end with carriage return and line feed,
// each a label, a colon, tabs and a value; labels are not compared. True when source, id and type were
// found; `eventType` is 0 error (also for a word that it does not know), 1 warning, 2 information. On false
// the outputs before the line at fault are set already.
bool checkEventFromClipboardText(std::string_view text, std::string& source, std::string& eventId,
                                 std::int16_t& eventType);

}  // namespace mdlUtility
