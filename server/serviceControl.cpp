#include "server/serviceControl.h"

#include <string>

#include "core/classLog.h"
#include "core/procedure.h"
#include "platform/serviceManager.h"

namespace mdlUtility {

namespace {

constexpr char moduleName[] = "mdlUtility";
constexpr char stateLegend[] = " (1=STOPPED, 2=START PENDING, 3=STOP PENDING, 4=SERVICE_RUNNING)";

}  // namespace

bool isServiceRunning(std::string_view name) {
    return core::procedure(moduleName, "isServiceRunning", false, [&](core::Frame& frame, bool& result) {
        frame.step([&] {
            const platform::ServiceStatus status = platform::queryServiceStatus(name);
            if (status.error != 0) {
                core::gLog().log(
                    "Error returned from QueryServiceStatus, error = " + std::to_string(status.error),
                    core::logError, frame.tag());
                return;
            }
            const auto state = static_cast<unsigned>(status.state);
            core::gLog().log(std::string(name) + " service state = " + std::to_string(state) + stateLegend,
                             core::logInfo, frame.tag());
            result = status.state == platform::ServiceState::running;
        });
    });
}

}  // namespace mdlUtility
