// The logs that the event viewer shows, each read page by page, the newest first.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/machine/eventLog.h"
#include "service/inspection/installationFiles.h"
#include "service/inspection/notifications.h"

namespace viewer {

struct Entry {
    // Names the entry while its log is read anew; falls from entry to entry.
    std::uint64_t place = 0;
    platform::EventRecord record;  // of a notification: moment, source, id, type and computer of its event
    std::optional<service::Notification> notification;
};
using EntryPointer = std::shared_ptr<const Entry>;

// A log as it stands at one moment. Used by one thread; raises platform::Failure.
class LogPages {
  public:
    virtual ~LogPages() = default;
    virtual bool hasEarlier() const = 0;
    // The entries before those that were given, the newest first; a page may be empty.
    virtual std::vector<EntryPointer> earlier() = 0;
};

// How a log is come by. Both functions are called in a thread beside the window.
struct Log {
    std::function<std::unique_ptr<LogPages>()> open;
    // Another text whenever the log may have changed. Raises nothing.
    std::function<std::string()> stamp;
    bool isOfNotifications = false;
};

// The host's log of that name, "Application" or "System".
Log hostLog(const std::string& name);
// The machine's journal, where the host watches it. Raises nothing.
std::optional<Log> journalLog();
// What was told and what waits.
Log notificationLog();

using service::databaseFile;
using service::outboxFile;

}  // namespace viewer
