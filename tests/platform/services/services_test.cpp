// The host's service states, accounts and event logs.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>

#include "platform/failure.h"
#include "platform/files/files.h"
#include "platform/machine/clock.h"
#include "platform/machine/eventLog.h"
#include "platform/machine/host.h"
#include "platform/services/accounts.h"
#include "platform/services/serviceManager.h"
#include "support/adoFixture.h"
#include "support/temporaryHost.h"

namespace {

namespace fs = std::filesystem;
using adoTest::failureOf;
using platform::EventRecord;
using platform::ServiceState;
using Names = std::vector<std::string>;

mode_t modeOf(const fs::path& path) {
    struct stat status {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777;
}

constexpr const char* servicesKey = "SYSTEM\\CurrentControlSet\\Services\\";

TEST(ServiceManager, KnowsServicesByTheirImagePath) {
    support::TemporaryHost host;
    host.setRegistry(servicesKey + std::string("HbQlnSvc"), "ImagePath", "/x/service");
    host.setRegistry(servicesKey + std::string("Broken"), "Start", 2u);
    EXPECT_EQ(platform::serviceNames(), Names{"HbQlnSvc"});
    EXPECT_EQ(platform::queryServiceStatus("hbqlnsvc").error, 0u);
    EXPECT_EQ(platform::queryServiceStatus("hbqlnsvc").state, ServiceState::stopped);
    for (const char* name : {"Broken", "None", "", "..\\Services\\HbQlnSvc", "../HbQlnSvc"})
        EXPECT_EQ(platform::queryServiceStatus(name).error, 1060u) << name;
    EXPECT_EQ(failureOf([] { platform::writeServiceState("../x", ServiceState::running, 1); }), 5);
}

TEST(ServiceManager, BelievesAStateOnlyWithItsProcess) {
    support::TemporaryHost host;
    host.setRegistry(servicesKey + std::string("HbQlnSvc"), "ImagePath", "/x/service");
    const auto state = [] { return platform::queryServiceStatus("HBQLNSVC").state; };
    for (const ServiceState each : {ServiceState::startPending, ServiceState::running,
                                    ServiceState::stopPending, ServiceState::stopped}) {
        platform::writeServiceState("HbQlnSvc", each, ::getpid());
        EXPECT_EQ(state(), each);
    }

    // A process that has ended counts as gone, reaped or not.
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        char none = 0;
        ::close(ends[1]);
        ::_exit(static_cast<int>(::read(ends[0], &none, 1)));
    }
    platform::writeServiceState("HbQlnSvc", ServiceState::running, child);
    EXPECT_EQ(state(), ServiceState::running);
    ::close(ends[1]);
    ::close(ends[0]);
    siginfo_t info{};
    ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOWAIT), 0);
    EXPECT_EQ(state(), ServiceState::stopped);
    ::waitpid(child, nullptr, 0);
    EXPECT_EQ(state(), ServiceState::stopped);

    const fs::path file = platform::host::servicesFolder() / "hbqlnsvc.state";
    const std::string self = "pid=" + std::to_string(::getpid()) + "\n";
    for (const std::string& text :
         {std::string(), "state=4\n" + self + "start=1\n", "state=4\n" + self,
          "state=9\n" + self + "start=1\n", std::string("state=running\n"), std::string(100000, 'x')}) {
        std::ofstream(file) << text;
        EXPECT_EQ(state(), ServiceState::stopped) << text.substr(0, 50);
    }
}

TEST(Accounts, KeepHashesThatOnlyTheRightPasswordMatches) {
    const support::TemporaryHost host;
    EXPECT_TRUE(platform::accountNames().empty());
    EXPECT_FALSE(platform::verifyAccount("HOST\\service", "secret"));
    platform::setAccountPassword("HOST\\service", "secret");
    platform::setAccountPassword("second", "");
    EXPECT_TRUE(platform::accountExists("host\\SERVICE"));
    EXPECT_TRUE(platform::verifyAccount("host\\Service", "secret"));
    EXPECT_FALSE(platform::verifyAccount("HOST\\service", "Secret"));
    EXPECT_TRUE(platform::verifyAccount("second", ""));
    EXPECT_FALSE(platform::verifyAccount("second", std::string("\0x", 2)));

    platform::setAccountPassword("host\\SERVICE", "changed");
    EXPECT_EQ(platform::accountNames(), (Names{"HOST\\service", "second"}));
    EXPECT_FALSE(platform::verifyAccount("HOST\\service", "secret"));
    EXPECT_TRUE(platform::verifyAccount("HOST\\service", "changed"));
    EXPECT_EQ(modeOf(platform::host::accountsFile()), 0600u);
    const std::string text = platform::files::readFile(platform::host::accountsFile());
    EXPECT_TRUE(text.starts_with("HOST\\service:$y$")) << text;
    EXPECT_EQ(text.find("changed"), std::string::npos);

    EXPECT_TRUE(platform::deleteAccount("SECOND"));
    EXPECT_FALSE(platform::deleteAccount("second"));
    EXPECT_FALSE(platform::verifyAccount("second", ""));
}

TEST(Accounts, RefuseBadNamesAndNeverReplaceABrokenFile) {
    const support::TemporaryHost host;
    for (const char* name : {"", "a:b", "a\nb", "a\rb"})
        EXPECT_EQ(failureOf([&] { platform::setAccountPassword(name, "x"); }), 5) << name;
    EXPECT_EQ(failureOf([] { platform::setAccountPassword("a", std::string(5000, 'x')); }), 5);
    std::ofstream(platform::host::accountsFile()) << "good:*\n\nwithout a colon\n";
    EXPECT_EQ(failureOf([] { platform::setAccountPassword("a", "x"); }), 75);
    EXPECT_EQ(failureOf([] { platform::deleteAccount("good"); }), 75);
    EXPECT_EQ(platform::files::readFile(platform::host::accountsFile()), "good:*\n\nwithout a colon\n");
    std::ofstream(platform::host::accountsFile()) << "locked:*\nempty:\n";
    EXPECT_FALSE(platform::verifyAccount("locked", "*"));
    EXPECT_FALSE(platform::verifyAccount("empty", ""));
}

TEST(EventLog, KeepsRecordsWhole) {
    const support::TemporaryHost host;
    support::ManualClock clock;
    EXPECT_TRUE(platform::readEvents("System").empty());
    const EventRecord full{"Application", "2026-11-24 14:05:09", "Quillon Service", 4711, 2, 7, "HOST\\user",
                           "HOST",        "a\tb\nc\\n\r"};
    EventRecord sparse;
    sparse.log = "Application";
    platform::appendEvent(full);
    platform::appendEvent(sparse);
    const auto records = platform::readEvents("Application");
    ASSERT_EQ(records.size(), 2u);
    EXPECT_TRUE(records[0] == full) << records[0].description;
    EXPECT_EQ(records[1].time, platform::storedForm(platform::localTime(clock.now())));
    EXPECT_EQ(records[1].description, "");

    EXPECT_TRUE(platform::readEvents("System").empty());
    EXPECT_EQ(modeOf(platform::host::eventLogsFolder() / "Application.log"), 0600u);
    EXPECT_EQ(failureOf([&] { platform::readEvents("../Application"); }), 5);
    sparse.log = "Security";
    EXPECT_EQ(failureOf([&] { platform::appendEvent(sparse); }), 5);
}

TEST(EventLog, LeavesOutTornLinesAndKeepsWritersApart) {
    const support::TemporaryHost host;
    EventRecord record;
    record.log = "System";
    record.source = "first";
    platform::appendEvent(record);
    const fs::path file = platform::host::eventLogsFolder() / "System.log";
    // Cut in the description, and in the middle of an escape.
    for (const char* torn :
         {"2026-11-24 14:05:09\ts\t1\t4\t0\tu\tc\tcut descr", "2026-11-24 14:05:09\ts\\"}) {
        std::ofstream(file, std::ios::app) << torn;
        const std::size_t before = platform::readEvents("System").size();
        platform::appendEvent(record);
        EXPECT_EQ(platform::readEvents("System").size(), before + 1);
    }
    std::ofstream(file, std::ios::app) << "2026\ts\tx\t4\t0\tu\tc\td\n2026\ts\t1\t99999\t0\tu\tc\td\n\n";
    EXPECT_EQ(platform::readEvents("System").size(), 3u);

    constexpr int writers = 4;
    constexpr int each = 100;
    for (int i = 0; i < writers; ++i) {
        if (::fork() != 0)
            continue;
        record.description = std::string(300, static_cast<char>('a' + i));
        for (int k = 0; k < each; ++k)
            platform::appendEvent(record);
        ::_exit(0);
    }
    while (::wait(nullptr) > 0) {
    }
    const auto records = platform::readEvents("System");
    EXPECT_EQ(records.size(), 3u + writers * each);
    for (std::size_t i = 3; i < records.size(); ++i)
        EXPECT_EQ(records[i].description, std::string(300, records[i].description.front()));
}

}  // namespace
