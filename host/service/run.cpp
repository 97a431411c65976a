#include "host/service/run.h"

#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "host/service/behaviour.h"
#include "host/service/watch.h"
#include "platform/failure.h"
#include "platform/host.h"
#include "platform/serviceManager.h"

namespace service {

namespace {

using platform::ServiceState;
using std::chrono::milliseconds;

constexpr milliseconds crashAfter(500);
constexpr milliseconds longestPause(1000);

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

// Ends early when the signal to stop comes.
void pause(milliseconds duration) {
    const timespec wait{static_cast<time_t>(duration.count() / 1000),
                        static_cast<long>(duration.count() % 1000) * 1000000};
    pselect(0, nullptr, nullptr, nullptr, &wait, &signalsWhileWaiting);
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

// Looks at the database every few seconds until the service is told to stop.
void watchDatabase(const std::string& keyName, Behaviour behaviour) {
    const std::string file = (platform::program::installationRoot() / "Database" / "QLNDB.MDB").string();
    const auto start = std::chrono::steady_clock::now();
    auto nextLook = start;
    while (!stopping && isStillOurs(keyName)) {
        const auto now = std::chrono::steady_clock::now();
        if (behaviour == Behaviour::crashWhileRunning && now - start >= crashAfter)
            crash();
        if (now >= nextLook) {
            unsigned seconds = 10;
            try {
                seconds = look(file);
            } catch (const platform::Failure& failure) {
                // A file that is being replaced or held is there again at the next look.
                std::fprintf(stderr, "HbQlnSvc: %s\n", failure.what());
            }
            nextLook = now + std::chrono::seconds(seconds);
        }
        pause(behaviour == Behaviour::crashWhileRunning ? crashAfter : longestPause);
    }
}

}  // namespace

int run() {
    const char* const named = std::getenv("QLN_SERVICE");
    const std::string keyName = named && *named ? named : "HbQlnSvc";
    const Settings settings = readSettings();
    if (settings.behaviour == Behaviour::neverReport)
        hang(keyName);
    catchStop();
    platform::writeServiceState(keyName, ServiceState::startPending, ::getpid());
    linger(settings.startDelay);
    if (settings.behaviour == Behaviour::failToStart)
        return 1;
    if (settings.behaviour == Behaviour::hangInStart)
        hang(keyName);
    platform::writeServiceState(keyName, ServiceState::running, ::getpid());
    watchDatabase(keyName, settings.behaviour);
    if (!isStillOurs(keyName))
        return 0;
    platform::writeServiceState(keyName, ServiceState::stopPending, ::getpid());
    linger(settings.stopDelay);
    if (settings.behaviour == Behaviour::hangInStop)
        hang(keyName);
    platform::endService(keyName);
    return 0;
}

}  // namespace service
