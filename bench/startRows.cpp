// From the start of the process to its first painted window, for the console and for sqlitebrowser, each as a
// whole process on the same display with the same database. Each shows its 500 events in a grid.

#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <thread>

#include "bench/painted.h"
#include "bench/rows.h"
#include "bench/workplace.h"
#include "host/provision.h"

namespace bench {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int eventCount = 500;
constexpr auto patience = std::chrono::seconds(30);
constexpr auto pollInterval = std::chrono::milliseconds(1);

// One run of a program; killed and gone with the object, so that no run does what an orderly exit does.
class Process {
  public:
    Process(const std::vector<std::string>& command, const std::vector<std::string>& environment) {
        const auto pointers = [](const std::vector<std::string>& texts) {
            std::vector<char*> result;
            for (const std::string& text : texts)
                result.push_back(const_cast<char*>(text.c_str()));
            result.push_back(nullptr);
            return result;
        };
        const int code = posix_spawnp(&pid_, command.front().c_str(), nullptr, nullptr,
                                      pointers(command).data(), pointers(environment).data());
        insist(code == 0, "cannot start " + command.front());
    }
    ~Process() {
        if (hasEnded())
            return;
        kill(pid_, SIGKILL);
        waitpid(pid_, nullptr, 0);
    }
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    bool hasEnded() {
        ended_ = ended_ || waitpid(pid_, nullptr, WNOHANG) == pid_;
        return ended_;
    }

  private:
    pid_t pid_ = 0;
    bool ended_ = false;
};

double timeToWindow(const Screen& screen, const std::vector<std::string>& command,
                    const std::vector<std::string>& environment) {
    // The windows of the run before go when the server has seen the end of their process.
    for (const auto start = Clock::now(); !screen.isEmpty(); std::this_thread::sleep_for(pollInterval))
        insist(Clock::now() - start < patience, "the display does not become empty");
    const auto start = Clock::now();
    Process process(command, environment);
    while (!screen.showsPaintedWindow()) {
        insist(!process.hasEnded(), command.front() + " ended before it showed a window");
        insist(Clock::now() - start < patience, command.front() + " shows no window");
        std::this_thread::sleep_for(pollInterval);
    }
    return std::chrono::duration<double>(Clock::now() - start).count();
}

std::vector<std::string> environmentWith(const std::vector<std::string>& settings) {
    std::vector<std::string> result = settings;
    for (char** entry = environ; *entry; ++entry) {
        const std::string text = *entry;
        const std::string name = text.substr(0, text.find('=') + 1);
        bool replaced = false;
        for (const std::string& setting : settings)
            replaced = replaced || setting.starts_with(name);
        if (!replaced)
            result.push_back(text);
    }
    return result;
}

}  // namespace

void startRows(Table& table, const std::filesystem::path& folder) {
    host::HostOptions options;
    options.kit = CONSOLE_KIT;
    host::createHost(folder, options);
    const std::filesystem::path database = folder / "Database" / "QLNDB.MDB";
    const std::filesystem::path copy = folder / "peer.db";
    makeDatabase(database, eventCount);
    std::filesystem::copy_file(database, copy);
    // Settings of a person who runs the peer for the first time would differ from run to run.
    std::filesystem::create_directory(folder / "home");
    const auto ourEnvironment =
        environmentWith({"QT_QPA_PLATFORM=xcb", "QLN_HOST=" + (folder / "Host").string()});
    const auto peerEnvironment = environmentWith({"QT_QPA_PLATFORM=xcb", "HOME=" + (folder / "home").string(),
                                                  "XDG_CONFIG_HOME=" + (folder / "home").string()});
    const Screen screen;
    table.compare(
        {"start to a painted window, 500 events", 1, Show::timePerUnit, 9, 1.0},
        {"ours",
         [&] { return timeToWindow(screen, {(folder / "QLNAdmin" / "QLNAdmin").string()}, ourEnvironment); }},
        {"sqlitebrowser on a copy of the database", [&] {
             return timeToWindow(screen, {"sqlitebrowser", "-t", "Events", copy.string()}, peerEnvironment);
         }});
}

}  // namespace bench
