// Whether this host watches the machine's journal, and which one.
#pragma once

#include <filesystem>

namespace service {

struct JournalChoice {
    bool isOn = false;
    std::filesystem::path folder;  // of a journal elsewhere; empty for the machine's own
};

// From the host's registry, key "Sources" of the product: the value Journal, 1 as a number or a text, and
// JournalFolder. Raises platform::Failure when the registry cannot be read.
JournalChoice journalChoice();
// Writes that choice. Raises platform::Failure.
void chooseJournal(const JournalChoice& choice);

}  // namespace service
