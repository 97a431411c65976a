// Keeps the host's automatic services running, as a machine does from its start to its end. The console's
// manager works on the same state: what somebody stops stays stopped until somebody starts it.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <map>
#include <string>

namespace qlnhost {

class Supervisor {
  public:
    using Moment = std::chrono::steady_clock::time_point;

    // `say` gets a line for each thing that happens.
    explicit Supervisor(std::function<void(const std::string&)> say) : say_(std::move(say)) {}

    // Starts the automatic services that do not run yet; where this goes on with the work of a supervisor
    // that crashed, those that somebody had stopped stay stopped. Raises platform::Failure when the host
    // cannot be read.
    void begin(Moment now, bool goesOn);
    // Looks at each service once: one that crashed is started again when its time has come, 1, 2, 5, 10, 30 s
    // after the crash and then every minute; one that has run for a minute begins anew. What cannot be read
    // for a moment is looked at the next time.
    void look(Moment now);
    // Stops the services that run, the last one first, and waits for each, ten seconds at most; false when
    // one does not end.
    bool end();
    // "HbQlnSvc running, TsHubMgr stopped".
    std::string status() const;

  private:
    struct Watched {
        bool isWanted = false;   // it is to run: it was started and nobody has stopped it since
        bool isRunning = false;  // as it was seen last
        std::size_t failures = 0;
        bool wasStoppedThen = false;  // its record said so already when it failed: no new request
        Moment since;                 // when it was seen running first
        Moment startAt;               // a crashed one
    };
    void look(const std::string& name, Watched& service, Moment now);
    void start(const std::string& name, Watched& service, Moment now);
    void fail(const std::string& name, Watched& service, Moment now, const std::string& what);

    std::function<void(const std::string&)> say_;
    std::map<std::string, Watched> services_;  // by key name
    std::string trouble_;                      // that keeps it from looking
};

// Supervises the present host in the foreground until the signal to end comes, and tells the system's service
// manager of it where that has asked for it (sd_notify, watchdog). Gives the exit code: 1, with a line on
// standard error, when somebody else does it already.
int superviseHost();

}  // namespace qlnhost
