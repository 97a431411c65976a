// The services of a host, as a person starts, stops and sees them.

#include <chrono>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "host/commands.h"
#include "host/supervisor.h"
#include "platform/failure.h"
#include "platform/machine/clock.h"
#include "platform/machine/host.h"
#include "platform/services/serviceManager.h"
#include "service/outbox/inspection.h"
#include "service/sources/journalChoice.h"
#include "service/sources/journalFiles.h"

namespace qlnhost {

namespace {

using platform::ServiceState;

const char* stateText(ServiceState state) {
    switch (state) {
        case ServiceState::startPending:
            return "start pending";
        case ServiceState::stopPending:
            return "stop pending";
        case ServiceState::running:
            return "running";
        case ServiceState::stopped:
            break;
    }
    return "stopped";
}

// The manager answers as soon as a service has heard of the request; whoever asked goes on with a service
// that runs, or is gone. Waits half a minute at most; false says on standard error what the service does
// instead.
bool reaches(const std::string& name, ServiceState wanted) {
    using std::chrono::steady_clock;
    const auto end = steady_clock::now() + std::chrono::seconds(30);
    ServiceState state = platform::queryServiceStatus(name).state;
    while (state != wanted && state != ServiceState::stopped && steady_clock::now() < end) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        state = platform::queryServiceStatus(name).state;
    }
    if (state != wanted)
        std::fprintf(stderr, "qlnhost: %s is %s\n", name.c_str(), stateText(state));
    return state == wanted;
}

bool accepted(const std::string& name, std::uint32_t error) {
    if (error == platform::errorServiceNotActive)
        std::fprintf(stderr, "qlnhost: %s does not run, and nobody starts it again by itself\n",
                     name.c_str());
    else if (error != platform::noError)
        std::fprintf(stderr, "qlnhost: the service manager refuses with error %u\n", error);
    return error == platform::noError;
}

// What the service's outbox tells of it.
std::string ofItself() {
    std::optional<service::OutboxView> outbox;
    try {
        outbox = service::viewOutbox(outboxFile());
    } catch (const platform::Failure& failure) {
        return ", its outbox cannot be read: " + failure.description();
    }
    if (!outbox)
        return {};
    const auto moment = [](service::Moment when) { return platform::storedForm(platform::localTime(when)); };
    std::string text = ", last look " + moment(outbox->lastLook) + ", ";
    if (outbox->waiting.empty())
        return text + "nothing waits";
    return text + std::to_string(outbox->waiting.size()) + " waiting, the oldest since " +
           moment(outbox->waiting.front().created);
}

// What keeps the service from its work whether it runs or not, each with what to do about it.
std::vector<std::string> obstacles() {
    std::vector<std::string> lines;
    if (const service::JournalChoice choice = service::journalChoice(); choice.isOn)
        if (const std::string problem = service::inspectJournalFiles(choice.folder).problem; !problem.empty())
            lines.push_back("Journal: " + problem);
    constexpr std::uintmax_t little = 1u << 20;
    std::error_code error;
    const auto space = std::filesystem::space(outboxFile().parent_path(), error);
    if (error)
        lines.push_back("The room on the disk of the service cannot be asked for: " + error.message());
    else if (space.available < little)
        lines.push_back("The disk of " + outboxFile().parent_path().string() +
                        " is full: the service can note nothing and tells nobody until there is room.");
    return lines;
}

}  // namespace

platform::Service openService(const std::string& name) {
    return {platform::ServiceManager(platform::managerExecute), name,
            platform::serviceStart | platform::serviceStop};
}

bool startService(const std::string& name) {
    return accepted(name, openService(name).start()) && reaches(name, ServiceState::running);
}

int servicesCommand(Arguments& arguments) {
    const std::string verb = arguments.takeOr("list");
    if (verb == "list") {
        arguments.finish();
        for (const std::string& name : platform::serviceNames())
            std::printf("%-16s %s%s\n", name.c_str(), stateText(platform::queryServiceStatus(name).state),
                        name == "HbQlnSvc" ? ofItself().c_str() : "");
        for (const std::string& obstacle : obstacles())
            std::printf("%s\n", obstacle.c_str());
        return 0;
    }
    if (verb == "run") {
        arguments.finish();
        return superviseHost();
    }
    if (verb != "start" && verb != "stop")
        throw UsageError("services knows list, start, stop and run, not '" + verb + "'");
    const std::string name = arguments.take("NAME");
    arguments.finish();
    if (verb == "start")
        return startService(name) ? 0 : 1;
    return accepted(name, openService(name).control(platform::ServiceControl::stop)) &&
                   reaches(name, ServiceState::stopped)
               ? 0
               : 1;
}

}  // namespace qlnhost
