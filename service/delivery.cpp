#include "service/delivery.h"

#include <algorithm>
#include <utility>

#include "platform/failure.h"
#include "platform/machine/clock.h"
#include "service/history/history.h"
#include "service/outbox/directory.h"
#include "service/outbox/schedule.h"
#include "service/sources/readableText.h"

namespace service {

namespace {

// To one address, kept with one write: their number bounds what a crash lets be sent a second time.
constexpr std::size_t messagesTogether = 100;

Moment now() {
    return platform::clock().now();
}

std::string nameOf(const Outgoing& message) {
    return "message " + std::to_string(message.key) + " to " + message.recipient + ", " + message.address;
}

}  // namespace

Delivery::Delivery(DeliveryOptions options, ServiceLog& log)
    : options_(std::move(options)),
      log_(log),
      dispatcher_(options_.threads, options_.makeTransport,
                  [this](Dispatcher::Job& job, const Deadline& deadline) { return prepare(job, deadline); }) {
}

// In a thread of the dispatcher: a directory that does not answer holds nobody else.
std::optional<Outcome> Delivery::prepare(Dispatcher::Job& job, const Deadline& deadline) const {
    if (job.stored.kind != DeviceKind::voiceMail && job.stored.kind != DeviceKind::email)
        return std::nullopt;
    const DirectoryAnswer answer = directoryAlias(job.stored.address, deadline);
    if (!answer.problem.empty())
        return Outcome{Result::tryAgain, "The directory cannot be read: " + answer.problem};
    if (!answer.alias)
        return Outcome{Result::refused, "The directory has no such entry"};
    job.message.address = *answer.alias + '@' + options_.mailDomain();
    return std::nullopt;
}

Dispatcher::Job Delivery::jobOf(const Outbox& outbox, const Outgoing& message) const {
    Dispatcher::Job job;
    job.stored = message;
    job.stored.outboxId = outbox.id();
    job.message.key = outbox.id() + '-' + std::to_string(message.key);
    job.message.address = message.address;
    job.message.subject = message.subject;
    job.message.body = message.body;
    job.message.priority = static_cast<Priority>(std::clamp(message.priority, 0L, 2L));
    job.message.created = message.created;
    job.message.eventSource = message.eventSource;
    job.message.eventId = message.eventId;
    job.message.eventType = message.eventType;
    job.message.computer = message.computer;
    if (!message.voiceFile.empty())
        job.message.voiceFile = options_.voiceFolder / message.voiceFile;
    return job;
}

// A server that is silent may hold all the threads of its lane, and the other lane goes on.
void Delivery::sendDue(Outbox& outbox) {
    const std::size_t most = std::max<std::size_t>(options_.threads / 2, 1);
    for (const Lane lane : {Lane::mail, Lane::other})
        while (dispatcher_.idle() > 0 && dispatcher_.busyIn(lane) < most) {
            Dispatcher::Jobs jobs;
            for (const Outgoing& message : outbox.due(now(), lane, dispatcher_.busy(), messagesTogether)) {
                options_.passes("before send");
                jobs.push_back(jobOf(outbox, message));
            }
            if (jobs.empty())
                break;
            dispatcher_.start(std::move(jobs));
        }
}

void Delivery::collect() {
    for (auto& ended : dispatcher_.take())
        ended_.push_back(std::move(ended));
}

// Outcomes that cannot be kept stay here, and nothing more is sent until they can: their messages would look
// as if they had never been sent.
void Delivery::settle(Outbox& outbox) {
    collect();
    std::vector<Outgoing> kept;
    std::vector<std::string> lines;
    for (const auto& [message, outcome] : ended_) {
        options_.passes("sent but unmarked");
        const Outgoing settled = settledOf(message, outcome, lines);
        // In an outbox that was made anew its key belongs to another message.
        if (settled.outboxId == outbox.id())
            kept.push_back(settled);
    }
    if (!kept.empty())
        outbox.update(kept);
    for (const std::string& line : lines)
        log_.add(line);
    ended_.clear();
}

Outgoing Delivery::settledOf(Outgoing message, const Outcome& outcome,
                             std::vector<std::string>& lines) const {
    ++message.attempts;
    message.answer = readableText(outcome.answer);
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
    const bool waits = message.state == State::waiting;
    lines.push_back(
        (taken   ? "Told: "
         : waits ? "Waits: "
                 : "Not told: ") +
        nameOf(message) + ": " + outcomeText(message) +
        (waits ? "; next attempt at " + platform::defaultForm(platform::localTime(message.nextAttempt))
               : std::string()));
    return message;
}

// First the outcome, then the history, then done: whatever is interrupted is finished after a restart.
void Delivery::record(Outbox& outbox, Configuration& configuration) {
    std::vector<Outgoing> messages = outbox.unrecorded();
    if (messages.empty())
        return;
    options_.passes("before the history");
    writeHistory(configuration.connection(), messages);
    configuration.forget();
    for (Outgoing& message : messages)
        message.outcome = std::exchange(message.state, State::done);
    outbox.update(messages);
}

}  // namespace service
