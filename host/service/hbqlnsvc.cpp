// The service's program for this platform: it registers itself, and watches the configuration database, which
// it only reads.

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <string_view>

#include "platform/ado.h"
#include "platform/failure.h"
#include "platform/host.h"
#include "platform/registry.h"
#include "platform/serviceManager.h"

namespace {

constexpr char keyName[] = "HbQlnSvc";
constexpr char serviceKey[] = "HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Services\\HbQlnSvc";

volatile sig_atomic_t stopping = 0;

// Writes the service's key: its program, to be started by hand until the manager is told otherwise.
int registerService() {
    constexpr std::uint32_t startByHand = 3;
    constexpr std::uint32_t ownProcess = 16;
    platform::Registry& registry = platform::registry();
    registry.createKey(serviceKey);
    registry.setValue(serviceKey, "ImagePath", "\"" + platform::program::file().string() + "\"");
    registry.setValue(serviceKey, "Start", startByHand);
    registry.setValue(serviceKey, "Type", ownProcess);
    std::puts("HbQlnSvc registered");
    return 0;
}

// Seconds between two looks; the setting's value where it is a number from 1 to an hour.
unsigned pollingInterval(platform::Connection& database) {
    constexpr long standard = 10;
    constexpr long longest = 3600;
    platform::Recordset row;
    row.open("SELECT Value FROM Configuration WHERE Setting = 'PollingInterval'", database);
    if (row.EOF_() || row.isNull("Value"))
        return standard;
    const long seconds = std::strtol(row.text("Value").c_str(), nullptr, 10);
    return static_cast<unsigned>(seconds >= 1 && seconds <= longest ? seconds : standard);
}

// Reads what a pass over the event logs would work on; gives the pause until the next one.
unsigned look(const std::string& file) {
    platform::Connection database;
    database.open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + file);
    platform::Recordset events;
    events.open("SELECT EventKey, EventSource, EventId FROM Events WHERE EventActive <> 0", database,
                platform::CursorType::staticCursor, platform::LockType::readOnly,
                platform::CursorLocation::client);
    return pollingInterval(database);
}

int runService() {
    struct sigaction onStop {};
    onStop.sa_handler = [](int) { stopping = 1; };
    sigaction(SIGTERM, &onStop, nullptr);
    sigset_t stopSignals;
    sigset_t before;
    sigemptyset(&stopSignals);
    sigaddset(&stopSignals, SIGTERM);
    sigprocmask(SIG_BLOCK, &stopSignals, &before);

    using platform::ServiceState;
    platform::writeServiceState(keyName, ServiceState::startPending, getpid());
    const std::string file = (platform::program::installationRoot() / "Database" / "QLNDB.MDB").string();
    bool running = false;
    while (!stopping) {
        unsigned pause = 10;
        try {
            pause = look(file);
        } catch (const platform::Failure& failure) {
            // A file that is being replaced or held is there again at the next look.
            std::fprintf(stderr, "HbQlnSvc: %s\n", failure.what());
        }
        if (!running)
            platform::writeServiceState(keyName, ServiceState::running, getpid());
        running = true;
        // A signal that came before the wait ends the wait too.
        const timespec wait{static_cast<time_t>(pause), 0};
        pselect(0, nullptr, nullptr, nullptr, &wait, &before);
    }
    platform::writeServiceState(keyName, ServiceState::stopPending, getpid());
    platform::writeServiceState(keyName, ServiceState::stopped, getpid());
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        if (argc == 2 && std::string_view(argv[1]) == "-service")
            return registerService();
        if (argc != 1) {
            std::fputs("usage: HbQlnSvc.exe [-service]\n", stderr);
            return 2;
        }
        return runService();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "HbQlnSvc: %s\n", error.what());
        return 1;
    }
}
