// A host with the service's real program, whose processes end with the test.
#pragma once

#include <string>
#include <string_view>

#include "platform/machine/clock.h"
#include "platform/services/serviceManager.h"
#include "support/temporaryHost.h"

namespace support {

inline constexpr char serviceAccount[] = "CORVANE01\\TsHubSvc";
inline constexpr char servicePassword[] = "harbour-7 \xC3\xA9\"$";

// The service's program as built, and one of a newer version.
std::filesystem::path serviceProgram();
std::filesystem::path newerServiceProgram();

class ServiceHost : public TemporaryHost {
  public:
    // The host's main service with its account, and the kit's files of the service; the service is not
    // installed.
    ServiceHost();
    // Kills what runs.
    ~ServiceHost();

    std::filesystem::path serviceFile(const char* name) const { return root() / "Service" / name; }
    // Puts a program in place as "HbQlnSvc.exe" or "HbQlnSvc.ex_".
    void placeProgram(const std::filesystem::path& program, const char* name);
    // Registers the service with its account, as after an installation.
    void installService();
    // Sets how the service's program behaves; delays in milliseconds.
    void setBehaviour(std::string name, std::uint32_t startDelay = 0, std::uint32_t stopDelay = 0);
    // Number of processes that run the program of the service.
    int processes() const;
    // Waits, ten seconds at most, for a state; false when it does not come.
    bool reaches(platform::ServiceState state, const char* keyName = "HbQlnSvc") const;
};

// A clock on which a second takes the 40th part of one, so that polls of real processes take half a second.
class FastClock : public platform::Clock {
  public:
    FastClock() { platform::setClock(this); }
    ~FastClock() override { platform::setClock(nullptr); }
    std::chrono::system_clock::time_point now() override { return std::chrono::system_clock::now(); }
    void sleep(std::chrono::milliseconds duration) override {
        slept += duration;
        platform::wait(duration / 40);
    }

    std::chrono::milliseconds slept{0};
};

}  // namespace support
