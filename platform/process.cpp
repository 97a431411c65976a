#include "platform/process.h"

#include <fcntl.h>
#include <strings.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <vector>

#include "platform/failure.h"
#include "platform/host.h"

namespace platform {

namespace {

namespace fs = std::filesystem;

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
        return isProgram(name) ? fs::path(name) : fs::path();
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

constexpr char windowVariable[] = "QLN_WINDOW=";
char maximizedWish[] = "QLN_WINDOW=maximized";

// This process's environment with the wish for the program's window in place of any that came from above.
std::vector<char*> environmentFor(ProgramWindow window) {
    std::vector<char*> result;
    for (char** variable = environ; *variable; ++variable)
        if (!std::string_view(*variable).starts_with(windowVariable))
            result.push_back(*variable);
    if (window == ProgramWindow::maximized)
        result.push_back(maximizedWish);
    result.push_back(nullptr);
    return result;
}

// Runs in the grandchild: becomes the program, or tells the waiting parent why not.
[[noreturn]] void becomeProgram(const fs::path& file, std::vector<char*>& arguments,
                                std::vector<char*>& environment, int report) {
    ::setsid();
    const int nothing = ::open("/dev/null", O_RDWR);
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        ::dup2(nothing, descriptor);
    ::close_range(3, static_cast<unsigned>(report) - 1, 0);
    ::close_range(static_cast<unsigned>(report) + 1, ~0U, 0);
    ::execve(file.c_str(), arguments.data(), environment.data());
    const int error = errno;
    const ssize_t ignored = ::write(report, &error, sizeof error);
    _exit(ignored < 0 ? 126 : 127);
}

}  // namespace

void startDetached(const std::string& commandLine, ProgramWindow window) {
    std::vector<std::string> words = splitWords(commandLine);
    if (words.empty())
        throw makeFailure(invalidProcedureCall);
    const fs::path file = findProgram(words.front());
    if (file.empty())
        throw makeFailure(fileNotFound, words.front());
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);

    std::vector<char*> environment = environmentFor(window);

    int report[2];
    if (::pipe2(report, O_CLOEXEC) != 0)
        throw failureFromErrno(errno, file.string());
    // The child leaves at once, so the program belongs to nobody here and no ended process waits for us.
    const pid_t child = ::fork();
    if (child == 0) {
        const pid_t grandchild = ::fork();
        if (grandchild != 0)
            _exit(grandchild < 0 ? 1 : 0);
        becomeProgram(file, arguments, environment, report[1]);
    }
    const int forkError = errno;
    ::close(report[1]);
    int error = child < 0 ? forkError : 0;
    if (child > 0) {
        int status = 0;
        while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
        }
        // Nothing to read means that the program runs: its start closed the other end.
        if (::read(report[0], &error, sizeof error) <= 0)
            error = WIFEXITED(status) && WEXITSTATUS(status) == 0 ? 0 : EAGAIN;
    }
    ::close(report[0]);
    if (error != 0)
        throw failureFromErrno(error, file.string());
}

bool startedMaximized() {
    const char* wish = std::getenv("QLN_WINDOW");
    return wish && std::string_view(wish) == "maximized";
}

}  // namespace platform
