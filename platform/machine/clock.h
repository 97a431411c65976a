// Time: the present moment, sleep, and the forms in which this machine writes date and time. Tests replace
// the clock and so need not wait.
#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <string_view>

namespace platform {

// A moment in local time.
struct LocalTime {
    int year, month, day;      // month 1 to 12, day 1 to 31
    int hour, minute, second;  // 24-hour clock
};

class Clock {
  public:
    virtual ~Clock() = default;
    virtual std::chrono::system_clock::time_point now() = 0;
    virtual void sleep(std::chrono::milliseconds duration) = 0;
};

// Waits in real time, whatever clock is in use. The system's clock sleeps so.
void wait(std::chrono::milliseconds duration);
// How a wait is spent. The window layer, whose windows must stay painted meanwhile, sets it; an empty
// function goes back to doing nothing.
using Waiter = std::function<void(std::chrono::milliseconds)>;
void setWaiter(Waiter waiter);

// The clock in use; the system's unless replaced. A null pointer goes back to the system's.
Clock& clock();
void setClock(Clock* clock);

LocalTime localTime(std::chrono::system_clock::time_point moment);
// The same time of the day so many days of the calendar earlier, also where the clocks were changed between.
std::chrono::system_clock::time_point daysBefore(std::chrono::system_clock::time_point moment, int days);
// Seconds since local midnight, with fractions.
double secondsSinceMidnight();

// Which part of a date this machine writes first; the month until it is set.
enum class DateOrder { monthFirst, dayFirst };
DateOrder dateOrder();
void setDateOrder(DateOrder order);

// "11/24/2026" and "2:05:09 PM", or with the day first "24/11/2026" and "14:05:09": the machine's short date
// and long time; together, joined by a blank, its default form of a moment.
std::string shortDate(const LocalTime& time);
std::string longTime(const LocalTime& time);
std::string defaultForm(const LocalTime& time);
// "2026-11-24 14:05:09": the form in which databases store a moment.
std::string storedForm(const LocalTime& time);
// Reads the default form (the time may be missing, or stand alone) or the stored form. False when the text
// is neither or is no real date.
bool parseMoment(std::string_view text, LocalTime& result);

}  // namespace platform
