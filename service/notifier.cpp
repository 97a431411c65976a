#include "service/notifier.h"

#include <fcntl.h>
#include <sys/epoll.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <exception>
#include <utility>

#include "platform/failure.h"
#include "platform/files/fileLock.h"
#include "platform/machine/clock.h"
#include "platform/machine/host.h"
#include "service/decision/render.h"
#include "service/history/history.h"

namespace service {

namespace {

using std::chrono::milliseconds;

constexpr std::size_t recordsOfABatch = 1000;

Moment now() {
    return platform::clock().now();
}

std::string nameOf(const platform::EventRecord& record) {
    return record.source + " " + std::to_string(record.id) + ", " + typeName(record.type);
}

std::string nameOf(const MonitoredEvent& event) {
    return "event " + std::to_string(event.key) + ", \"" + event.title + "\"";
}

std::string momentText(const std::string& stored) {
    platform::LocalTime time{};
    return platform::parseMoment(stored, time) ? platform::defaultForm(time) : stored;
}

std::string closingLine(const HeldBack& held) {
    return std::to_string(held.count) + (held.count == 1 ? " record" : " records") +
           " of this event had been held back, from " + momentText(held.first) + " to " +
           momentText(held.last) + ".";
}

bool isOlder(const platform::EventRecord& record, std::chrono::minutes age) {
    const auto moment = momentOfStored(record.time);
    return moment && *moment < now() - age;
}

platform::Descriptor watchAll(std::initializer_list<int> descriptors) {
    platform::Descriptor all(::epoll_create1(EPOLL_CLOEXEC));
    if (!all)
        throw platform::failureFromErrno(errno, "epoll");
    for (const int each : descriptors) {
        epoll_event event{};
        event.events = EPOLLIN;
        if (each >= 0)
            ::epoll_ctl(all.get(), EPOLL_CTL_ADD, each, &event);
    }
    return all;
}

// Two services on one outbox would each send what waits in it.
platform::Descriptor lockBeside(const std::filesystem::path& file) {
    platform::Descriptor lock = platform::files::lockAlone(file.string() + ".lock");
    if (!lock)
        throw platform::Failure(platform::permissionDenied,
                                "another process works on " + file.string() + " already; this one waits");
    return lock;
}

}  // namespace

Notifier::Notifier(NotifierOptions options, std::vector<std::unique_ptr<Source>> sources)
    : options_(std::move(options)),
      delivery_(options_.delivery, log_),
      sources_(std::move(sources)),
      configuration_(options_.databaseFile),
      logsWatch_(platform::host::eventLogsFolder()),
      wake_(watchAll({delivery_.descriptor(), logsWatch_.descriptor()})) {}

template <class Step>
void Notifier::attempt(const std::string& what, Step&& step) {
    std::string trouble;
    try {
        step();
    } catch (const platform::Failure& failure) {
        trouble = failure.description();
        // Opened anew, a damaged outbox is set aside.
        if (failure.number() == storeDamaged && failure.source() == storeName)
            outbox_.reset();
    } catch (const std::exception& error) {
        trouble = error.what();
    }
    std::string& known = troubles_[what];
    if (trouble != known)
        log_.add(what + (trouble.empty() ? ": works again" : ": " + trouble));
    known = std::move(trouble);
}

// What the logs hold already is no news to a first start.
void Notifier::begin() {
    log_.add("HbQlnSvc started");
    for (const auto& source : sources_)
        attempt("Reading " + source->name(), [&] { beginnings_[source->name()] = source->end(); });
}

// The first message gets a key that no row of the history has yet, so the database has to be readable before
// an outbox is made.
void Notifier::openOutbox() {
    if (outbox_)
        return;
    if (!outboxLock_)
        outboxLock_ = lockBeside(options_.outboxFile);
    const bool isFirst = !std::filesystem::exists(options_.outboxFile);
    const std::int64_t firstKey = newestLogKey(configuration_.connection()) + 1;
    outbox_ = std::make_unique<Outbox>(options_.outboxFile, firstKey);
    if (outbox_->setAside())
        log_.add("The outbox was damaged and is kept as " + outbox_->setAside()->string() +
                 ". A new one begins at the end of the event logs; what waited in the old one is not told.");
    if (!isFirst && !outbox_->setAside())
        return;
    Outbox::Batch batch(*outbox_);
    for (const auto& [source, position] : beginnings_)
        batch.setPosition(source, position);
    batch.commit();
}

Circumstances Notifier::circumstances() {
    return {now(), options_.isSetUp, [this](long eventKey) { return outbox_->pendingSince(eventKey); }};
}

// One batch of a source; true when there may be more.
bool Notifier::takeIn(Source& source) {
    const auto stored = outbox_->position(source.name());
    const std::string position = stored.value_or(beginnings_[source.name()]);
    const Batch read = source.read(position, recordsOfABatch);
    // What cannot be taken in yet is read once more at the next look, and told once.
    std::vector<std::string>& told = toldNotices_[source.name()];
    if (read.notices != told)
        for (const std::string& notice : read.notices)
            log_.add(notice);
    told = read.notices;
    // A source that is new keeps its beginning: what comes while the service is down is news then.
    if (read.records.empty() && stored && read.position == position)
        return false;
    // The records come first: whoever writes one has written before it what it is about.
    const Monitoring& monitoring = configuration_.current();
    Outbox::Batch batch(*outbox_);
    for (const platform::EventRecord& record : read.records)
        deal(batch, record, monitoring);
    batch.setPosition(source.name(), read.position);
    batch.commit();
    beginnings_[source.name()] = read.position;
    told.clear();
    options_.delivery.passes("rows committed");
    return !read.isWhole;
}

void Notifier::deal(Outbox::Batch& batch, const platform::EventRecord& record, const Monitoring& monitoring) {
    for (const EventVerdict& verdict : decide(record, monitoring, circumstances())) {
        if (everything_.value_or(false)) {
            log_.add("Record " + nameOf(record) + ", " + nameOf(*verdict.event) + ": " +
                     std::string(textOf(verdict.reason)));
            for (const DeviceVerdict& each : verdict.devices)
                log_.add("    " + each.device->recipient + ", " + each.device->address + ": " +
                         std::string(textOf(each.reason)));
        }
        const bool tells = verdict.has(Reason::send);
        if (verdict.has(Reason::withinInterval))
            holdBack(batch, verdict, record, "within the notification interval");
        else if (tells && !verdict.event->isTest && isOlder(record, options_.oldestNotice))
            holdBack(batch, verdict, record, "it is old");
        else if (tells || verdict.reason == Reason::send)
            tell(batch, verdict, record);
    }
}

void Notifier::holdBack(Outbox::Batch& batch, const EventVerdict& verdict,
                        const platform::EventRecord& record, const char* why) {
    batch.holdBack(verdict.event->key, record);
    log_.add("Held back: " + nameOf(record) + ", " + nameOf(*verdict.event) + ": " + why);
}

// The first message after others were held back ends with how many there were.
void Notifier::tell(Outbox::Batch& batch, const EventVerdict& verdict, const platform::EventRecord& record) {
    const MonitoredEvent& event = *verdict.event;
    const auto held = outbox_->heldBack(event.key);
    log_.add("Found in the " + record.log + " log: " + nameOf(record) + "; monitored and active as " +
             nameOf(event));
    if (!verdict.has(Reason::send))
        log_.add("    no device of it is told");
    for (const DeviceVerdict& each : verdict.devices) {
        // What the administrator has switched off needs no word; what this host cannot do does.
        if (each.reason == Reason::notSetUp)
            log_.add("    " + each.device->recipient + ", " + each.device->address +
                     " is not told: " + std::string(textOf(each.reason)));
        if (each.reason != Reason::send)
            continue;
        Rendered words = render(event, record, each.device->kind, held ? closingLine(*held) : std::string());
        Outgoing message;
        message.eventKey = event.key;
        message.eventSource = record.source;
        message.eventId = record.id;
        message.eventType = record.type;
        message.computer = record.computer;
        message.isTest = event.isTest;
        message.deviceKey = each.device->key;
        message.kind = each.device->kind;
        message.recipient = each.device->recipient;
        message.address = each.device->address;
        message.subject = std::move(words.subject);
        message.body = std::move(words.body);
        message.priority = words.priority;
        message.voiceFile = std::move(words.voiceFile);
        message.created = now();
        batch.add(message);
    }
    if (held && verdict.has(Reason::send))
        batch.forgetHeldBack(event.key);
}

// As if its newest record came now, beside the other events that it is of; no reason to tell when it is of
// this event no more.
EventVerdict Notifier::verdictOf(const HeldBack& held, const Monitoring& monitoring) {
    for (EventVerdict& verdict : decide(held.record, monitoring, circumstances()))
        if (verdict.event->key == held.eventKey)
            return std::move(verdict);
    return {};
}

// At the end of an interval the newest of the records that were held back is told, with how many there were.
void Notifier::tellHeldBack() {
    heldUntil_.reset();
    const std::vector<HeldBack> all = outbox_->heldBack();
    if (all.empty())
        return;
    const Monitoring& monitoring = configuration_.current();
    Outbox::Batch batch(*outbox_);
    for (const HeldBack& held : all) {
        const MonitoredEvent* const event = monitoring.find(held.eventKey);
        const auto until =
            event ? heldBackUntil(*event, monitoring, circumstances()) : std::optional<Moment>();
        if (until) {
            heldUntil_ = heldUntil_ ? std::min(*heldUntil_, *until) : *until;
            continue;
        }
        EventVerdict verdict = verdictOf(held, monitoring);
        // An event that would tell the address by now did not tell it of this record, which must not be lost.
        if (!verdict.has(Reason::send))
            for (DeviceVerdict& each : verdict.devices)
                if (each.reason == Reason::sameAddress)
                    each.reason = Reason::send;
        if (verdict.has(Reason::send)) {
            tell(batch, verdict, held.record);
            continue;
        }
        // What this host cannot do for the moment it may be able to do later.
        if (verdict.has(Reason::notSetUp))
            continue;
        log_.add(std::to_string(held.count) + " records of event " + std::to_string(held.eventKey) +
                 " that were held back are not told: " +
                 (!event                           ? "it was deleted"
                  : verdict.reason != Reason::send ? std::string(textOf(verdict.reason))
                                                   : "it has no device that can be told"));
        batch.forgetHeldBack(held.eventKey);
    }
    batch.commit();
    options_.delivery.passes("rows committed");
}

void Notifier::age() {
    constexpr std::chrono::hours often(1);
    if (now() - lastAging_ < often && lastAging_ <= now())
        return;
    const Moment oldest = platform::daysBefore(now(), configuration_.current().settings.reportAging);
    dropHistoryBefore(configuration_.connection(), oldest);
    outbox_->dropDoneBefore(oldest);
    lastAging_ = now();
}

milliseconds Notifier::look() {
    logsWatch_.drain();
    delivery_.collect();
    lookedAt_ = now();
    bool more = false;
    attempt("Configuration", [&] {
        const NotificationSettings& settings = configuration_.current().settings;
        logFile_ = settings.logFile;
        pollingInterval_ = settings.pollingInterval;
        // A change of the diagnostic level takes effect on a restart.
        if (!everything_)
            everything_ = settings.everything;
    });
    attempt("Ways out", [&] {
        if (options_.refreshWaysOut())
            delivery_.renewTransports();
        knowsWaysOut_ = true;
    });
    if (everything_ && knowsWaysOut_)
        attempt("Outbox", [&] { openOutbox(); });
    if (outbox_) {
        for (const auto& source : sources_)
            attempt("Reading " + source->name(), [&] { more = takeIn(*source) || more; });
        // Old records are counted to their end before they are told.
        if (!more)
            attempt("Records that were held back", [&] { tellHeldBack(); });
        attempt("Sending", [&] {
            delivery_.settle(*outbox_);
            delivery_.sendDue(*outbox_);
        });
        attempt("History", [&] { delivery_.record(*outbox_, configuration_); });
        attempt("Aging", [&] { age(); });
        // Those who look at the outbox see by its time when this was. That it cannot be touched hurts nobody.
        ::utimensat(AT_FDCWD, options_.outboxFile.c_str(), nullptr, 0);
    }
    watchSources();
    flushLog();
    return more ? milliseconds(0) : untilNextLook();
}

// What a source tells of itself comes and goes with its files: it is added anew each time, and is there
// already most times.
void Notifier::watchSources() {
    for (const auto& source : sources_)
        if (const int descriptor = source->descriptor(); descriptor >= 0) {
            epoll_event event{};
            event.events = EPOLLIN;
            ::epoll_ctl(wake_.get(), EPOLL_CTL_ADD, descriptor, &event);
        }
}

milliseconds Notifier::untilNextLook() {
    constexpr milliseconds afterTrouble(1000);
    milliseconds wait = options_.pause.count() > 0 ? options_.pause : milliseconds(pollingInterval_);
    const Moment present = now();
    const auto atMost = [&](const std::optional<Moment>& moment) {
        if (moment)
            wait =
                std::min(wait, std::max(std::chrono::ceil<milliseconds>(*moment - present), milliseconds(1)));
    };
    atMost(heldUntil_);
    // What is due already waits for a thread, whose end wakes this one.
    if (outbox_)
        attempt("Waiting", [&] { atMost(outbox_->nextAttemptAfter(lookedAt_)); });
    const bool isTroubled =
        std::ranges::any_of(troubles_, [](const auto& each) { return !each.second.empty(); });
    return isTroubled ? std::min(wait, afterTrouble) : wait;
}

void Notifier::end() {
    delivery_.stop();
    if (outbox_) {
        attempt("Sending", [&] { delivery_.settle(*outbox_); });
        // The rest is for the next start.
        attempt("History", [&] { delivery_.record(*outbox_, configuration_); });
    }
    log_.add("HbQlnSvc stopped");
    flushLog();
}

// Where the log lies is not known before the database has been read.
void Notifier::flushLog() {
    if (everything_)
        attempt("Log", [&] { log_.flush(logFile_); });
}

}  // namespace service
