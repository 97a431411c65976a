#include "support/childProcess.h"

#include <grp.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sched.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <exception>
#include <fstream>
#include <string>

#include "core/classLog.h"
#include "core/state.h"

namespace support {

namespace {

constexpr int impossibleCode = 77;
constexpr uid_t ordinaryUser = 65534;

[[noreturn]] void runAndExit(const ChildProcess::Work& work, const ChildProcess::Ready& ready) {
    core::resetState();
    core::resetLog();
    int code = 0;
    try {
        work(ready);
        core::resetState();  // what is still open is no leak
        code = ::testing::Test::HasFailure() ? 1 : 0;
    } catch (const std::exception& error) {
        std::printf("in the child: %s\n", error.what());
        code = 1;
    }
    std::fflush(nullptr);
    _exit(code);
}

Ran ranWith(const std::function<bool()>& change, const std::function<void()>& work) {
    ChildProcess child([&](const ChildProcess::Ready&) {
        if (!change())
            _exit(impossibleCode);
        work();
    });
    const int code = child.wait();
    return code == impossibleCode ? Ran::impossible : code == 0 ? Ran::passed : Ran::failed;
}

bool writeLine(const char* file, const std::string& line) {
    std::ofstream stream(file);
    return static_cast<bool>(stream << line << std::flush);
}

// A mount table of the child's own; an ordinary user gets one as the superuser of a user table of its own.
bool separateMounts() {
    const uid_t user = ::geteuid();
    const gid_t group = ::getegid();
    if (user == 0)
        return ::unshare(CLONE_NEWNS) == 0;
    return ::unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0 && writeLine("/proc/self/setgroups", "deny") &&
           writeLine("/proc/self/uid_map", "0 " + std::to_string(user) + " 1") &&
           writeLine("/proc/self/gid_map", "0 " + std::to_string(group) + " 1");
}

}  // namespace

ChildProcess::ChildProcess(const Work& work) {
    int ends[2] = {-1, -1};
    if (::pipe(ends) != 0)
        throw std::runtime_error("no pipe");
    std::fflush(nullptr);
    pid_ = ::fork();
    if (pid_ < 0)
        throw std::runtime_error("no process");
    if (pid_ == 0) {
        ::close(ends[0]);
        runAndExit(work, [&] { EXPECT_EQ(::write(ends[1], "r", 1), 1); });
    }
    ::close(ends[1]);
    readyPipe_ = ends[0];
}

ChildProcess::~ChildProcess() {
    if (pid_ > 0) {
        kill();
        wait();
    }
    ::close(readyPipe_);
}

void ChildProcess::awaitReady() const {
    char byte = 0;
    // An end of the pipe says the same as a byte: there is nothing more to wait for.
    EXPECT_GE(::read(readyPipe_, &byte, 1), 0);
}

bool ChildProcess::endsWithin(std::chrono::microseconds time) const {
    constexpr long perSecond = 1'000'000;
    const timespec left{time.count() / perSecond, time.count() % perSecond * 1000};
    pollfd end{readyPipe_, POLLIN, 0};  // the pipe closes with the child
    return ::ppoll(&end, 1, &left, nullptr) == 1;
}

void ChildProcess::kill() const {
    ::kill(pid_, SIGKILL);
}

int ChildProcess::wait() {
    int status = 0;
    if (::waitpid(std::exchange(pid_, -1), &status, 0) < 0)
        return 1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

bool succeedsInChild(const std::function<void()>& work) {
    return ChildProcess([&](const ChildProcess::Ready&) { work(); }).wait() == 0;
}

Ran runAsOrdinaryUser(const std::filesystem::path& folder, const std::function<void()>& work) {
    const auto change = [] {
        return ::geteuid() != 0 ||
               (::setgroups(0, nullptr) == 0 && ::setgid(ordinaryUser) == 0 && ::setuid(ordinaryUser) == 0);
    };
    if (::geteuid() == 0) {
        EXPECT_EQ(::chown(folder.c_str(), ordinaryUser, ordinaryUser), 0);
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
            EXPECT_EQ(::lchown(entry.path().c_str(), ordinaryUser, ordinaryUser), 0);
    }
    return ranWith(change, work);
}

Ran runOnSmallDisk(const std::filesystem::path& folder, long kilobytes, const std::function<void()>& work) {
    const auto change = [&] {
        const std::string size = "mode=700,size=" + std::to_string(kilobytes) + "k";
        return separateMounts() && ::mount("none", "/", "none", MS_REC | MS_PRIVATE, nullptr) == 0 &&
               ::mount("tmpfs", folder.c_str(), "tmpfs", 0, size.c_str()) == 0;
    };
    return ranWith(change, work);
}

}  // namespace support
