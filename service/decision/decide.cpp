#include "service/decision/decide.h"

#include <algorithm>
#include <set>
#include <string>
#include <utility>

#include "platform/machine/caseFold.h"

namespace service {

namespace {

// What was told already of one record.
using Told = std::set<std::pair<DeviceKind, std::string>>;

bool standsFor(const MonitoredEvent& collection, const std::string& source) {
    const std::string prefix = platform::foldCase(collection.source) + "_";
    return source.starts_with(prefix);
}

bool isExcluded(const Monitoring& monitoring, const std::string& source, long id) {
    return std::ranges::any_of(monitoring.exclusions, [&](const Exclusion& exclusion) {
        return exclusion.source == source && (exclusion.id == -1 || exclusion.id == id);
    });
}

Reason reasonOf(const MonitoredEvent& event, const platform::EventRecord& record,
                const Monitoring& monitoring) {
    if (!event.isActive)
        return Reason::eventInactive;
    // The types of records are numbered as the severities are, the gravest first.
    if (record.type > event.severity)
        return Reason::severityBelow;
    if (event.isCollection &&
        isExcluded(monitoring, platform::foldCase(record.source), static_cast<long>(record.id)))
        return Reason::excluded;
    return Reason::send;
}

Reason reasonOf(const Device& device, bool isOn, bool isHeldBack, const Circumstances& circumstances,
                Told& told) {
    if (!isOn)
        return Reason::deviceOff;
    if (!device.isActive)
        return Reason::deviceCutOff;
    if (!device.isRecipientActive)
        return Reason::recipientInactive;
    if (!circumstances.isSetUp(device.kind))
        return Reason::notSetUp;
    // What is held back will be told to the address too, so no other event needs to.
    if (!told.emplace(device.kind, platform::foldCase(device.address)).second)
        return Reason::sameAddress;
    return isHeldBack ? Reason::withinInterval : Reason::send;
}

EventVerdict verdictOf(const MonitoredEvent& event, const platform::EventRecord& record,
                       const Monitoring& monitoring, const Circumstances& circumstances, Told& told) {
    EventVerdict verdict{&event, reasonOf(event, record, monitoring), {}};
    if (verdict.reason != Reason::send)
        return verdict;
    const bool isHeldBack = heldBackUntil(event, monitoring, circumstances).has_value();
    for (const Assignment& assignment : event.devices) {
        const Device& device = monitoring.devices[assignment.device];
        verdict.devices.push_back(
            {&device, reasonOf(device, assignment.isOn, isHeldBack, circumstances, told)});
    }
    return verdict;
}

std::vector<std::size_t> candidates(const Monitoring& monitoring, const std::string& source, long id) {
    std::vector<std::size_t> found;
    const auto add = [&](std::size_t index) {
        const MonitoredEvent& event = monitoring.events[index];
        if (event.id == -1 || event.id == id)
            found.push_back(index);
    };
    if (const auto same = monitoring.eventsBySource.find(source); same != monitoring.eventsBySource.end())
        std::ranges::for_each(same->second, add);
    std::ranges::sort(found);
    // An event of its own speaks before the one that stands for many: an address is told once.
    for (const std::size_t index : monitoring.collections)
        if (standsFor(monitoring.events[index], source))
            add(index);
    return found;
}

}  // namespace

std::string_view textOf(Reason reason) {
    switch (reason) {
        case Reason::send:
            return "told";
        case Reason::eventInactive:
            return "the event is inactive";
        case Reason::excluded:
            return "source and id are excluded";
        case Reason::severityBelow:
            return "less grave than the event asks for";
        case Reason::deviceOff:
            return "the device is off for this event";
        case Reason::deviceCutOff:
            return "the device is cut off: its entry in the directory is gone";
        case Reason::recipientInactive:
            return "the recipient is inactive";
        case Reason::notSetUp:
            return "this host is not set up for such devices";
        case Reason::withinInterval:
            return "within the notification interval";
        case Reason::sameAddress:
            return "the same address is told already";
    }
    return {};
}

bool EventVerdict::has(Reason which) const {
    return std::ranges::any_of(devices, [&](const DeviceVerdict& each) { return each.reason == which; });
}

std::optional<Moment> heldBackUntil(const MonitoredEvent& event, const Monitoring& monitoring,
                                    const Circumstances& circumstances) {
    // The test has to arrive whenever it is asked for.
    if (event.isTest)
        return std::nullopt;
    std::optional<Moment> last;  // nothing compares as earlier than any moment
    for (const auto& told : {event.lastNotification, circumstances.pendingSince(event.key)})
        // A moment that lies ahead was written before the clock was set back, and holds nothing.
        if (told && *told <= circumstances.now)
            last = std::max(last, told);
    if (!last)
        return std::nullopt;
    const Moment until = *last + monitoring.settings.notificationInterval;
    return until > circumstances.now ? std::optional(until) : std::nullopt;
}

std::vector<EventVerdict> decide(const platform::EventRecord& record, const Monitoring& monitoring,
                                 const Circumstances& circumstances) {
    std::vector<EventVerdict> verdicts;
    Told told;
    for (const std::size_t index :
         candidates(monitoring, platform::foldCase(record.source), static_cast<long>(record.id)))
        verdicts.push_back(verdictOf(monitoring.events[index], record, monitoring, circumstances, told));
    return verdicts;
}

}  // namespace service
