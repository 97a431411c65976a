#include "service/inspection/reckoning.h"

#include <algorithm>
#include <utility>

#include "platform/machine/clock.h"

namespace service {

namespace {

int dateOf(const platform::LocalTime& time) {
    return (time.year * 100 + time.month) * 100 + time.day;
}

int dateOf(Moment moment) {
    return dateOf(platform::localTime(moment));
}

// The notification interval over records in the order of their moments: the first is told, those after it
// together when the interval ends.
class Interval {
  public:
    explicit Interval(std::chrono::minutes length) : length_(length) {}

    // Calls `tell` with each moment at which something is told, up to that of the record.
    template <class Tell>
    void pass(Moment moment, std::size_t devices, const Tell& tell) {
        finish(moment, tell);
        if (moment < end_) {
            held_ = devices;
            return;
        }
        end_ = moment + length_;
        tell(moment, devices);
    }
    // What is held back is told at the end of its interval, if that has come by `moment`.
    template <class Tell>
    void finish(Moment moment, const Tell& tell) {
        if (held_ == 0 || end_ > moment)
            return;
        const Moment told = std::exchange(end_, end_ + length_);
        tell(told, std::exchange(held_, 0));
    }

  private:
    std::chrono::minutes length_;
    Moment end_ = Moment::min();  // of the interval that runs
    std::size_t held_ = 0;
};

}  // namespace

// Nothing was told yet: the interval is passed through here, over all records in their order.
Reckoner::Reckoner(const Monitoring& monitoring, long eventKey, std::function<bool(DeviceKind)> isSetUp)
    : monitoring_(monitoring),
      event_(monitoring.find(eventKey)),
      circumstances_{Moment::min(), std::move(isSetUp), [](long) { return std::nullopt; }} {}

std::optional<std::size_t> Reckoner::devicesFor(const platform::EventRecord& record) {
    const std::string key =
        record.source + '\n' + std::to_string(record.id) + '\n' + std::to_string(record.type);
    if (const auto found = known_.find(key); found != known_.end())
        return found->second;
    std::optional<std::size_t> devices;
    for (const EventVerdict& verdict : decide(record, monitoring_, circumstances_))
        if (verdict.event == event_ && verdict.reason == Reason::send)
            devices = static_cast<std::size_t>(
                std::ranges::count(verdict.devices, Reason::send, &DeviceVerdict::reason));
    return known_.emplace(key, devices).first->second;
}

void Reckoner::add(const platform::EventRecord& record) {
    const auto devices = devicesFor(record);
    if (!devices)
        return;
    platform::LocalTime time{};
    if (const auto moment = momentOfStored(record.time); moment && platform::parseMoment(record.time, time))
        matches_.push_back({*moment, dateOf(time), *devices});
}

Reckoning Reckoner::reckon(Moment end, int days) const {
    constexpr std::size_t dateLength = 10;
    Reckoning result;
    std::vector<int> dates;
    for (int day = days - 1; day >= 0; --day) {
        const platform::LocalTime time = platform::localTime(platform::daysBefore(end, day));
        result.days.push_back({platform::storedForm(time).substr(0, dateLength), 0, 0});
        dates.push_back(dateOf(time));
    }
    const auto dayOf = [&](int date) -> Reckoning::Day* {
        const auto found = std::ranges::find(dates, date);
        return found == dates.end() ? nullptr : &result.days[static_cast<std::size_t>(found - dates.begin())];
    };
    std::vector<const Match*> inOrder;
    for (const Match& match : matches_)
        if (match.moment <= end && dayOf(match.date))
            inOrder.push_back(&match);
    std::ranges::stable_sort(inOrder, {}, [](const Match* match) { return match->moment; });

    const auto tell = [&](Moment moment, std::size_t devices) {
        result.notifications += devices;
        if (Reckoning::Day* const day = dayOf(dateOf(moment)))
            day->notifications += devices;
    };
    // The test event tells each time.
    Interval interval(event_ && event_->isTest ? std::chrono::minutes(0)
                                               : monitoring_.settings.notificationInterval);
    for (const Match* match : inOrder) {
        ++result.records;
        ++dayOf(match->date)->records;
        // A record that nobody is told of begins no interval.
        if (match->devices > 0)
            interval.pass(match->moment, match->devices, tell);
    }
    interval.finish(end, tell);
    return result;
}

}  // namespace service
