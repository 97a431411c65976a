// Who would be told of a record, for those who only ask: the service's own decision on what the database, the
// outbox and the registry say by now. Nothing is sent and nothing written.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/ado/ado.h"
#include "platform/machine/eventLog.h"
#include "service/decision/decide.h"

namespace service {

// The verdicts as values of their own.
struct DeviceAnswer {
    std::string recipient;
    DeviceKind kind{};
    std::string address;
    Reason reason = Reason::send;
    std::string problem;  // of a kind that is not set up: what to set up
};
struct EventAnswer {
    long key = 0;
    std::string title;
    Reason reason = Reason::send;
    std::optional<Moment> heldBackUntil;  // of an event whose records are held back
    std::vector<DeviceAnswer> devices;
};

// Keeps the database open and reads it again when somebody has changed it. Used by one thread.
class WhoIsTold {
  public:
    WhoIsTold(std::filesystem::path databaseFile, std::filesystem::path outboxFile);

    // One answer for each monitored event of the record's source and id, as if the record came at `now`.
    // Raises platform::Failure; the next call tries again.
    std::vector<EventAnswer> of(const platform::EventRecord& record, Moment now);
    // The same, as if the record came at its own moment: with what is set up now, and what the outbox still
    // knows of what had been told by then.
    std::vector<EventAnswer> ofThen(const platform::EventRecord& record, Moment moment);
    // What the database says by now. Raises platform::Failure. The reference holds until the next call.
    const Monitoring& monitoring();

  private:
    void open();
    std::vector<EventAnswer> answers(const platform::EventRecord& record, Moment moment,
                                     std::function<std::optional<Moment>(long)> pendingSince);

    std::filesystem::path databaseFile_;
    std::filesystem::path outboxFile_;
    std::unique_ptr<platform::Connection> database_;
    ino_t fileNumber_ = 0;
    std::optional<long> readVersion_;
    Monitoring monitoring_;
};

}  // namespace service
