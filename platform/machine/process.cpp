#include "platform/machine/process.h"

#include <fcntl.h>
#include <strings.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <vector>

#include "platform/failure.h"
#include "platform/files/descriptor.h"
#include "platform/machine/host.h"

namespace platform {

namespace {

namespace fs = std::filesystem;

constexpr char windowVariable[] = "QLN_WINDOW=";

std::vector<std::string> splitWords(const std::string& commandLine) {
    std::vector<std::string> words;
    bool inWord = false;
    bool inQuotes = false;
    for (const char c : commandLine) {
        if (c == '"') {
            inQuotes = !inQuotes;
            if (!inWord)
                words.emplace_back();
            inWord = true;
        } else if (c == ' ' && !inQuotes) {
            inWord = false;
        } else {
            if (!inWord)
                words.emplace_back();
            inWord = true;
            words.back() += c;
        }
    }
    return words;
}

bool isProgram(const fs::path& file) {
    std::error_code error;
    return fs::is_regular_file(file, error) && ::access(file.c_str(), X_OK) == 0;
}

// A bare name is looked for beside the running program, exactly and then without regard to case, and in PATH.
fs::path findProgram(const std::string& name) {
    if (name.find('/') != std::string::npos)
        return name;
    if (fs::path beside = program::folder() / name; isProgram(beside))
        return beside;
    std::error_code error;
    for (fs::directory_iterator entry(program::folder(), error), end; !error && entry != end;
         entry.increment(error))
        if (strcasecmp(entry->path().filename().c_str(), name.c_str()) == 0 && isProgram(entry->path()))
            return entry->path();
    const char* variable = std::getenv("PATH");
    std::string_view folders = variable ? variable : "";
    while (!folders.empty()) {
        const std::size_t end = folders.find(':');
        if (fs::path candidate = fs::path(folders.substr(0, end)) / name; isProgram(candidate))
            return candidate;
        folders.remove_prefix(end == std::string_view::npos ? folders.size() : end + 1);
    }
    return {};
}

// The words of a call of the system, ended by a null pointer. They refer to the texts.
std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> list;
    list.reserve(texts.size() + 1);
    for (std::string& text : texts)
        list.push_back(text.data());
    list.push_back(nullptr);
    return list;
}

// This program's environment with the additions in place of its own values.
std::vector<std::string> environmentWith(std::vector<std::string> additions) {
    additions.push_back("QLN_HOST=" + fs::absolute(host::folder()).string());
    std::vector<std::string> all = additions;
    for (char** own = environ; *own; ++own) {
        const std::string_view text = *own;
        const std::string_view name = text.substr(0, text.find('=') + 1);
        if (std::none_of(additions.begin(), additions.end(),
                         [&](const std::string& addition) { return addition.starts_with(name); }))
            all.emplace_back(text);
    }
    return all;
}

// What the process that becomes the program needs, all made before it is there: between its birth and the
// program's start it may call only what is safe there.
struct Launch {
    const char* file;
    char* const* arguments;
    char* const* environment;
    int output;
    int link;  // to the starter: says the process id, waits for leave to run, says why it cannot
};

[[noreturn]] void becomeProgram(const Launch& launch) {
    ::setsid();
    const int nothing = ::open("/dev/null", O_RDWR);
    ::dup2(nothing, STDIN_FILENO);
    for (const int descriptor : {STDOUT_FILENO, STDERR_FILENO})
        ::dup2(launch.output >= 0 ? launch.output : nothing, descriptor);
    // The link may not lie where it would be closed, and everything else shall be.
    const int link = ::fcntl(launch.link, F_DUPFD_CLOEXEC, 3);
    ::close_range(3, static_cast<unsigned>(link) - 1, 0);
    ::close_range(static_cast<unsigned>(link) + 1, ~0U, 0);
    const pid_t self = ::getpid();
    char leave = 0;
    if (::send(link, &self, sizeof self, MSG_NOSIGNAL) != sizeof self || ::read(link, &leave, 1) != 1)
        _exit(126);
    ::execve(launch.file, launch.arguments, launch.environment);
    const int error = errno;
    ::send(link, &error, sizeof error, MSG_NOSIGNAL);
    _exit(127);
}

// Reads a number that the other end says; false when it says none.
template <class Number>
bool hear(int link, Number& number) {
    for (;;) {
        const ssize_t count = ::read(link, &number, sizeof number);
        if (count >= 0 || errno != EINTR)
            return count == sizeof number;
    }
}

}  // namespace

void startProcess(const std::string& commandLine, const StartOptions& options) {
    std::vector<std::string> words = splitWords(commandLine);
    if (words.empty())
        throw makeFailure(invalidProcedureCall);
    const std::string program = words.front();
    words.erase(words.begin());
    startProcess(program, std::move(words), options);
}

void startProcess(const std::string& program, std::vector<std::string> words, const StartOptions& options) {
    words.insert(words.begin(), program);
    const fs::path file = findProgram(words.front());
    std::error_code error;
    if (file.empty() || !fs::exists(file, error))
        throw makeFailure(fileNotFound, words.front());
    if (!isProgram(file))
        throw makeFailure(permissionDenied, words.front());
    std::vector<std::string> environment = environmentWith(options.environment);
    const std::vector<char*> arguments = pointers(words);
    const std::vector<char*> variables = pointers(environment);

    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
        throw failureFromErrno(errno, file.string());
    const Descriptor link(ends[0]);
    Descriptor other(ends[1]);
    // The child leaves at once, so the program belongs to nobody here and no ended process waits for us.
    const pid_t child = ::fork();
    if (child == 0) {
        const pid_t grandchild = ::fork();
        if (grandchild != 0)
            _exit(grandchild < 0 ? 1 : 0);
        becomeProgram({file.c_str(), arguments.data(), variables.data(), options.output, other.get()});
    }
    const int forkError = errno;
    other = Descriptor();
    if (child < 0)
        throw failureFromErrno(forkError, file.string());
    while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
    pid_t process = 0;
    if (!hear(link.get(), process))
        throw failureFromErrno(EAGAIN, file.string());
    if (options.before)
        options.before(process);
    const char leave = 1;
    int problem = 0;
    // Nothing to hear means that the program runs: its start closed the other end.
    if (::send(link.get(), &leave, 1, MSG_NOSIGNAL) != 1 || hear(link.get(), problem))
        throw failureFromErrno(problem != 0 ? problem : EAGAIN, file.string());
}

void startDetached(const std::string& commandLine, ProgramWindow window) {
    const bool maximized = window == ProgramWindow::maximized;
    StartOptions options;
    options.environment.push_back(windowVariable + std::string(maximized ? "maximized" : ""));
    startProcess(commandLine, options);
}

void startDetached(const std::string& program, std::vector<std::string> arguments) {
    StartOptions options;
    options.environment.push_back(windowVariable);
    startProcess(program, std::move(arguments), options);
}

std::string programOf(const std::string& commandLine) {
    const std::vector<std::string> words = splitWords(commandLine);
    return words.empty() ? std::string() : findProgram(words.front()).string();
}

bool startedMaximized() {
    const char* const wish = std::getenv("QLN_WINDOW");
    return wish && std::string_view(wish) == "maximized";
}

}  // namespace platform
