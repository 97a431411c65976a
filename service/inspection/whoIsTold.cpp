#include "service/inspection/whoIsTold.h"

#include <sys/stat.h>

#include <utility>

#include "service/outbox/inspection.h"
#include "service/transports/waysOutSettings.h"

namespace service {

WhoIsTold::WhoIsTold(std::filesystem::path databaseFile, std::filesystem::path outboxFile)
    : databaseFile_(std::move(databaseFile)), outboxFile_(std::move(outboxFile)) {}

// A file that took the place of the open one is opened in its stead.
void WhoIsTold::open() {
    struct stat status {};
    const ino_t number = ::stat(databaseFile_.c_str(), &status) == 0 ? status.st_ino : 0;
    if (database_ && number == fileNumber_)
        return;
    readVersion_.reset();
    database_.reset();
    auto connection = std::make_unique<platform::Connection>();
    connection->open("Provider=Microsoft.Jet.OLEDB.4.0;Mode=Read;Data Source=" + databaseFile_.string());
    database_ = std::move(connection);
    fileNumber_ = number;
}

const Monitoring& WhoIsTold::monitoring() {
    try {
        open();
        platform::Recordset version;
        version.open("PRAGMA data_version", *database_);
        const long now = version.number("data_version");
        if (readVersion_ != now) {
            readVersion_.reset();
            monitoring_ = readMonitoring(*database_);
            readVersion_ = now;
        }
    } catch (const platform::Failure&) {
        database_.reset();
        throw;
    }
    return monitoring_;
}

std::vector<EventAnswer> WhoIsTold::of(const platform::EventRecord& record, Moment now) {
    const auto outbox = viewOutbox(outboxFile_);
    return answers(record, now,
                   [&](long eventKey) { return outbox ? outbox->pendingSince(eventKey) : std::nullopt; });
}

std::vector<EventAnswer> WhoIsTold::ofThen(const platform::EventRecord& record, Moment moment) {
    // The database knows moments by the second, so what was told of this very record may bear the same.
    const Moment before = moment - std::chrono::milliseconds(1);
    const auto newest = newestMessagesBefore(outboxFile_, before);
    return answers(record, before, [&](long eventKey) {
        const auto found = newest.find(eventKey);
        return found == newest.end() ? std::nullopt : std::optional(found->second);
    });
}

std::vector<EventAnswer> WhoIsTold::answers(const platform::EventRecord& record, Moment moment,
                                            std::function<std::optional<Moment>(long)> pendingSince) {
    const Monitoring& known = monitoring();
    const WaysOutSettings ways = readWaysOut();
    const Circumstances circumstances{moment, [&](DeviceKind kind) { return problemOf(ways, kind).empty(); },
                                      std::move(pendingSince)};
    std::vector<EventAnswer> result;
    for (const EventVerdict& verdict : decide(record, known, circumstances)) {
        EventAnswer answer{verdict.event->key, verdict.event->title, verdict.reason, {}, {}};
        if (verdict.has(Reason::withinInterval))
            answer.heldBackUntil = heldBackUntil(*verdict.event, known, circumstances);
        for (const DeviceVerdict& each : verdict.devices)
            answer.devices.push_back(
                {each.device->recipient, each.device->kind, each.device->address, each.reason,
                 each.reason == Reason::notSetUp ? problemOf(ways, each.device->kind) : std::string()});
        result.push_back(std::move(answer));
    }
    return result;
}

}  // namespace service
