#include "host/supervisor.h"

#include <poll.h>
#include <signal.h>
#include <systemd/sd-daemon.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <thread>
#include <vector>

#include "host/commands.h"
#include "host/registryEntries.h"
#include "platform/failure.h"
#include "platform/files/descriptor.h"
#include "platform/files/fileLock.h"
#include "platform/files/files.h"
#include "platform/machine/host.h"
#include "platform/registry/registry.h"
#include "platform/services/serviceManager.h"

namespace qlnhost {

namespace {

using platform::ServiceState;
using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::steady_clock;

constexpr std::array delays{seconds(1), seconds(2), seconds(5), seconds(10), seconds(30), seconds(60)};
constexpr seconds isStable(60);
constexpr milliseconds betweenLooks(500);

volatile sig_atomic_t isEnding = 0;

bool isAutomatic(const std::string& name) {
    const auto value =
        platform::registry().value(std::string("HKEY_LOCAL_MACHINE\\") + host::servicesKey + name, "Start");
    return value == platform::RegistryValue(std::uint32_t{2});
}

std::vector<std::string> automaticServices() {
    std::vector<std::string> names = platform::serviceNames();
    std::erase_if(names, [](const std::string& name) { return !isAutomatic(name); });
    return names;
}

bool runs(const std::string& name) {
    return platform::queryServiceStatus(name).state != ServiceState::stopped;
}

// A service that ends because it was told to says so before its end.
bool wasStopped(const std::string& name) {
    const auto record = platform::readServiceRecord(name);
    return record && (record->state == ServiceState::stopPending || record->state == ServiceState::stopped);
}

std::string reasonOf(std::uint32_t error) {
    if (error == platform::errorServiceLogonFailed)
        return "the password of its account is another by now";
    if (error == platform::errorServiceRequestTimeout)
        return "it ended, or did not report itself";
    return "error " + std::to_string(error);
}

void endOnSignal() {
    struct sigaction action {};
    action.sa_handler = [](int) { isEnding = 1; };
    for (const int signal : {SIGTERM, SIGINT})
        ::sigaction(signal, &action, nullptr);
    // Handled and not ignored: what is ignored here would stay so in the services that are started.
    action.sa_handler = [](int) {};
    for (const int signal : {SIGHUP, SIGPIPE})
        ::sigaction(signal, &action, nullptr);
}

// Names this start of the machine, as long as a supervisor is at work: a file that is left tells of one that
// crashed.
class Mark {
  public:
    Mark() : file_(platform::host::runFolder() / "supervised") {
        std::ifstream("/proc/sys/kernel/random/boot_id") >> boot_;
        std::string left;
        std::ifstream(file_) >> left;
        isLeft_ = !left.empty() && left == boot_;
        platform::files::writeFile(file_, boot_ + "\n");
    }
    ~Mark() {
        std::error_code ignored;
        std::filesystem::remove(file_, ignored);
    }
    Mark(const Mark&) = delete;
    Mark& operator=(const Mark&) = delete;

    bool isLeft() const noexcept { return isLeft_; }

  private:
    std::filesystem::path file_;
    std::string boot_;
    bool isLeft_ = false;
};

void say(const std::string& line) {
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
}

}  // namespace

void Supervisor::fail(const std::string& name, Watched& service, Moment now, const std::string& what) {
    const seconds delay = delays[std::min(service.failures++, delays.size() - 1)];
    service.startAt = now + delay;
    service.wasStoppedThen = wasStopped(name);
    say_(name + ' ' + what + "; it is started again in " + std::to_string(delay.count()) + " s");
}

void Supervisor::start(const std::string& name, Watched& service, Moment now) {
    service.isWanted = true;
    const std::uint32_t error = openService(name).start();
    if (error != platform::noError && error != platform::errorServiceAlreadyRunning) {
        fail(name, service, now, "could not be started: " + reasonOf(error));
        return;
    }
    service.isRunning = true;
    service.since = now;
    say_(name + (error == platform::noError ? " started" : " runs already"));
}

void Supervisor::look(const std::string& name, Watched& service, Moment now) {
    if (runs(name)) {
        if (!service.isRunning) {
            service.since = now;
            say_(name + " was started");
        }
        service.isRunning = service.isWanted = true;
        if (now - service.since >= isStable)
            service.failures = 0;
        return;
    }
    if (service.isRunning) {
        service.isRunning = false;
        service.isWanted = !wasStopped(name);
        if (service.isWanted)
            fail(name, service, now, "crashed");
        else
            say_(name + " was stopped");
    } else if (service.isWanted && !service.wasStoppedThen && wasStopped(name)) {
        service.isWanted = false;
        say_(name + " was stopped and is not started again");
    } else if (service.isWanted && now >= service.startAt) {
        start(name, service, now);
    }
}

void Supervisor::begin(Moment now, bool goesOn) {
    for (const std::string& name : automaticServices())
        if (goesOn && wasStopped(name)) {
            services_[name] = {};
            say_(name + " stays stopped");
        } else {
            start(name, services_[name], now);
        }
}

void Supervisor::look(Moment now) {
    try {
        const std::vector<std::string> names = automaticServices();
        // One that does not start automatically any more is left alone, and stopped at the end if it runs.
        std::erase_if(services_, [&](const auto& each) {
            return std::find(names.begin(), names.end(), each.first) == names.end() && !runs(each.first);
        });
        for (const std::string& name : names)
            look(name, services_[name], now);
    } catch (const platform::Failure& failure) {
        // A registry that is being replaced is there again at the next look; one that stays away is told
        // once.
        if (trouble_ != failure.what())
            say_(trouble_ = failure.what());
        return;
    }
    trouble_.clear();
}

bool Supervisor::end() {
    bool allStopped = true;
    for (auto each = services_.rbegin(); each != services_.rend(); ++each) {
        const std::string& name = each->first;
        if (!runs(name))
            continue;
        // One that is still starting takes no request, and is asked again.
        const auto deadline = steady_clock::now() + seconds(10);
        while (runs(name) && steady_clock::now() < deadline) {
            openService(name).control(platform::ServiceControl::stop);
            std::this_thread::sleep_for(milliseconds(50));
        }
        const bool isStopped = !runs(name);
        allStopped = allStopped && isStopped;
        say_(name + (isStopped ? " stopped" : " does not end and is left to the system"));
    }
    return allStopped;
}

std::string Supervisor::status() const {
    std::string text;
    for (const auto& [name, service] : services_)
        text += (text.empty() ? "" : ", ") + name +
                (service.isRunning  ? " running"
                 : service.isWanted ? " crashed, waits for its next start"
                                    : " stopped");
    return text.empty() ? "no service starts automatically" : text;
}

int superviseHost() {
    std::filesystem::create_directories(platform::host::runFolder());
    const platform::Descriptor lock =
        platform::files::lockAlone(platform::host::runFolder() / "supervisor.lock");
    if (!lock) {
        std::fprintf(stderr, "qlnhost: the services of this host are supervised already\n");
        return 1;
    }
    endOnSignal();
    std::uint64_t patience = 0;
    const bool isWatched = ::sd_watchdog_enabled(0, &patience) > 0;
    const Mark mark;
    Supervisor supervisor(say);
    supervisor.begin(steady_clock::now(), mark.isLeft());
    ::sd_notify(0, "READY=1");
    std::string told;
    Supervisor::Moment nextSign;
    while (!isEnding) {
        supervisor.look(steady_clock::now());
        if (const std::string status = supervisor.status(); status != told) {
            ::sd_notifyf(0, "STATUS=%s", status.c_str());
            told = status;
        }
        if (isWatched && steady_clock::now() >= nextSign) {
            ::sd_notify(0, "WATCHDOG=1");
            nextSign = steady_clock::now() + std::chrono::microseconds(patience / 3);
        }
        ::poll(nullptr, 0, static_cast<int>(betweenLooks.count()));
    }
    ::sd_notify(0, "STOPPING=1");
    return supervisor.end() ? 0 : 1;
}

}  // namespace qlnhost
