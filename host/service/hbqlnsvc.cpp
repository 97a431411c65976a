// The service's program for this platform: it registers itself, and watches the event logs for what the
// configuration database, which it only reads, says. It sends nothing: its log tells what it would send.

#include <cstdio>
#include <exception>
#include <string_view>

#include "host/service/registration.h"
#include "host/service/run.h"
#include "host/service/watch.h"
#include "platform/machine/host.h"

int main(int argc, char** argv) {
    try {
        if (argc == 2 && std::string_view(argv[1]) == "-service") {
            service::registerService();
            std::puts("HbQlnSvc registered");
            return 0;
        }
        if (argc == 1) {
            const service::Settings settings = service::readSettings(
                "HKEY_LOCAL_MACHINE\\SOFTWARE\\Tessaly\\ToolRack\\Diagnostic Tools\\Quillon Service");
            service::Watch watch((platform::program::installationRoot() / "Database" / "QLNDB.MDB").string(),
                                 settings.pollingPause);
            return service::run("HbQlnSvc", settings, watch);
        }
        std::fputs("usage: HbQlnSvc.exe [-service]\n", stderr);
        return 2;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "HbQlnSvc: %s\n", error.what());
        return 1;
    }
}
