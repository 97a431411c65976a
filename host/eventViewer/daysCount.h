// How often a monitored event would have told in the last days: its counting over the logs, beside the
// window.
#pragma once

#include <atomic>
#include <functional>
#include <vector>

#include "host/eventViewer/logs.h"
#include "service/inspection/reckoning.h"

namespace viewer {

struct DaysProgress {
    std::size_t records = 0;  // looked at
    int percent = 0;
};

// Reads the logs back for so many whole days and reckons. Gives nothing when `isCancelled` became true
// meanwhile; `tell` is called now and then. Raises platform::Failure.
std::optional<service::Reckoning> countDays(const std::vector<Log>& logs,
                                            const service::Monitoring& monitoring, long eventKey,
                                            service::Moment now, int days,
                                            const std::atomic<bool>& isCancelled,
                                            const std::function<void(const DaysProgress&)>& tell);

}  // namespace viewer
