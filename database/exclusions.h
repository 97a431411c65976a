// Exclusions of the catch-all event, and how many of an event's recipients and devices would be notified.
#pragma once

#include <map>
#include <string>

#include "platform/ado.h"

namespace mdlDatabase {

// All exclusions by source and id; left open for the caller.
platform::Recordset getExclusions();

// Entries "ActiveDevices", "Recipients" and "ActiveRecipients".
using EventAnalysis = std::map<std::string, long>;
EventAnalysis analyzeEvent(long eventKey);
// State as a tree icon: 0 complete, 1 incomplete, 2 inactive (which wins).
long getEventState(long eventKey);

}  // namespace mdlDatabase
