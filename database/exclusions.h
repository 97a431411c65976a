// Exclusions of the catch-all event, and how many of an event's recipients and devices would be notified.
#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>

#include "core/dictionary.h"
#include "platform/ado/ado.h"

namespace mdlDatabase {

// Characters that the source of an exclusion may have; a longer one is not stored.
inline constexpr int longestExclusionSource = 50;

// The id that excludes every id of its source.
inline constexpr long allExclusionIds = -1;

// Recordsets are left open for the caller, who reads and closes them; one that failed to open is closed.
platform::Recordset getExclusion(long exclusionKey);
// All exclusions by source and id.
platform::Recordset getExclusions();

// Ids are 32 bits, or allExclusionIds. The new key; no pair is refused for being there already.
// 0 when the row could not be written; the first exclusion's key is 0, too.
long addNewExclusion(std::string_view eventSource, long eventId);
// The source stays. Without such an exclusion nothing is written.
void modifyExclusion(long exclusionKey, long eventId);
// Asks first; true when deleted.
bool deleteExclusion(long exclusionKey);
// Rewrites the whole table from source to id, with new keys; the new rows come all or none.
void replaceExclusions(const core::Dictionary<long>& exclusions);

// Whom an event would be told to. A device that was cut off for its lost entry
// counts like any other; only its recipient's state shows it.
struct EventAnalysis {
    long activeDevices = 0;     // rows of the event that are active and whose recipient is
    long recipients = 0;        // those with at least one row
    long activeRecipients = 0;  // those of them who are active
    bool operator==(const EventAnalysis&) const = default;
};
EventAnalysis analyzeEvent(long eventKey);
// The keys of all events that somebody would be notified of: those whose counts are all above 0, in one
// statement. Empty on failure.
std::set<long> eventsThatNotify();
// As a tree icon. Inactive wins; complete is one whose counts are all above 0.
enum EventState : long { eventComplete = 0, eventIncomplete, eventInactive };
EventState getEventState(long eventKey);
// The same for a row of getEvents, whose failures it raises.
EventState stateOfEvent(const platform::Recordset& event, const std::set<long>& thatNotify);

}  // namespace mdlDatabase
