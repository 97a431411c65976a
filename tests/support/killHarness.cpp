#include "support/killHarness.h"

#include <gtest/gtest.h>
#include <signal.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>

#include "support/childProcess.h"

namespace support {

namespace {

namespace fs = std::filesystem;
using std::chrono::steady_clock;
using Microseconds = std::chrono::microseconds;

constexpr long defaultKills = 10;
constexpr long defaultSeed = 3'141'592;
constexpr int measuredRuns = 5;
// A run that was over before its kill came does not count; so many of them would mean a wrong measure.
constexpr long attemptsPerKill = 10;

ChildProcess start(const KilledOperation& operation) {
    return ChildProcess([&](const ChildProcess::Ready& ready) {
        if (operation.begin)
            operation.begin();
        ready();
        operation.operation();
    });
}

Microseconds since(steady_clock::time_point begin) {
    return std::chrono::duration_cast<Microseconds>(steady_clock::now() - begin);
}

Microseconds measure(const KilledOperation& operation) {
    std::vector<Microseconds> times;
    for (int i = 0; i < measuredRuns; ++i) {
        TemporaryHost host;
        operation.prepare(host);
        ChildProcess child = start(operation);
        child.awaitReady();
        const auto begin = steady_clock::now();
        EXPECT_EQ(child.wait(), 0) << operation.name;
        times.push_back(since(begin));
        EXPECT_NE(operation.allowedState(host), "") << "an undisturbed run's state is allowed";
    }
    std::sort(times.begin(), times.end());
    return times[measuredRuns / 2];
}

// Opening for writing also plays back the journal that a kill left, as the next program to open it would.
void expectWholeDatabases(const TemporaryHost& host) {
    for (const auto& file : fs::directory_iterator(host.databaseFolder())) {
        if (file.path().extension() != ".MDB")
            continue;
        run(file.path(), "SELECT count(*) FROM sqlite_master");
        EXPECT_EQ(query(file.path(), "PRAGMA integrity_check"), std::vector<std::string>{"ok"})
            << file.path();
    }
}

void expectNoErrorsInLogs(const TemporaryHost& host) {
    if (!fs::exists(host.programFolder() / "LOGS"))
        return;  // nothing of the layers that log
    for (const auto& file : fs::directory_iterator(host.programFolder() / "LOGS")) {
        std::ifstream log(file.path());
        // A first start finds no database and says so at that level before it makes one.
        for (std::string line; std::getline(log, line);)
            EXPECT_TRUE(line.find("  ERROR:(") == std::string::npos ||
                        line.find("]getDatabasePath)") != std::string::npos)
                << line;
    }
}

void expectGoesOn(const KilledOperation& operation, const TemporaryHost& host) {
    fs::remove_all(host.programFolder() / "LOGS");
    EXPECT_TRUE(succeedsInChild(operation.nextStart)) << "the next start";
    expectNoErrorsInLogs(host);
    expectWholeDatabases(host);
    operation.afterwards(host);
}

}  // namespace

long numberFromEnvironment(const char* name, long otherwise) {
    const char* text = std::getenv(name);
    const long number = text ? std::strtol(text, nullptr, 10) : 0;
    return number > 0 ? number : otherwise;
}

void killRepeatedly(const KilledOperation& operation) {
    const long kills = numberFromEnvironment("QLN_KILLS", defaultKills);
    const long seed = numberFromEnvironment("QLN_SEED", defaultSeed);
    std::mt19937 random(static_cast<std::mt19937::result_type>(seed));
    Microseconds time = measure(operation);
    std::map<std::string, long> states;
    long killed = 0;
    for (long attempt = 0; killed < kills && attempt < kills * attemptsPerKill; ++attempt) {
        const Microseconds delay(std::uniform_int_distribution<long>(0, time.count() * 6 / 5)(random));
        SCOPED_TRACE(operation.name + ", QLN_SEED=" + std::to_string(seed) + ", attempt " +
                     std::to_string(attempt) + ", killed after " + std::to_string(delay.count()) + " of " +
                     std::to_string(time.count()) + " us");
        TemporaryHost host;
        operation.prepare(host);
        ChildProcess child = start(operation);
        child.awaitReady();
        const auto begin = steady_clock::now();
        // Follows a machine that is faster or slower than when it was measured.
        if (child.endsWithin(delay))
            time = (time + since(begin)) / 2;
        else
            time = std::max(time, delay);
        child.kill();
        const int end = child.wait();
        ASSERT_TRUE(end == -SIGKILL || end == 0) << end;
        expectWholeDatabases(host);
        const std::string state = operation.allowedState(host);
        EXPECT_NE(state, "") << "a state that the order of writes does not allow";
        expectGoesOn(operation, host);
        if (::testing::Test::HasFailure())
            return;
        if (end == 0)
            continue;
        ++killed;
        ++states[state];
    }
    EXPECT_EQ(killed, kills) << operation.name;
    std::string line = operation.name + ": " + std::to_string(killed) + " kills within " +
                       std::to_string(time.count() / 1000) + " ms";
    for (const auto& [state, count] : states)
        line += "; " + state + " " + std::to_string(count);
    std::printf("[ STATES   ] %s\n", line.c_str());
}

}  // namespace support
