// The program of the server's own main service, as far as a notifier beside it has to do with it: a service
// under the account that the notifier's service shares, which runs and stops when it is told to.

#include <cstdio>
#include <exception>

#include "service/program/run.h"

namespace {

// The server's own work is not part of a demonstration.
class Idle : public service::Work {
  public:
    std::chrono::milliseconds look() override { return std::chrono::minutes(1); }
};

}  // namespace

int main() {
    try {
        Idle idle;
        return service::run("TsHubMgr", service::Settings(), idle);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "TsHubMgr: %s\n", error.what());
        return 1;
    }
}
