#include "platform/machine/windowStation.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <optional>

#include "platform/machine/host.h"
#include "support/temporaryHost.h"

namespace {

namespace fs = std::filesystem;
using platform::WindowStation;

mode_t modeOf(const fs::path& path) {
    struct stat status {};
    EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777;
}

// Another process that runs the program and answers until it is killed. It writes a letter for each thing
// that is done to it.
class OtherProcess {
  public:
    OtherProcess() {
        int ends[2];
        EXPECT_EQ(::pipe2(ends, O_CLOEXEC), 0);
        process_ = ::fork();
        if (process_ == 0)
            run(ends[1]);
        ::close(ends[1]);
        letters_ = ends[0];
        EXPECT_EQ(next(), 'R');
    }
    ~OtherProcess() {
        kill();
        ::close(letters_);
    }
    OtherProcess(const OtherProcess&) = delete;
    OtherProcess& operator=(const OtherProcess&) = delete;

    // '-' when nothing comes within a few seconds.
    char next() const {
        pollfd item{letters_, POLLIN, 0};
        char letter = '-';
        return ::poll(&item, 1, 5000) == 1 && ::read(letters_, &letter, 1) == 1 ? letter : '-';
    }
    void kill() {
        if (process_ <= 0)
            return;
        ::kill(process_, SIGKILL);
        ::waitpid(process_, nullptr, 0);
        process_ = -1;
    }

  private:
    [[noreturn]] static void run(int letters) {
        const auto tell = [letters](const char* letter) {
            if (::write(letters, letter, 1) != 1)
                ::_exit(1);
        };
        platform::program::setTitle("The Console");
        WindowStation station("Program");
        station.setActions({[&] { tell("I"); }, [&] { tell("F"); }});
        tell(station.earlierInstance() || station.descriptor() < 0 ? "E" : "R");
        for (;;) {
            pollfd item{station.descriptor(), POLLIN, 0};
            if (::poll(&item, 1, -1) == 1)
                station.serve();
        }
    }

    pid_t process_ = -1;
    int letters_ = -1;
};

TEST(WindowStation, FindsAndRaisesTheFirstInstance) {
    const support::TemporaryHost host;
    const OtherProcess first;
    platform::program::setTitle("unwanted instance");
    const WindowStation second("Program");
    ASSERT_TRUE(second.earlierInstance());
    EXPECT_EQ(second.descriptor(), -1);

    EXPECT_EQ(platform::findWindow(second, "ThunderRTMain", "The Console"), 0);
    EXPECT_EQ(platform::findWindow(second, "ThunderRT6Main", "unwanted instance"), 0);
    const platform::WindowHandle owner = platform::findWindow(second, "ThunderRT6Main", "The Console");
    EXPECT_EQ(owner, 1);
    const platform::WindowHandle main = platform::windowBefore(second, owner);
    EXPECT_EQ(main, 2);
    EXPECT_EQ(platform::windowBefore(second, main), 0);
    platform::openIcon(second, owner);
    platform::openIcon(second, main);
    EXPECT_EQ(first.next(), 'I');
    platform::setForegroundWindow(second, main);
    EXPECT_EQ(first.next(), 'F');
    for (const char* request : {"", "FIND", "FIND ThunderRT6Main The Console", "ICON 2x", "CLOSE 2"})
        EXPECT_EQ(second.ask(request), "0") << request;
    EXPECT_EQ(second.ask(std::string(600, 'F')), "0");
    EXPECT_FALSE(WindowStation("OtherProgram").earlierInstance());
}

TEST(WindowStation, AKilledInstanceLeavesTheWayFree) {
    const support::TemporaryHost host;
    OtherProcess first;
    first.kill();
    ASSERT_TRUE(fs::is_socket(platform::host::runFolder() / "Program.sock"));
    std::optional<WindowStation> station(std::in_place, "Program");
    EXPECT_FALSE(station->earlierInstance());
    EXPECT_GE(station->descriptor(), 0);
    EXPECT_EQ(modeOf(platform::host::runFolder()), 0700u);
    EXPECT_EQ(modeOf(platform::host::runFolder() / "Program.sock"), 0600u);
    EXPECT_TRUE(WindowStation("Program").earlierInstance());

    // A program that this one has started does not keep the lock.
    const pid_t child = ::fork();
    if (child == 0) {
        ::execlp("sleep", "sleep", "60", nullptr);
        ::_exit(1);
    }
    // Its name changes only after the files that it may not inherit were closed.
    std::string name;
    while (name != "sleep") {
        ::usleep(1000);
        std::getline(std::ifstream("/proc/" + std::to_string(child) + "/comm"), name);
    }
    station.reset();
    EXPECT_FALSE(fs::exists(platform::host::runFolder() / "Program.sock"));
    EXPECT_FALSE(WindowStation("Program").earlierInstance());
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
}

TEST(WindowStation, ASilentClientDelaysOthersByASecondOnly) {
    const support::TemporaryHost host;
    WindowStation station("Program");
    const std::string name = (platform::host::runFolder() / "Program.sock").string();
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    ASSERT_LT(name.size(), sizeof(address.sun_path));
    name.copy(address.sun_path, name.size());
    int clients[2];
    for (int& client : clients) {
        client = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        ASSERT_EQ(::connect(client, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
    }
    const std::string request = "BEFORE 1\n";
    ASSERT_EQ(::write(clients[1], request.data(), request.size()), static_cast<ssize_t>(request.size()));
    const auto start = std::chrono::steady_clock::now();
    station.serve();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(1500));
    char answer[8];
    EXPECT_EQ(::read(clients[0], answer, sizeof(answer)), 0);
    EXPECT_EQ(::read(clients[1], answer, sizeof(answer)), 2);
    EXPECT_EQ(answer[0], '2');
    for (const int client : clients)
        ::close(client);
}

TEST(WindowStation, WorksInADeepHostAndMakesNone) {
    const support::TemporaryHost host;
    const fs::path deep = host.root() / std::string(150, 'd');
    platform::host::setFolder(deep);
    EXPECT_FALSE(WindowStation("Program").earlierInstance());
    EXPECT_FALSE(fs::exists(deep));

    fs::create_directory(deep);
    const OtherProcess first;
    const WindowStation second("Program");
    ASSERT_TRUE(second.earlierInstance());
    EXPECT_EQ(second.ask("BEFORE 1"), "2");
}

}  // namespace
