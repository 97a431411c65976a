// Work in a forked process: to be killed, to run beside the test, or to run as another user. To be used while
// the test's own process holds no open database and no thread.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <functional>

namespace support {

class ChildProcess {
  public:
    // Tells the parent that the child has come so far; only the child calls it.
    using Ready = std::function<void()>;
    using Work = std::function<void(const Ready& ready)>;

    // Starts the child, with a log and an application state of its own. Its exit code is 0, or 1 when the
    // work threw or an expectation failed in it.
    explicit ChildProcess(const Work& work);
    // Kills a child that nobody waited for.
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    // Returns when the child is ready or gone.
    void awaitReady() const;
    // True when the child, being ready, ends within the time; returns as soon as it does.
    bool endsWithin(std::chrono::microseconds time) const;
    // SIGKILL: nothing of the child runs any more.
    void kill() const;
    // Waits for the end: the exit code, or the negative number of the signal that ended it.
    int wait();

  private:
    pid_t pid_ = -1;
    int readyPipe_ = -1;
};

// Runs the work in a child to its end; true when nothing failed in it.
bool succeedsInChild(const std::function<void()>& work);

enum class Ran { passed, failed, impossible };
// The work as an ordinary user who owns `folder`: the superuser's child becomes user 65534, anybody else's
// stays who it is. Impossible where the system refuses the change.
Ran runAsOrdinaryUser(const std::filesystem::path& folder, const std::function<void()>& work);
// The work with an empty file system of `kilobytes` mounted on `folder`, which nobody else sees. Impossible
// where this user may not mount.
Ran runOnSmallDisk(const std::filesystem::path& folder, long kilobytes, const std::function<void()>& work);

}  // namespace support
