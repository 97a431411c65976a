// Moments in their forms, and the start of programs.
#include "platform/machine/clock.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>

#include "platform/files/files.h"
#include "platform/machine/host.h"
#include "platform/machine/process.h"
#include "support/adoFixture.h"
#include "support/temporaryHost.h"

namespace {

namespace fs = std::filesystem;
using adoTest::failureOf;
using platform::LocalTime;

std::string read(const char* text) {
    LocalTime time{1, 2, 3, 4, 5, 6};
    const bool real = platform::parseMoment(text, time);
    const std::string stored = platform::storedForm(time);
    EXPECT_TRUE(real || stored == "0001-02-03 04:05:06") << text << " is refused, yet changed the result";
    return real ? stored : "no";
}

TEST(Clock, MomentsAreWrittenAndReadBack) {
    const std::tuple<LocalTime, const char*, const char*> table[] = {
        {{2026, 11, 24, 14, 5, 9}, "11/24/2026 2:05:09 PM", "2026-11-24 14:05:09"},
        {{2026, 1, 2, 0, 0, 0}, "1/2/2026 12:00:00 AM", "2026-01-02 00:00:00"},
        {{2026, 12, 31, 12, 0, 59}, "12/31/2026 12:00:59 PM", "2026-12-31 12:00:59"},
        {{2024, 2, 29, 11, 59, 59}, "2/29/2024 11:59:59 AM", "2024-02-29 11:59:59"},
        {{2000, 2, 29, 23, 0, 0}, "2/29/2000 11:00:00 PM", "2000-02-29 23:00:00"},
    };
    for (const auto& [time, machine, stored] : table) {
        EXPECT_EQ(platform::defaultForm(time), machine);
        EXPECT_EQ(platform::storedForm(time), stored);
        EXPECT_EQ(read(machine), stored);
        EXPECT_EQ(read(stored), stored);
    }
    EXPECT_EQ(read("1/2/2026"), "2026-01-02 00:00:00");
    EXPECT_EQ(read("01/02/2026 02:05:09 AM"), "2026-01-02 02:05:09");
    EXPECT_EQ(read("2026-01-02"), "2026-01-02 00:00:00");
    EXPECT_EQ(read("12:30:00 AM"), "1899-12-30 00:30:00");
}

TEST(Clock, WhatIsNoMomentIsRefused) {
    for (const char* text : {"",
                             " ",
                             "tomorrow",
                             "2/29/2026",
                             "2/29/1900",
                             "1900-02-29",
                             "4/31/2026",
                             "13/1/2026",
                             "0/1/2026",
                             "1/0/2026",
                             "1/32/2026",
                             "1/1/26",
                             "1/1/20260",
                             "1/1/2026 ",
                             " 1/1/2026",
                             "1/1/2026 14:05:09",
                             "1/1/2026 0:05:09 AM",
                             "1/1/2026 13:05:09 PM",
                             "1/1/2026 1:5:09 PM",
                             "1/1/2026 1:05 PM",
                             "1/1/2026 1:60:00 PM",
                             "1/1/2026 1:00:60 PM",
                             "1/1/2026 1:00:00 PM x",
                             "1/1/2026 1:00:00PM",
                             "2026-1-01",
                             "2026-13-01",
                             "2026-01-01 24:00:00",
                             "2026-01-01 1:00:00",
                             "2026-01-01T01:00:00",
                             "2026-01-01 01:00:00 PM",
                             "14:05:09",
                             "1:00:00 PM 1/1/2026",
                             "-1/1/2026",
                             "1/1/2026#"})
        EXPECT_EQ(read(text), "no") << text;
}

TEST(Clock, DaysAreDaysOfTheCalendar) {
    ::setenv("TZ", "Europe/Berlin", 1);
    ::tzset();
    platform::LocalTime time{};
    for (const auto& [moment, before] : {std::pair("2026-11-10 12:30:00", "2026-10-11 12:30:00"),
                                         {"2026-04-10 12:30:00", "2026-03-11 12:30:00"}}) {
        ASSERT_TRUE(platform::parseMoment(moment, time));
        std::tm parts{};
        parts.tm_year = time.year - 1900;
        parts.tm_mon = time.month - 1;
        parts.tm_mday = time.day;
        parts.tm_hour = time.hour;
        parts.tm_min = time.minute;
        parts.tm_isdst = -1;
        const auto now = std::chrono::system_clock::from_time_t(std::mktime(&parts));
        EXPECT_EQ(platform::storedForm(platform::localTime(platform::daysBefore(now, 30))), before);
    }
    ::unsetenv("TZ");
    ::tzset();
}

TEST(Clock, ReplacedClockRulesUntilItGoes) {
    std::tm parts{};
    parts.tm_year = 126;
    parts.tm_mon = 10;
    parts.tm_mday = 24;
    parts.tm_hour = 14;
    parts.tm_min = 5;
    parts.tm_sec = 9;
    parts.tm_isdst = -1;
    const auto moment = std::chrono::system_clock::from_time_t(std::mktime(&parts));
    {
        support::ManualClock manual;
        manual.set(moment);
        platform::clock().sleep(std::chrono::milliseconds(250));
        EXPECT_DOUBLE_EQ(platform::secondsSinceMidnight(), 14 * 3600 + 5 * 60 + 9.25);
        EXPECT_EQ(platform::storedForm(platform::localTime(platform::clock().now())), "2026-11-24 14:05:09");
    }
    EXPECT_LT(std::chrono::system_clock::now() - platform::clock().now(), std::chrono::seconds(5));
}

class ProcessStart : public testing::Test {
  protected:
    // A program beside the running one that writes what it was given into "given" in the host's root.
    void makeProgram(const std::string& name) {
        const fs::path file = host.programFolder() / name;
        const std::string given = (host.root() / "given").string();
        platform::files::writeFile(file,
                                   "#!/bin/sh\n{ echo $#; printf '<%s>' \"$@\"; } >" + given + ".new\nmv " +
                                       given + ".new " + given + "\n",
                                   0700);
    }
    std::string given() {
        const fs::path file = host.root() / "given";
        for (int tries = 0; tries < 500 && !fs::exists(file); ++tries)
            ::usleep(10'000);
        const std::string text = fs::exists(file) ? platform::files::readFile(file) : "nothing came";
        fs::remove(file);
        return text;
    }

    support::TemporaryHost host;
};

TEST_F(ProcessStart, WordsArriveAsTheyWereQuoted) {
    makeProgram("Viewer");
    platform::startDetached("  viewer -s  \"two words\" \"\" a\"b c\"d 'x  y' $HOME;* ");
    EXPECT_EQ(given(), "7\n<-s><two words><><ab cd><'x><y'><$HOME;*>");
    platform::startDetached("\"" + (host.programFolder() / "Viewer").string() + "\" \"open");
    EXPECT_EQ(given(), "1\n<open>");
    platform::startDetached("viewer", {"a\" -platformpluginpath /x \"b"});
    EXPECT_EQ(given(), "1\n<a\" -platformpluginpath /x \"b>") << "an argument stays one";
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD) << "nobody has to wait for the program";
}

TEST_F(ProcessStart, WhatCannotStartSaysWhy) {
    std::string description;
    EXPECT_EQ(failureOf([] { platform::startDetached("no-such-program x"); }, &description), 53);
    EXPECT_EQ(failureOf([&] { platform::startDetached((host.root() / "missing").string()); }), 53);
    for (const char* empty : {"", "   "})
        EXPECT_EQ(failureOf([&] { platform::startDetached(empty); }), 5);
    EXPECT_EQ(failureOf([] { platform::startDetached("\"\""); }), 53);
    platform::files::writeFile(host.programFolder() / "Plain", "#!/bin/sh\n");
    EXPECT_EQ(failureOf([] { platform::startDetached("Plain"); }), 53);
    platform::files::writeFile(host.programFolder() / "Broken",
                               "\x7F"
                               "ELF",
                               0700);
    EXPECT_EQ(failureOf([] { platform::startDetached("Broken"); }), 75);
}

}  // namespace
