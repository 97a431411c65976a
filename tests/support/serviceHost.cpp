#include "support/serviceHost.h"

#include <gtest/gtest.h>
#include <signal.h>

#include <fstream>

#include "platform/machine/process.h"
#include "platform/services/accounts.h"

namespace support {

namespace fs = std::filesystem;

namespace {

constexpr char productKey[] = "SOFTWARE\\Tessaly\\ToolRack\\Diagnostic Tools\\Quillon Service";
constexpr char servicesKey[] = "SYSTEM\\CurrentControlSet\\Services\\";

// Ids of the processes whose program is the file.
std::vector<int> processesOf(const fs::path& program) {
    std::vector<int> found;
    for (const auto& entry : fs::directory_iterator("/proc")) {
        std::error_code error;
        const std::string name = entry.path().filename().string();
        if (name.find_first_not_of("0123456789") == std::string::npos &&
            fs::read_symlink(entry.path() / "exe", error).string().starts_with(program.string()))
            found.push_back(std::stoi(name));
    }
    return found;
}

}  // namespace

fs::path serviceProgram() {
    return SERVICE_PROGRAM;
}

fs::path newerServiceProgram() {
    return NEWER_SERVICE_PROGRAM;
}

ServiceHost::ServiceHost() {
    platform::setAccountPassword(serviceAccount, servicePassword);
    setRegistry(std::string(servicesKey) + "TsHubMgr", "ObjectName", std::string(serviceAccount));
    placeProgram(serviceProgram(), "HbQlnSvc.ex_");
    std::ofstream(serviceFile("HbQlnSvcRes_ENU.dl_")) << "resources";
}

ServiceHost::~ServiceHost() {
    // The program is gone by its name once the folder goes, so the processes must go first.
    for (const int process : processesOf(serviceFile("HbQlnSvc.exe")))
        ::kill(process, SIGKILL);
    while (processes() > 0)
        platform::wait(std::chrono::milliseconds(5));
}

void ServiceHost::placeProgram(const fs::path& program, const char* name) {
    fs::remove(serviceFile(name));
    fs::copy_file(program, serviceFile(name));
}

void ServiceHost::installService() {
    placeProgram(serviceProgram(), "HbQlnSvc.exe");
    const std::string key = std::string(servicesKey) + "HbQlnSvc";
    setRegistry(key, "ImagePath", "\"" + serviceFile("HbQlnSvc.exe").string() + "\"");
    platform::Service service(platform::ServiceManager(platform::managerExecute), "HbQlnSvc",
                              platform::serviceChangeConfig);
    platform::ServiceConfiguration configuration;
    configuration.startType = 2;
    configuration.account = serviceAccount;
    configuration.password = servicePassword;
    EXPECT_EQ(service.changeConfiguration(configuration), 0u);
}

void ServiceHost::setBehaviour(std::string name, std::uint32_t startDelay, std::uint32_t stopDelay) {
    setRegistry(productKey, "ServiceBehaviour", std::move(name));
    setRegistry(productKey, "ServiceStartDelay", startDelay);
    setRegistry(productKey, "ServiceStopDelay", stopDelay);
}

int ServiceHost::processes() const {
    return static_cast<int>(processesOf(serviceFile("HbQlnSvc.exe")).size());
}

bool ServiceHost::reaches(platform::ServiceState state, const char* keyName) const {
    for (int i = 0; i < 1000; ++i) {
        if (platform::queryServiceStatus(keyName).state == state)
            return true;
        platform::wait(std::chrono::milliseconds(10));
    }
    return false;
}

}  // namespace support
