#include "platform/machine/clock.h"

#include <array>
#include <cstdio>
#include <ctime>
#include <optional>
#include <thread>
#include <utility>

namespace platform {

namespace {

class SystemClock : public Clock {
  public:
    std::chrono::system_clock::time_point now() override { return std::chrono::system_clock::now(); }
    void sleep(std::chrono::milliseconds duration) override { wait(duration); }
};

Clock* clockInUse = nullptr;
Waiter waiterInUse;
DateOrder orderInUse = DateOrder::monthFirst;

// A date that stands for "time alone": day 0 of the date type.
constexpr LocalTime dayZero{1899, 12, 30, 0, 0, 0};

bool isLeap(int year) {
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

bool isRealDate(int year, int month, int day) {
    constexpr std::array<int, 12> days{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (year < 100 || year > 9999 || month < 1 || month > 12 || day < 1)
        return false;
    return day <= days[static_cast<std::size_t>(month - 1)] + (month == 2 && isLeap(year) ? 1 : 0);
}

// Takes tokens off the front of a text.
class Scanner {
  public:
    explicit Scanner(std::string_view text) : rest_(text) {}

    bool number(std::size_t fewest, std::size_t most, int& value) {
        std::size_t count = 0;
        value = 0;
        while (count < most && count < rest_.size() && rest_[count] >= '0' && rest_[count] <= '9')
            value = value * 10 + (rest_[count++] - '0');
        rest_.remove_prefix(count);
        return count >= fewest;
    }
    bool literal(std::string_view wanted) {
        if (rest_.substr(0, wanted.size()) != wanted)
            return false;
        rest_.remove_prefix(wanted.size());
        return true;
    }
    bool atEnd() const { return rest_.empty(); }

  private:
    std::string_view rest_;
};

bool scanMachineDate(Scanner& in, LocalTime& time) {
    const bool dayFirst = orderInUse == DateOrder::dayFirst;
    return in.number(1, 2, dayFirst ? time.day : time.month) && in.literal("/") &&
           in.number(1, 2, dayFirst ? time.month : time.day) && in.literal("/") &&
           in.number(4, 4, time.year) && isRealDate(time.year, time.month, time.day);
}

bool scanStoredTime(Scanner& in, LocalTime& time) {
    return in.number(2, 2, time.hour) && in.literal(":") && in.number(2, 2, time.minute) && in.literal(":") &&
           in.number(2, 2, time.second) && time.hour < 24 && time.minute < 60 && time.second < 60;
}

bool scanMachineTime(Scanner& in, LocalTime& time) {
    if (orderInUse == DateOrder::dayFirst)
        return scanStoredTime(in, time);
    if (!in.number(1, 2, time.hour) || !in.literal(":") || !in.number(2, 2, time.minute) ||
        !in.literal(":") || !in.number(2, 2, time.second) || time.hour < 1 || time.hour > 12 ||
        time.minute > 59 || time.second > 59)
        return false;
    const bool afternoon = in.literal(" PM");
    if (!afternoon && !in.literal(" AM"))
        return false;
    time.hour = time.hour % 12 + (afternoon ? 12 : 0);
    return true;
}

bool scanStoredDate(Scanner& in, LocalTime& time) {
    return in.number(4, 4, time.year) && in.literal("-") && in.number(2, 2, time.month) && in.literal("-") &&
           in.number(2, 2, time.day) && isRealDate(time.year, time.month, time.day);
}

using Scan = bool (*)(Scanner&, LocalTime&);

// A date, or a date, a blank and a time; nothing after it.
bool parseWith(std::string_view text, Scan date, Scan time, LocalTime& result) {
    Scanner in(text);
    LocalTime read{};
    if (!date(in, read))
        return false;
    if (!in.atEnd() && (!in.literal(" ") || !time(in, read) || !in.atEnd()))
        return false;
    result = read;
    return true;
}

template <class... Arguments>
std::string formatted(const char* form, Arguments... arguments) {
    std::array<char, 80> buffer{};
    const int length = std::snprintf(buffer.data(), buffer.size(), form, arguments...);
    return {buffer.data(), static_cast<std::size_t>(length)};
}

}  // namespace

void wait(std::chrono::milliseconds duration) {
    if (waiterInUse)
        waiterInUse(duration);
    else
        std::this_thread::sleep_for(duration);
}

void setWaiter(Waiter waiter) {
    waiterInUse = std::move(waiter);
}

Clock& clock() {
    static SystemClock system;
    return clockInUse ? *clockInUse : system;
}

void setClock(Clock* clock) {
    clockInUse = clock;
}

LocalTime localTime(std::chrono::system_clock::time_point moment) {
    const std::time_t seconds = std::chrono::system_clock::to_time_t(moment);
    // Every log line asks, many times within one second.
    thread_local std::optional<std::pair<std::time_t, LocalTime>> last;
    if (!last || last->first != seconds) {
        std::tm parts{};
        localtime_r(&seconds, &parts);
        last = {seconds,
                {parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday, parts.tm_hour, parts.tm_min,
                 parts.tm_sec}};
    }
    return last->second;
}

std::chrono::system_clock::time_point daysBefore(std::chrono::system_clock::time_point moment, int days) {
    const std::time_t seconds = std::chrono::system_clock::to_time_t(moment);
    std::tm parts{};
    localtime_r(&seconds, &parts);
    parts.tm_mday -= days;
    parts.tm_isdst = -1;  // whatever holds on that day
    const std::time_t earlier = std::mktime(&parts);
    return moment - std::chrono::seconds(seconds - earlier);
}

double secondsSinceMidnight() {
    const auto now = clock().now();
    const LocalTime time = localTime(now);
    const auto whole = std::chrono::floor<std::chrono::seconds>(now);
    const double fraction = std::chrono::duration<double>(now - whole).count();
    return time.hour * 3600 + time.minute * 60 + time.second + fraction;
}

DateOrder dateOrder() {
    return orderInUse;
}

void setDateOrder(DateOrder order) {
    orderInUse = order;
}

std::string shortDate(const LocalTime& time) {
    if (orderInUse == DateOrder::dayFirst)
        return formatted("%02d/%02d/%04d", time.day, time.month, time.year);
    return formatted("%d/%d/%04d", time.month, time.day, time.year);
}

std::string longTime(const LocalTime& time) {
    if (orderInUse == DateOrder::dayFirst)
        return formatted("%02d:%02d:%02d", time.hour, time.minute, time.second);
    const int hour = time.hour % 12 == 0 ? 12 : time.hour % 12;
    return formatted("%d:%02d:%02d %s", hour, time.minute, time.second, time.hour < 12 ? "AM" : "PM");
}

std::string defaultForm(const LocalTime& time) {
    return shortDate(time) + " " + longTime(time);
}

std::string storedForm(const LocalTime& time) {
    return formatted("%04d-%02d-%02d %02d:%02d:%02d", time.year, time.month, time.day, time.hour, time.minute,
                     time.second);
}

bool parseMoment(std::string_view text, LocalTime& result) {
    if (parseWith(text, scanMachineDate, scanMachineTime, result) ||
        parseWith(text, scanStoredDate, scanStoredTime, result))
        return true;
    Scanner in(text);
    LocalTime alone = dayZero;
    if (!scanMachineTime(in, alone) || !in.atEnd())
        return false;
    result = alone;
    return true;
}

}  // namespace platform
