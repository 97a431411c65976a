// The legacy notifier's program, as far as the console has to do with it: a service that runs, reads its own
// database and stops when it is told to.

#include <cstdio>
#include <exception>

#include "host/legacyService/legacyWatch.h"
#include "service/program/run.h"

int main() {
    try {
        constexpr char key[] = "HKEY_LOCAL_MACHINE\\SOFTWARE\\Tessaly\\Kesn";
        service::LegacyWatch watch(service::textValue(key, "DataPath"));
        return service::run("tskesnsvr", service::readSettings(key), watch);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "tskesnsvr: %s\n", error.what());
        return 1;
    }
}
