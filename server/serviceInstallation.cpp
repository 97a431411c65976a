#include "server/serviceInstallation.h"

#include <optional>
#include <string>

#include "core/RegistryAPI.h"
#include "core/classLog.h"
#include "core/mdlVerInfo.h"
#include "core/modLocalize.h"
#include "core/procedure.h"
#include "core/state.h"
#include "platform/machine/host.h"
#include "platform/prompts.h"
#include "platform/services/serviceManager.h"
#include "server/compareVersions.h"
#include "server/eventSourceRegistration.h"
#include "server/executeApp.h"
#include "server/serviceControl.h"
#include "server/serviceFiles.h"
#include "server/servicePolls.h"

using core::gLog;
using modLocalize::myLoadResString;
using platform::BoxIcon;
using platform::Secret;
using platform::Service;
using platform::ServiceManager;

namespace mdlUtility {

namespace {

constexpr char moduleName[] = "mdlUtility";
constexpr char serviceKey[] = "System\\CurrentControlSet\\Services\\HbQlnSvc";
constexpr char mainServiceKey[] = "System\\CurrentControlSet\\Services\\TsHubMgr";

// Lets the service's program register the service.
void registerService(core::Frame& frame) {
    const std::string commandLine = "\"" + (serviceFolder() / serviceProgram).string() + "\" -service";
    gLog().log(commandLine, core::logInfo, frame.tag());
    std::string output;
    frame.step([&] { output = ExecuteApp(commandLine); });
    gLog().log("Output from " + commandLine, core::logVersionInfo, frame.tag());
    gLog().log(output, core::logVersionInfo, frame.tag());
}

// Gives the service its account and lets it start with the machine; gives the system's last error.
std::uint32_t configure(Service& service, const std::string& account, Secret password) {
    constexpr std::uint32_t startAutomatically = 2;
    if (password.empty())
        password.append(std::string_view("\0", 1));  // how no password is said, instead of no change of it
    std::uint32_t tag = 0;
    platform::ServiceConfiguration configuration;
    configuration.startType = startAutomatically;
    configuration.loadOrderGroup = " ";
    configuration.tag = &tag;
    configuration.account = account;
    configuration.password = password.view();
    return service.changeConfiguration(configuration);
}

enum class Attempt { started, askAgain };

void askAgainBox(long text, long title) {
    platform::prompts().messageBox({myLoadResString(text), myLoadResString(title), BoxIcon::critical});
}

// Configures and starts the service. Only a bad account and a wrong password ask again; what else goes wrong
// is logged, and the state of the service decides.
Attempt configureAndStartOnce(core::Frame& frame, Service& service, const std::string& account,
                              Secret password) {
    std::uint32_t error = configure(service, account, std::move(password));
    if (error == platform::errorInvalidServiceAccount) {
        askAgainBox(1225, 1226);
        return Attempt::askAgain;
    }
    if (error != platform::noError)
        logServiceError(frame, "Error in call to ChangeServiceConfig.  Error = ", error);
    platform::splash().splashOn(myLoadResString(1233));
    error = service.start();
    if (error == platform::noError)
        return Attempt::started;
    platform::splash().splashOff();
    if (error == platform::errorServiceLogonFailed) {
        askAgainBox(1227, 1228);
        return Attempt::askAgain;
    }
    logServiceError(frame, "Error in call to StartService.  Error = ", error);
    return Attempt::started;
}

// The service is there once it is configured: only a start that is pending for too long keeps the console
// from going on.
bool waitForStart(core::Frame& frame, const Service& service) {
    platform::splash().splashOff();
    return pollUntilStarted(frame, service, core::serviceKeyName) != StartOutcome::tookTooLong;
}

// Asks for the password until the service takes it; false when the administrator gives up.
bool promptAndStart(core::Frame& frame, const std::string& account) {
    const std::string text =
        myLoadResString(1176) + account + ").\n\n" + myLoadResString(1177) + account + ":";
    for (bool retry = false;; retry = true) {
        std::optional<Secret> password = platform::passwordPrompt().askPassword(text);
        if (!password)
            return false;
        if (!retry)
            registerService(frame);
        const ServiceManager manager(platform::managerExecute);
        Service service(manager, core::serviceKeyName, configureAndStart);
        if (configureAndStartOnce(frame, service, account, std::move(*password)) == Attempt::started)
            return waitForStart(frame, service);
    }
}

}  // namespace

bool installQLNService() {
    return core::procedure(moduleName, "installQLNService", false, [](core::Frame& frame, bool& result) {
        using namespace RegistryAPI;
        bool installed = false;
        frame.step([&] { installed = registryKeyExists(HKEY_LOCAL_MACHINE, serviceKey); });
        if (installed) {
            frame.step([] { upgradeQLNService(); });
            result = true;
            return;
        }
        std::string account;
        frame.step([] { registerTestEventSource(); });
        frame.step([] { registerServiceEventSource(); });
        frame.step([] { copyQLNService(); });
        frame.step([&] { account = getRegistryString(HKEY_LOCAL_MACHINE, mainServiceKey, "ObjectName"); });
        gLog().log("Using account: " + account, core::logVersionInfo, frame.tag());
        frame.step([&] { result = promptAndStart(frame, account); });
        frame.step([] { platform::passwordPrompt().unload(); });
    });
}

void upgradeQLNService() {
    core::procedure(moduleName, "upgradeQLNService", [](core::Frame& frame) {
        std::string current;
        std::string delivered;
        const auto versionOf = [](const char* file) {
            return mdlVerInfo::getFileVersionString((serviceFolder() / file).string());
        };
        frame.step([] { registerServiceEventSource(); });
        frame.step([&] { current = versionOf(serviceProgram); });
        frame.step([&] { delivered = versionOf(deliveredProgram); });
        // There is no downgrade.
        if (compareVersions(delivered, current) <= 0)
            return;
        platform::prompts().messageBox(
            {myLoadResString(1273) + current + myLoadResString(1274) + delivered, myLoadResString(1275)});
        gLog().log("Upgrading the HbQlnSvc service from version: " + current + " to version: " + delivered,
                   core::logInfo, frame.tag());
        if (myStopService(core::serviceKeyName)) {
            frame.step([] { copyQLNService(); });
            frame.step([] { myStartService(core::serviceKeyName); });
            return;
        }
        platform::splash().splashOff();
        platform::prompts().messageBox({myLoadResString(1276), myLoadResString(1277)});
        platform::program::end(1);
    });
}

}  // namespace mdlUtility
