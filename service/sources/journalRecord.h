// How a record of the journal becomes an event record.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/machine/eventLog.h"

struct sd_journal;

namespace service {

// The log that records of a program belong to. The kernel's and the system manager's are the system's.
const char* journalLog(std::string_view identifier, bool isSystems);

// The record that the journal stands at. Nothing when it cannot be read; `reason` says why then.
std::optional<platform::EventRecord> journalRecord(sd_journal* journal, std::string& reason);

// "2026-11-24 14:05:09", local time, of microseconds since 1970.
std::string journalMoment(std::uint64_t microseconds);

}  // namespace service
