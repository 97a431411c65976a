#include "service/program/run.h"

#include <poll.h>
#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "platform/failure.h"
#include "platform/services/serviceManager.h"

namespace service {

namespace {

using platform::ServiceState;
using std::chrono::milliseconds;

constexpr milliseconds crashAfter(500);
constexpr milliseconds longestPause(1000);
constexpr milliseconds afterFailure(10000);
constexpr int mostMisses = 3;

volatile sig_atomic_t stopping = 0;
sigset_t signalsWhileWaiting;

// The signal to stop is let in only while the service waits, so none is lost.
void catchStop() {
    struct sigaction onStop {};
    onStop.sa_handler = [](int) { stopping = 1; };
    sigaction(SIGTERM, &onStop, nullptr);
    sigset_t stopSignal;
    sigemptyset(&stopSignal);
    sigaddset(&stopSignal, SIGTERM);
    sigprocmask(SIG_BLOCK, &stopSignal, &signalsWhileWaiting);
}

// Ends early when the signal to stop comes, and when the descriptor, if there is one, becomes readable: true.
bool pause(milliseconds duration, int descriptor = -1) {
    const timespec wait{static_cast<time_t>(duration.count() / 1000),
                        static_cast<long>(duration.count() % 1000) * 1000000};
    pollfd news{descriptor, POLLIN, 0};
    const bool hasNews = ::ppoll(&news, descriptor >= 0 ? 1 : 0, &wait, &signalsWhileWaiting) > 0;
    // With news at hand the call above lets no signal in, however long one waits.
    constexpr timespec none{0, 0};
    ::ppoll(nullptr, 0, &none, &signalsWhileWaiting);
    return hasNews;
}

// A pending state lasts, whatever signals come.
void linger(milliseconds duration) {
    const auto end = std::chrono::steady_clock::now() + duration;
    while (std::chrono::steady_clock::now() < end)
        ::usleep(10000);
}

// A service whose record is gone with its host, or names another process, has nobody left who could stop it.
bool isStillOurs(const std::string& keyName) {
    const auto record = platform::readServiceRecord(keyName);
    return record && record->processId == static_cast<std::uint64_t>(::getpid());
}

void hang(const std::string& keyName) {
    while (isStillOurs(keyName))
        linger(longestPause);
}

[[noreturn]] void crash() {
    const rlimit noCore{0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    std::abort();
}

// A file that is being replaced or held is there again at the next look.
template <class Action>
void attempt(const std::string& keyName, Action&& action) {
    try {
        action();
    } catch (const platform::Failure& failure) {
        std::fprintf(stderr, "%s: %s\n", keyName.c_str(), failure.what());
    }
}

// Looks at what the service works on, again and again until it is told to stop.
void doWork(const std::string& keyName, const Settings& settings, Work& work) {
    const auto start = std::chrono::steady_clock::now();
    auto nextLook = start;
    int misses = 0;
    while (!stopping && misses < mostMisses) {
        // A record that cannot be read for a moment is there again at the next look.
        misses = isStillOurs(keyName) ? 0 : misses + 1;
        const bool crashes = settings.behaviour == Behaviour::crashWhileRunning;
        auto now = std::chrono::steady_clock::now();
        if (crashes && now - start >= crashAfter)
            crash();
        if (now >= nextLook) {
            milliseconds untilNext = settings.pollingPause.count() > 0 ? settings.pollingPause : afterFailure;
            attempt(keyName, [&] { untilNext = work.look(); });
            now = std::chrono::steady_clock::now();
            nextLook = now + untilNext;
        }
        const auto untilNext = std::chrono::ceil<milliseconds>(nextLook - now);
        if (pause(std::clamp(untilNext, milliseconds(0), crashes ? crashAfter : longestPause),
                  work.descriptor()))
            nextLook = std::chrono::steady_clock::now();
    }
}

}  // namespace

int run(std::string keyName, const Settings& settings, Work& work) {
    const char* const named = std::getenv("QLN_SERVICE");
    if (named && *named)
        keyName = named;
    if (settings.behaviour == Behaviour::neverReport)
        hang(keyName);
    catchStop();
    platform::writeServiceState(keyName, ServiceState::startPending, ::getpid());
    linger(settings.startDelay);
    if (settings.behaviour == Behaviour::failToStart)
        return 1;
    if (settings.behaviour == Behaviour::hangInStart)
        hang(keyName);
    attempt(keyName, [&] { work.begin(); });
    platform::writeServiceState(keyName, ServiceState::running, ::getpid());
    doWork(keyName, settings, work);
    if (!isStillOurs(keyName)) {
        attempt(keyName, [&] { work.end(); });
        return 0;
    }
    platform::writeServiceState(keyName, ServiceState::stopPending, ::getpid());
    attempt(keyName, [&] { work.end(); });
    linger(settings.stopDelay);
    if (settings.behaviour == Behaviour::hangInStop)
        hang(keyName);
    platform::endService(keyName);
    return 0;
}

}  // namespace service
