// The service's program for this platform: it registers itself, and watches the configuration database, which
// it only reads.

#include <cstdio>
#include <exception>
#include <string_view>

#include "host/service/registration.h"
#include "host/service/run.h"

int main(int argc, char** argv) {
    try {
        if (argc == 2 && std::string_view(argv[1]) == "-service") {
            service::registerService();
            std::puts("HbQlnSvc registered");
            return 0;
        }
        if (argc == 1)
            return service::run();
        std::fputs("usage: HbQlnSvc.exe [-service]\n", stderr);
        return 2;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "HbQlnSvc: %s\n", error.what());
        return 1;
    }
}
