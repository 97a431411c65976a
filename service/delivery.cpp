#include "service/delivery.h"

#include <utility>

#include "platform/failure.h"
#include "platform/machine/clock.h"
#include "service/history/history.h"
#include "service/outbox/directory.h"
#include "service/outbox/schedule.h"

namespace service {

namespace {

Moment now() {
    return platform::clock().now();
}

std::string nameOf(const Outgoing& message) {
    return "message " + std::to_string(message.key) + " to " + message.recipient + ", " + message.address;
}

}  // namespace

Delivery::Delivery(DeliveryOptions options, ServiceLog& log)
    : options_(std::move(options)), log_(log), dispatcher_(options_.threads, options_.makeTransport) {}

// What the attempt comes to, where it cannot even be made: nothing otherwise.
std::optional<Dispatcher::Job> Delivery::jobOf(Outbox& outbox, const Outgoing& message) {
    Dispatcher::Job job;
    job.stored = message;
    job.message.key = outbox.id() + '-' + std::to_string(message.key);
    job.message.address = message.address;
    job.message.subject = message.subject;
    job.message.body = message.body;
    job.message.priority = message.priority == 2 ? Priority::urgent : Priority::normal;
    job.message.created = message.created;
    job.message.eventSource = message.eventSource;
    job.message.eventId = message.eventId;
    job.message.eventType = message.eventType;
    job.message.computer = message.computer;
    if (!message.voiceFile.empty())
        job.message.voiceFile = options_.voiceFolder / message.voiceFile;
    if (message.kind == DeviceKind::voiceMail || message.kind == DeviceKind::email) {
        try {
            const auto alias = directoryAlias(message.address);
            if (!alias) {
                settle(outbox, message, {Result::refused, "The directory has no such entry"});
                return std::nullopt;
            }
            job.message.address = *alias + '@' + options_.mailDomain();
        } catch (const platform::Failure& failure) {
            settle(outbox, message,
                   {Result::tryAgain, "The directory cannot be read: " + failure.description()});
            return std::nullopt;
        }
    }
    return job;
}

void Delivery::sendDue(Outbox& outbox) {
    while (dispatcher_.idle() > 0) {
        const auto due = outbox.due(now(), dispatcher_.idle(), dispatcher_.busy());
        if (due.empty())
            return;
        for (const Outgoing& message : due)
            if (auto job = jobOf(outbox, message)) {
                options_.passes("before send");
                dispatcher_.start(std::move(*job));
            }
    }
}

// An outcome that cannot be kept stays here, and nothing more is sent until it can: its message would look as
// if it had never been sent.
void Delivery::settle(Outbox& outbox) {
    for (auto& ended : dispatcher_.take())
        ended_.push_back(std::move(ended));
    for (; !ended_.empty(); ended_.pop_front())
        settle(outbox, ended_.front().first, ended_.front().second);
}

void Delivery::settle(Outbox& outbox, Outgoing message, const Outcome& outcome) {
    options_.passes("sent but unmarked");
    ++message.attempts;
    message.answer = outcome.answer;
    message.settled = now();
    const bool taken = outcome.result == Result::delivered || outcome.result == Result::handedOver;
    if (taken) {
        message.state = State::told;
    } else if (outcome.result == Result::refused) {
        message.state = State::refused;
    } else if (const auto next = nextAttempt(message.attempts, message.created, message.settled)) {
        message.nextAttempt = *next;
    } else {
        message.state = State::givenUp;
    }
    outbox.update(message);
    const bool waits = message.state == State::waiting;
    log_.add((taken   ? "Told: "
              : waits ? "Waits: "
                      : "Not told: ") +
             nameOf(message) + ": " + outcomeText(message) +
             (waits ? "; next attempt at " + platform::defaultForm(platform::localTime(message.nextAttempt))
                    : std::string()));
}

// First the outcome, then the history, then done: whatever is interrupted is finished after a restart.
void Delivery::record(Outbox& outbox, Configuration& configuration) {
    std::vector<Outgoing> messages = outbox.unrecorded();
    if (messages.empty())
        return;
    options_.passes("before the history");
    writeHistory(configuration.connection(), messages);
    configuration.forget();
    for (Outgoing& message : messages) {
        message.outcome = std::exchange(message.state, State::done);
        outbox.update(message);
    }
}

}  // namespace service
