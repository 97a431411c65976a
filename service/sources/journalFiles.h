// The files that a journal consists of, looked at one by one: the library passes over those that it cannot
// read without a word.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace service {

struct JournalFiles {
    std::string problem;               // why nothing, or not all, can be read and what to do; one line
    std::vector<std::string> damaged;  // a line for each file that cannot be read although it may be
};

// Looks at the system's journal, or at that of a folder.
JournalFiles inspectJournalFiles(const std::filesystem::path& folder);

}  // namespace service
