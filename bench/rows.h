// The groups of rows. Each runs its comparisons into the table; files are made below `folder`.
#pragma once

#include <filesystem>
#include <string>

#include "bench/table.h"

namespace bench {

// From the start of the process to the first painted window, on the X display that DISPLAY names.
void startRows(Table& table, const std::filesystem::path& folder);
// The main window's tree, grids and dialogs on a large installation.
void windowRows(Table& table, const std::filesystem::path& folder);
// How long a key takes in the fields of the windows, and how a search of a large directory fills its window.
void answerRows(Table& table, const std::filesystem::path& folder);
void logRows(Table& table, const std::filesystem::path& folder);
// Recordsets; `place` is told with each row, because writing is as durable as the folder's disk is slow.
void recordsetRows(Table& table, const std::filesystem::path& folder, const std::string& place);

}  // namespace bench
