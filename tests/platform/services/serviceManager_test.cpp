// The service manager with the service's real program: what its handles may do, and every way of a start and
// a stop.
#include "platform/services/serviceManager.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>

#include "platform/files/files.h"
#include "platform/machine/host.h"
#include "platform/registry/registry.h"
#include "platform/services/accounts.h"
#include "support/serviceHost.h"

namespace {

namespace fs = std::filesystem;
using platform::Service;
using platform::ServiceConfiguration;
using platform::ServiceControl;
using platform::ServiceManager;
using platform::ServiceState;

constexpr char key[] = "SYSTEM\\CurrentControlSet\\Services\\HbQlnSvc";
constexpr std::uint32_t allRights = platform::serviceQueryConfig | platform::serviceChangeConfig |
                                    platform::serviceQueryStatus | platform::serviceStart |
                                    platform::serviceStop | platform::serviceDelete;

class Manager : public ::testing::Test {
  protected:
    Manager() { host.installService(); }

    Service open(std::uint32_t access = allRights, const char* name = "hbqlnsvc") const {
        return {ServiceManager(platform::managerExecute), name, access};
    }
    std::uint32_t configure(const std::string& account, std::string_view password,
                            std::uint32_t startType = platform::serviceNoChange) const {
        ServiceConfiguration configuration;
        configuration.account = account;
        configuration.password = password;
        configuration.startType = startType;
        return open().changeConfiguration(configuration);
    }
    bool isRegistered() const {
        return platform::registry().keyExists(std::string("HKEY_LOCAL_MACHINE\\") + key);
    }

    support::ServiceHost host;
};

TEST_F(Manager, GoesThroughEveryStateWithARealProcess) {
    host.openConfiguration();
    host.setBehaviour("", 300, 300);
    Service service = open();
    EXPECT_EQ(service.control(ServiceControl::stop), platform::errorServiceNotActive);
    ASSERT_EQ(service.start(), platform::noError);
    EXPECT_EQ(service.queryStatus().state, ServiceState::startPending);
    EXPECT_EQ(service.control(ServiceControl::stop), platform::errorServiceCannotAcceptControl);
    EXPECT_EQ(service.start(), platform::errorServiceAlreadyRunning);
    EXPECT_TRUE(host.reaches(ServiceState::running));
    EXPECT_EQ(host.processes(), 1);
    // Its program's file is held while it runs, and free as soon as it is said to have stopped.
    EXPECT_THROW(platform::files::copyFile(support::serviceProgram(), host.serviceFile("HbQlnSvc.exe")),
                 platform::Failure);
    ASSERT_EQ(service.control(ServiceControl::stop), platform::noError);
    EXPECT_TRUE(host.reaches(ServiceState::stopPending));
    EXPECT_EQ(service.control(ServiceControl::stop), platform::errorServiceCannotAcceptControl);
    EXPECT_TRUE(host.reaches(ServiceState::stopped));
    EXPECT_NO_THROW(platform::files::copyFile(support::serviceProgram(), host.serviceFile("HbQlnSvc.exe")));
}

TEST_F(Manager, LetsAHandleDoWhatItWasOpenedFor) {
    for (const std::uint32_t access : {22u, 36u, 20u, 65590u}) {
        host.installService();
        Service service = open(access);
        const auto expected = [&](std::uint32_t right) {
            return (access & right) != 0 ? platform::noError : platform::errorAccessDenied;
        };
        EXPECT_EQ(service.queryStatus().error, platform::noError) << access;
        EXPECT_EQ(service.changeConfiguration({}), expected(platform::serviceChangeConfig)) << access;
        const bool starts = (access & platform::serviceStart) != 0;
        EXPECT_EQ(service.start(), expected(platform::serviceStart)) << access;
        EXPECT_TRUE(host.reaches(starts ? ServiceState::running : ServiceState::stopped));
        Service other = open(platform::serviceStop | platform::serviceQueryStatus);
        const bool stops = (access & platform::serviceStop) != 0;
        EXPECT_EQ((stops ? service : other).control(ServiceControl::stop),
                  starts ? platform::noError : platform::errorServiceNotActive);
        if (!stops) {
            EXPECT_EQ(service.control(ServiceControl::stop), platform::errorAccessDenied) << access;
        }
        EXPECT_TRUE(host.reaches(ServiceState::stopped));
        EXPECT_EQ(service.remove(), expected(platform::serviceDelete)) << access;
    }
    host.installService();
    EXPECT_EQ(open(platform::serviceStart).queryStatus().error, platform::errorAccessDenied);
    EXPECT_EQ(Service(ServiceManager(1), "hbqlnsvc", allRights).queryStatus().error,
              platform::errorAccessDenied);
    for (const char* name : {"none", "", "../hbqlnsvc", "..\\Services\\HbQlnSvc"}) {
        Service missing = open(allRights, name);
        EXPECT_EQ(missing.queryStatus().error, platform::errorServiceDoesNotExist) << name;
        EXPECT_EQ(missing.start(), platform::errorServiceDoesNotExist) << name;
    }
}

TEST_F(Manager, TellsWhyAProgramDidNotStart) {
    host.setRegistry("SYSTEM\\CurrentControlSet\\Control", "ServicesPipeTimeout", 500u);
    host.setBehaviour("neverReport");
    EXPECT_EQ(open().start(), platform::errorServiceRequestTimeout);
    EXPECT_TRUE(host.reaches(ServiceState::stopped)) << "a program that does not report is ended";
    const auto startOf = [&](const std::string& program) {
        host.setRegistry(key, "ImagePath", program);
        return open().start();
    };
    EXPECT_EQ(startOf("/bin/true"), platform::errorServiceRequestTimeout) << "it ended without a report";
    EXPECT_EQ(startOf((host.root() / "none").string()), platform::errorFileNotFound);
    EXPECT_EQ(startOf(host.serviceFile("HbQlnSvcRes_ENU.dl_").string()), platform::errorAccessDenied);
    EXPECT_EQ(configure(support::serviceAccount, support::servicePassword, 4), platform::noError);
    EXPECT_EQ(open().start(), platform::errorServiceDisabled);
    EXPECT_EQ(configure(support::serviceAccount, support::servicePassword, 5),
              platform::errorInvalidParameter);
    std::ofstream(platform::host::registryFile(), std::ios::app) << "no registry\n";
    EXPECT_EQ(open().start(), platform::errorBadRegistry);
}

TEST_F(Manager, SeesAServiceThatFailsByItself) {
    host.setBehaviour("failToStart", 100);
    EXPECT_EQ(open().start(), platform::noError);
    EXPECT_EQ(open().queryStatus().state, ServiceState::startPending);
    EXPECT_TRUE(host.reaches(ServiceState::stopped));
    host.setBehaviour("crashWhileRunning");
    EXPECT_EQ(open().start(), platform::noError);
    EXPECT_TRUE(host.reaches(ServiceState::running));
    EXPECT_TRUE(host.reaches(ServiceState::stopped));
    // Whoever stops it now is told when that cannot be noted, for it would be started again.
    const fs::path state = platform::host::servicesFolder() / "hbqlnsvc.state";
    ASSERT_EQ(::chmod(state.c_str(), 0400), 0);
    EXPECT_EQ(open().control(ServiceControl::stop), platform::errorAccessDenied);
    ASSERT_EQ(::chmod(state.c_str(), 0600), 0);
    EXPECT_EQ(open().control(ServiceControl::stop), platform::errorServiceNotActive);
    host.setBehaviour("");
    EXPECT_EQ(open().start(), platform::noError) << "after a crash it starts like any other";
    EXPECT_TRUE(host.reaches(ServiceState::running));
}

TEST_F(Manager, StartsOnlyWithTheAccountsPresentPassword) {
    EXPECT_EQ(configure("CORVANE01\\nobody", "x"), platform::errorInvalidServiceAccount);
    EXPECT_EQ(configure(support::serviceAccount, "wrong"), platform::noError) << "it shows at the start";
    EXPECT_EQ(open().start(), platform::errorServiceLogonFailed);
    EXPECT_EQ(configure(support::serviceAccount, std::string_view("\0", 1)), platform::noError);
    EXPECT_EQ(open().start(), platform::errorServiceLogonFailed);
    platform::setAccountPassword("HOST\\empty", "");
    EXPECT_EQ(configure("HOST\\empty", std::string_view("\0", 1)), platform::noError);
    EXPECT_EQ(open().start(), platform::noError) << "one zero says that there is no password";
    EXPECT_TRUE(host.reaches(ServiceState::running));
    EXPECT_EQ(open().control(ServiceControl::stop), platform::noError);
    EXPECT_TRUE(host.reaches(ServiceState::stopped));

    EXPECT_EQ(configure(support::serviceAccount, support::servicePassword), platform::noError);
    const std::string registry = platform::files::readFile(platform::host::registryFile());
    EXPECT_EQ(registry.find(support::servicePassword), std::string::npos);
    EXPECT_EQ(registry.find("$y$"), std::string::npos) << "not even the hash is the service's to keep";
    platform::setAccountPassword(support::serviceAccount, "changed");
    EXPECT_EQ(open().start(), platform::errorServiceLogonFailed);
    platform::setAccountPassword(support::serviceAccount, support::servicePassword);
    EXPECT_EQ(open().start(), platform::errorServiceLogonFailed) << "a new hash, though of the same password";
    EXPECT_EQ(configure("LocalSystem", ""), platform::noError);
    EXPECT_EQ(open().start(), platform::noError);
}

TEST_F(Manager, DeletesWhenNothingHoldsTheServiceAnyMore) {
    {
        Service one = open();
        Service other = open();
        EXPECT_EQ(one.remove(), platform::noError);
        EXPECT_EQ(other.remove(), platform::errorServiceMarkedForDelete);
        EXPECT_EQ(other.start(), platform::errorServiceMarkedForDelete);
        EXPECT_EQ(other.changeConfiguration({}), platform::errorServiceMarkedForDelete);
        one = open(0, "none");
        EXPECT_TRUE(isRegistered()) << "one handle is still open";
    }
    EXPECT_FALSE(isRegistered());

    host.installService();
    EXPECT_EQ(open().start(), platform::noError);
    EXPECT_TRUE(host.reaches(ServiceState::running));
    EXPECT_EQ(open().remove(), platform::noError);
    EXPECT_TRUE(isRegistered()) << "it still runs";
    EXPECT_EQ(open().control(ServiceControl::stop), platform::noError);
    EXPECT_TRUE(host.reaches(ServiceState::stopped));
    for (int i = 0; i < 500 && isRegistered(); ++i)
        platform::wait(std::chrono::milliseconds(10));
    EXPECT_FALSE(isRegistered()) << "it goes with its process";
}

TEST_F(Manager, TheProgramServesUnderTheNameThatItWasStartedFor) {
    host.setRegistry("SYSTEM\\CurrentControlSet\\Services\\tskesnsvr", "ImagePath",
                     host.serviceFile("HbQlnSvc.exe").string());
    EXPECT_EQ(open(allRights, "tskesnsvr").start(), platform::noError);
    EXPECT_TRUE(host.reaches(ServiceState::running, "TsKesnSvr"));
    EXPECT_EQ(open().queryStatus().state, ServiceState::stopped);
    EXPECT_EQ(open(allRights, "tskesnsvr").control(ServiceControl::stop), platform::noError);
    EXPECT_TRUE(host.reaches(ServiceState::stopped, "tskesnsvr"));
}

}  // namespace
