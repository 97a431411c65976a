#include "server/serviceControl.h"

#include <string>

#include "core/classLog.h"
#include "core/modLocalize.h"
#include "core/procedure.h"
#include "core/state.h"
#include "platform/prompts.h"
#include "platform/services/serviceManager.h"
#include "server/servicePolls.h"

using modLocalize::myLoadResString;
using platform::Service;
using platform::ServiceControl;
using platform::ServiceManager;
using platform::ServiceState;

namespace mdlUtility {

namespace {

constexpr char moduleName[] = "mdlUtility";

// Handles are variables of the body: they close at its end, the service before the manager, also on a
// failure.

std::string seconds() {
    return std::to_string(pollLimit) + " seconds";
}

// Asks the service to stop and waits for it.
void stopAndPoll(core::Frame& frame, Service& service, std::string_view name, const std::string& warning,
                 ServiceState& state) {
    const std::uint32_t error = service.control(ServiceControl::stop);
    if (error != platform::noError)
        logServiceError(frame, "Error returned from ControlService, error = ", error);
    else
        pollUntilStopped(frame, service, name, warning, state);
}

void stopAndDelete(core::Frame& frame, Service& service) {
    constexpr std::string_view name = "HbQlnSvc";
    ServiceState state = ServiceState::running;
    if (!queryState(frame, service, name, state))
        return;
    if (state != ServiceState::stopped)
        stopAndPoll(frame, service, name,
                    "QLN Service took longer then " + seconds() +
                        " to stop.  Deleting the service may not happen until the service stops and the "
                        "Service control manager is closed.",
                    state);
    // Also a service that would not stop is deleted: it goes with its process.
    const std::uint32_t error = service.remove();
    if (error == platform::noError)
        core::gLog().log("HbQlnSvc has been removed.", core::logWarning, frame.tag());
    else
        logServiceError(frame, "Error returned from DeleteService, error = ", error);
}

}  // namespace

bool isServiceRunning(std::string_view name) {
    return core::procedure(moduleName, "isServiceRunning", false, [&](core::Frame& frame, bool& result) {
        const ServiceManager manager(platform::managerExecute);
        const Service service(manager, name, configureAndStart);
        ServiceState state = ServiceState::stopped;
        result = queryState(frame, service, name, state) && state == ServiceState::running;
    });
}

bool myStopService(std::string_view name) {
    return core::procedure(moduleName, "myStopService", false, [&](core::Frame& frame, bool& result) {
        const ServiceManager manager(platform::managerExecute);
        Service service(manager, name, platform::serviceQueryStatus | platform::serviceStop);
        ServiceState state = ServiceState::running;
        if (queryState(frame, service, name, state) && state != ServiceState::stopped)
            stopAndPoll(frame, service, name,
                        std::string(name) + " Service has not stopped in " + seconds() + ".  ", state);
        result = state == ServiceState::stopped;
    });
}

bool myStartService(std::string_view name) {
    return core::procedure(moduleName, "myStartService", false, [&](core::Frame& frame, bool& result) {
        const ServiceManager manager(platform::managerExecute);
        Service service(manager, name, platform::serviceQueryStatus | platform::serviceStart);
        ServiceState state = ServiceState::running;
        if (queryState(frame, service, name, state) && state != ServiceState::running) {
            const std::uint32_t error = service.start();
            if (error != platform::noError) {
                logServiceError(frame, "Error in call to StartService.  Error = ", error);
                return;
            }
        }
        result = pollUntilStarted(frame, service, name) == StartOutcome::running;
    });
}

void uninstallQLNService() {
    core::procedure(moduleName, "uninstallQLNService", [&](core::Frame& frame) {
        constexpr short noticeSeconds = 3;
        const ServiceManager manager(platform::managerExecute);
        Service service(manager, core::serviceKeyName,
                        configureAndStart | platform::serviceStop | platform::serviceDelete);
        frame.step([&] { platform::splash().splashOn(myLoadResString(1235)); });
        frame.step([&] { stopAndDelete(frame, service); });
        frame.step([&] { platform::splash().splashOn(myLoadResString(1234), noticeSeconds); });
    });
}

}  // namespace mdlUtility
