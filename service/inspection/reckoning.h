// How often an event would have told in a span of days: the decision run over records, nothing sent.
#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/machine/eventLog.h"
#include "service/decision/decide.h"

namespace service {

struct Reckoning {
    std::size_t records = 0;        // that the event matches
    std::size_t notifications = 0;  // that they mean: one for each device that is told
    struct Day {
        std::string date;  // "2026-11-24"
        std::size_t records = 0;
        std::size_t notifications = 0;
    };
    std::vector<Day> days;  // each of the span, the oldest first
};

// Takes records in any order, then reckons. With the present database and interval; what was really told
// meanwhile does not count. `monitoring` has to stay.
class Reckoner {
  public:
    Reckoner(const Monitoring& monitoring, long eventKey, std::function<bool(DeviceKind)> isSetUp);

    // One record; its moment in stored form is read only where the event matches it.
    void add(const platform::EventRecord& record);
    // Of the `days` whole days that end with `end`.
    Reckoning reckon(Moment end, int days) const;

  private:
    struct Match {
        Moment moment;
        int date = 0;  // 20261124, local
        std::size_t devices = 0;
    };
    // Devices that a record of this source, id and type is told to when nothing is held back; nothing for a
    // record that the event does not tell of.
    std::optional<std::size_t> devicesFor(const platform::EventRecord& record);

    const Monitoring& monitoring_;
    const MonitoredEvent* event_;
    Circumstances circumstances_;
    std::unordered_map<std::string, std::optional<std::size_t>> known_;
    std::vector<Match> matches_;
};

}  // namespace service
