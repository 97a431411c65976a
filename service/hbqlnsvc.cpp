// The service's program: it registers itself, or watches the event logs and notifies.

#include <sys/resource.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/machine/host.h"
#include "platform/registry/productKey.h"
#include "platform/registry/registry.h"
#include "service/notifier.h"
#include "service/program/registration.h"
#include "service/program/run.h"
#include "service/sources/hostLog.h"
#include "service/sources/journal.h"
#include "service/sources/journalChoice.h"
#include "service/transports/waysOut.h"

namespace {

const std::string serviceKey = std::string("HKEY_LOCAL_MACHINE\\") + platform::productKey;

// Minutes; the value is set for those whose service is down for long.
std::chrono::minutes oldestNotice() {
    constexpr std::uint32_t usual = 60;
    const auto value = platform::registry().value(serviceKey, "OldestNotice");
    const auto* minutes = value ? std::get_if<std::uint32_t>(&*value) : nullptr;
    return std::chrono::minutes(minutes ? *minutes : usual);
}

service::NotifierOptions options(const service::Settings& settings, service::WaysOut& waysOut) {
    const std::filesystem::path root = platform::program::installationRoot();
    service::NotifierOptions result;
    result.databaseFile = root / "Database" / "QLNDB.MDB";
    result.delivery.voiceFolder = result.databaseFile.parent_path();
    result.outboxFile = platform::program::folder() / "HbQlnSvc.db";
    result.pause = settings.pollingPause;
    result.oldestNotice = oldestNotice();
    result.isSetUp = [&](service::DeviceKind kind) { return waysOut.isSetUp(kind); };
    result.delivery.makeTransport = [&](service::DeviceKind kind) { return waysOut.make(kind); };
    result.delivery.mailDomain = [&] { return waysOut.settings().mailDomain; };
    result.refreshWaysOut = [&] { return waysOut.refresh(); };
    return result;
}

// A password of the relay must not lie in a core file.
void forbidCoreFiles() {
    const rlimit none{0, 0};
    ::setrlimit(RLIMIT_CORE, &none);
}

int runService() {
    forbidCoreFiles();
    const service::Settings settings = service::readSettings(serviceKey);
    service::WaysOut waysOut;
    std::vector<std::unique_ptr<service::Source>> sources;
    for (const char* log : {"Application", "System"})
        sources.push_back(std::make_unique<service::HostLog>(log));
    if (const service::JournalChoice choice = service::journalChoice(); choice.isOn)
        sources.push_back(std::make_unique<service::Journal>(choice.folder));
    service::Notifier notifier(options(settings, waysOut), std::move(sources));
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
        // A search for a name or in the directory that nobody waits for any more may still be at work: it
        // must not meet what the end of a program takes down.
        if (argc == 1)
            std::_Exit(runService());
        std::fputs("usage: HbQlnSvc.exe [-service]\n", stderr);
        return 2;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "HbQlnSvc: %s\n", error.what());
        return 1;
    }
}
