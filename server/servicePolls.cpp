#include "server/servicePolls.h"

#include <chrono>

#include "core/classLog.h"
#include "platform/machine/clock.h"

using platform::ServiceState;

namespace mdlUtility {

namespace {

constexpr std::chrono::milliseconds pollPause(1000);
constexpr char stateLegend[] = " (1=STOPPED, 2=START PENDING, 3=STOP PENDING, 4=SERVICE_RUNNING)";

}  // namespace

void logServiceError(core::Frame& frame, std::string_view introduction, std::uint32_t error) {
    core::gLog().log(std::string(introduction) + std::to_string(error), core::logError, frame.tag());
}

bool queryState(core::Frame& frame, const platform::Service& service, std::string_view name,
                ServiceState& state) {
    const platform::ServiceStatus status = service.queryStatus();
    if (status.error != platform::noError) {
        logServiceError(frame, "Error returned from QueryServiceStatus, error = ", status.error);
        return false;
    }
    state = status.state;
    core::gLog().log(
        std::string(name) + " service state = " + std::to_string(static_cast<unsigned>(state)) + stateLegend,
        core::logInfo, frame.tag());
    return true;
}

void pollUntilStopped(core::Frame& frame, const platform::Service& service, std::string_view name,
                      const std::string& warning, ServiceState& state) {
    for (int polls = 1; state != ServiceState::stopped; ++polls) {
        if (polls == pollLimit) {
            core::gLog().log(warning, core::logWarning, frame.tag());
            return;
        }
        platform::clock().sleep(pollPause);
        queryState(frame, service, name, state);
    }
}

StartOutcome pollUntilStarted(core::Frame& frame, const platform::Service& service, std::string_view name) {
    for (int polls = 1;; ++polls) {
        ServiceState state = ServiceState::stopped;
        if (!queryState(frame, service, name, state))
            return StartOutcome::queryFailed;
        if (state == ServiceState::running)
            return StartOutcome::running;
        if (state != ServiceState::startPending) {
            core::gLog().log("QLN Service failed to start.  Use Services for further troubleshooting.",
                             core::logError, frame.tag());
            return StartOutcome::failedToStart;
        }
        if (polls == pollLimit) {
            core::gLog().log("QLN Service took longer then " + std::to_string(pollLimit) +
                                 " seconds to start, if it started at all.",
                             core::logWarning, frame.tag());
            return StartOutcome::tookTooLong;
        }
        platform::clock().sleep(pollPause);
    }
}

}  // namespace mdlUtility
