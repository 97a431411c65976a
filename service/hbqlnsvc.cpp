// The service's program: it registers itself, or watches the event logs and notifies.

#include <cstdio>
#include <exception>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/machine/host.h"
#include "service/notifier.h"
#include "service/program/registration.h"
#include "service/program/run.h"
#include "service/sources/hostLog.h"
#include "service/transports/mailbox.h"

namespace {

constexpr char serviceKey[] =
    "HKEY_LOCAL_MACHINE\\SOFTWARE\\Tessaly\\ToolRack\\Diagnostic Tools\\Quillon Service";

service::NotifierOptions options(const service::Settings& settings) {
    const std::filesystem::path root = platform::program::installationRoot();
    service::NotifierOptions result;
    result.databaseFile = root / "Database" / "QLNDB.MDB";
    result.outboxFile = platform::program::folder() / "HbQlnSvc.db";
    result.pause = settings.pollingPause;
    result.mailDomain = "localhost";
    result.isSetUp = [](service::DeviceKind kind) {
        return kind == service::DeviceKind::voiceMail || kind == service::DeviceKind::email ||
               kind == service::DeviceKind::smtpAddress;
    };
    result.makeTransport = [](service::DeviceKind) {
        return std::make_unique<service::Mailbox>(platform::host::folder() / "mail", "quillon@localhost");
    };
    return result;
}

int runService() {
    const service::Settings settings = service::readSettings(serviceKey);
    std::vector<std::unique_ptr<service::Source>> sources;
    for (const char* log : {"Application", "System"})
        sources.push_back(std::make_unique<service::HostLog>(log));
    service::Notifier notifier(options(settings), std::move(sources));
    return service::run("HbQlnSvc", settings, notifier);
}

}  // namespace

int main(int argc, char** argv) {
    try {
        if (argc == 2 && std::string_view(argv[1]) == "-service") {
            service::registerService();
            std::puts("HbQlnSvc registered");
            return 0;
        }
        if (argc == 1)
            return runService();
        std::fputs("usage: HbQlnSvc.exe [-service]\n", stderr);
        return 2;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "HbQlnSvc: %s\n", error.what());
        return 1;
    }
}
