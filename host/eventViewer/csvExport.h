// Entries of a log as a file of comma-separated values, for a spreadsheet.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "host/eventViewer/logs.h"
#include "host/viewer/texts.h"

namespace viewer {

// One field: in quotes where it needs them. A text that a spreadsheet would take for a formula gets an
// apostrophe before it, because texts of a log come from anywhere.
std::string csvField(const std::string& text);
// A header and a row for each entry, in UTF-8 with its mark, lines ended by CR LF. The file is replaced as a
// whole or not at all. Raises platform::Failure.
void writeCsv(const std::filesystem::path& file, const std::vector<EntryPointer>& entries,
              bool ofNotifications, const Texts& texts);

}  // namespace viewer
