#include "host/eventViewer/daysCount.h"

#include <algorithm>

#include "platform/machine/clock.h"
#include "service/transports/waysOutSettings.h"

namespace viewer {

namespace {

std::string storedForm(service::Moment moment) {
    return platform::storedForm(platform::localTime(moment));
}

}  // namespace

std::optional<service::Reckoning> countDays(const std::vector<Log>& logs,
                                            const service::Monitoring& monitoring, long eventKey,
                                            service::Moment now, int days,
                                            const std::atomic<bool>& isCancelled,
                                            const std::function<void(const DaysProgress&)>& tell) {
    constexpr std::size_t dateLength = 10;
    const service::WaysOutSettings ways = service::readWaysOut();
    service::Reckoner reckoner(monitoring, eventKey, [&](service::DeviceKind kind) {
        return service::problemOf(ways, kind).empty();
    });
    // The first day counts whole, as the others do.
    const service::Moment first = platform::daysBefore(now, days - 1);
    const std::string oldest = storedForm(first).substr(0, dateLength);
    const std::string newest = storedForm(now);
    const double span = std::max(1.0, std::chrono::duration<double>(now - first).count());
    DaysProgress progress;
    for (std::size_t log = 0; log < logs.size(); ++log) {
        const auto pages = logs[log].open();
        std::string reached = newest;
        while (pages->hasEarlier() && reached >= oldest) {
            for (const EntryPointer& entry : pages->earlier()) {
                if (isCancelled)
                    return std::nullopt;
                reached = entry->record.time;
                ++progress.records;
                // Stored forms stand in the order of their moments.
                if (reached >= oldest && reached <= newest)
                    reckoner.add(entry->record);
            }
            const auto moment = service::momentOfStored(reached);
            const double part = moment ? std::chrono::duration<double>(now - *moment).count() / span : 0;
            progress.percent =
                static_cast<int>(100 * (static_cast<double>(log) + std::clamp(part, 0.0, 1.0)) /
                                 static_cast<double>(logs.size()));
            tell(progress);
        }
    }
    return isCancelled ? std::nullopt : std::optional(reckoner.reckon(now, days));
}

}  // namespace viewer
