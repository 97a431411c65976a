#include "platform/machine/windowStation.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <cerrno>
#include <charconv>
#include <chrono>
#include <filesystem>
#include <optional>
#include <thread>
#include <utility>

#include "platform/files/descriptor.h"
#include "platform/files/files.h"
#include "platform/machine/host.h"

namespace platform {

namespace {

using std::chrono::milliseconds;
using Moment = std::chrono::steady_clock::time_point;

constexpr WindowHandle ownerWindow = 1;
constexpr WindowHandle mainWindow = 2;
constexpr std::string_view ownerClass = "ThunderRT6Main";

constexpr milliseconds serveTime{1000};
constexpr milliseconds askTime{3000};
constexpr std::size_t longestLine = 512;

Moment after(milliseconds duration) {
    return std::chrono::steady_clock::now() + duration;
}

// False when the moment came first.
bool waitFor(int descriptor, short events, Moment deadline) {
    for (;;) {
        const auto left =
            std::chrono::ceil<milliseconds>(deadline - std::chrono::steady_clock::now()).count();
        if (left <= 0)
            return false;
        pollfd item{descriptor, events, 0};
        const int ready = ::poll(&item, 1, static_cast<int>(left));
        if (ready > 0)
            return true;
        if (ready == 0 || errno != EINTR)
            return false;
    }
}

// One line without its end; nothing when it does not come whole in time or is too long.
std::optional<std::string> readLine(int descriptor, Moment deadline) {
    std::string line;
    while (line.size() < longestLine && waitFor(descriptor, POLLIN, deadline)) {
        char part[longestLine];
        const ssize_t count = ::recv(descriptor, part, longestLine - line.size(), MSG_DONTWAIT);
        if (count < 0 && (errno == EINTR || errno == EAGAIN))
            continue;
        if (count <= 0)
            return std::nullopt;
        line.append(part, static_cast<std::size_t>(count));
        if (const std::size_t end = line.find('\n'); end != std::string::npos)
            return line.substr(0, end);
    }
    return std::nullopt;
}

bool writeLine(int descriptor, std::string_view text) {
    const std::string line = std::string(text) + '\n';
    return ::send(descriptor, line.data(), line.size(), MSG_NOSIGNAL | MSG_DONTWAIT) ==
           static_cast<ssize_t>(line.size());
}

Descriptor openFolder(const std::filesystem::path& folder) {
    return Descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

// The address of the socket `name` in an open folder. It goes through the folder's descriptor, because the
// path of a host may well be longer than an address.
sockaddr_un socketAddress(const Descriptor& folder, const std::string& name) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string path = "/proc/self/fd/" + std::to_string(folder.get()) + "/" + name;
    path.copy(address.sun_path, sizeof(address.sun_path) - 1);
    return address;
}

bool isServableName(std::string_view programName) {
    constexpr std::size_t longest = 64;
    return !programName.empty() && programName.size() <= longest &&
           programName.find('/') == std::string::npos;
}

Descriptor listenOn(const Descriptor& folder, const std::string& name) {
    Descriptor listener(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    const sockaddr_un address = socketAddress(folder, name);
    // What an instance that died has left; only the owner of the lock comes here.
    ::unlinkat(folder.get(), name.c_str(), 0);
    constexpr int backlog = 16;
    // The mode is set before the name exists, so that there is no moment when others may connect.
    if (!listener || ::fchmod(listener.get(), 0600) != 0 ||
        ::bind(listener.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0 ||
        ::listen(listener.get(), backlog) != 0)
        return Descriptor();
    return listener;
}

Descriptor connectTo(const std::filesystem::path& socketPath) {
    const Descriptor folder = openFolder(socketPath.parent_path());
    Descriptor connection(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    const sockaddr_un address = socketAddress(folder, socketPath.filename().string());
    if (!folder || !connection ||
        ::connect(connection.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0)
        return Descriptor();
    return connection;
}

WindowHandle toHandle(std::string_view text) {
    WindowHandle handle = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), handle);
    return error == std::errc{} && end == text.data() + text.size() ? handle : 0;
}

}  // namespace

WindowStation::WindowStation(std::string_view programName) {
    if (!isServableName(programName))
        return;
    const std::filesystem::path run = host::runFolder();
    // Makes the run folder of a host, never a host: that folder's parent must be there.
    ::mkdir(run.c_str(), 0700);
    const Descriptor folder = openFolder(run);
    if (!folder || !files::isOwnFolder(run))
        return;
    const std::string lockName = std::string(programName) + ".lock";
    Descriptor lock(
        ::openat(folder.get(), lockName.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!lock)
        return;
    const std::string socketName = std::string(programName) + ".sock";
    socketPath_ = (run / socketName).string();
    if (::flock(lock.get(), LOCK_EX | LOCK_NB) != 0) {
        earlier_ = errno == EWOULDBLOCK;
        return;
    }
    lock_ = lock.release();
    listener_ = listenOn(folder, socketName).release();
}

WindowStation::~WindowStation() {
    // The socket goes while the lock is still held, so that it cannot be a successor's. The lock's file
    // stays: without it two later instances could hold locks on two files of that name.
    if (listener_ >= 0) {
        ::unlink(socketPath_.c_str());
        ::close(listener_);
    }
    if (lock_ >= 0)
        ::close(lock_);
}

void WindowStation::serve() {
    while (listener_ >= 0) {
        const Descriptor connection(::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC));
        if (!connection && (errno == EINTR || errno == ECONNABORTED))
            continue;
        if (!connection)
            return;
        if (const auto request = readLine(connection.get(), after(serveTime)))
            writeLine(connection.get(), answer(*request));
    }
}

std::string WindowStation::answer(std::string_view request) {
    const std::size_t blank = request.find(' ');
    if (blank == std::string_view::npos)
        return "0";
    const std::string_view verb = request.substr(0, blank);
    const std::string_view rest = request.substr(blank + 1);
    if (verb == "FIND") {
        const std::size_t tab = rest.find('\t');
        const bool found = tab != std::string_view::npos && rest.substr(0, tab) == ownerClass &&
                           rest.substr(tab + 1) == program::title();
        return std::to_string(found ? ownerWindow : 0);
    }
    const WindowHandle window = toHandle(rest);
    if (verb == "BEFORE" && window == ownerWindow)
        return std::to_string(mainWindow);
    if (verb != "ICON" && verb != "FRONT")
        return "0";
    const std::function<void()>& action = verb == "ICON" ? actions_.openIcon : actions_.setForeground;
    if (window != mainWindow || !action)
        return "0";
    action();
    return "1";
}

std::string WindowStation::ask(std::string_view request) const {
    std::string none = "0";
    // Whoever is the first instance has nobody to ask, and would wait for itself.
    if (!earlier_ || unanswered_ || request.find('\n') != std::string_view::npos ||
        request.size() >= longestLine)
        return none;
    const Moment deadline = after(askTime);
    Descriptor connection;
    // The first instance may hold its lock already and listen only a moment later.
    while (!(connection = connectTo(socketPath_))) {
        if (std::chrono::steady_clock::now() >= deadline) {
            unanswered_ = true;
            return none;
        }
        std::this_thread::sleep_for(milliseconds(20));
    }
    if (!writeLine(connection.get(), request))
        return none;
    std::optional<std::string> answer = readLine(connection.get(), deadline);
    unanswered_ = !answer;
    return std::move(answer).value_or(std::move(none));
}

WindowHandle findWindow(const WindowStation& station, std::string_view className, std::string_view title) {
    return toHandle(station.ask("FIND " + std::string(className) + '\t' + std::string(title)));
}

WindowHandle windowBefore(const WindowStation& station, WindowHandle window) {
    return toHandle(station.ask("BEFORE " + std::to_string(window)));
}

void openIcon(const WindowStation& station, WindowHandle window) {
    station.ask("ICON " + std::to_string(window));
}

void setForegroundWindow(const WindowStation& station, WindowHandle window) {
    station.ask("FRONT " + std::to_string(window));
}

}  // namespace platform
