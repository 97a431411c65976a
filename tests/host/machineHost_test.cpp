// The host that stands for this machine, made and run by the tool: what its journal logs, somebody is told
// of, also after a crash.
#include "host/machineHost.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <fstream>
#include <functional>
#include <thread>

#include "host/machinePeople.h"
#include "platform/files/descriptor.h"
#include "platform/files/files.h"
#include "platform/machine/host.h"
#include "platform/registry/registry.h"
#include "platform/services/serviceManager.h"
#include "support/journalFolder.h"
#include "support/receiver.h"
#include "support/serviceHost.h"

namespace {

namespace fs = std::filesystem;
using platform::ServiceState;
using std::chrono::steady_clock;
using support::JournalFolder;

class MachineHost : public ::testing::Test {
  protected:
    void SetUp() override {
        if (!JournalFolder::isPossible())
            GTEST_SKIP() << "systemd-journal-remote is not installed";
        write({"sshd", "postfix/smtpd", "kernel", "SSHD", "with\\backslash"});
    }
    ~MachineHost() override {
        stopSupervisor();
        if (fs::exists(platform::host::registryFile()))
            for (const std::string& name : platform::serviceNames())
                platform::Service(platform::ServiceManager(platform::managerExecute), name,
                                  platform::serviceStop)
                    .control(platform::ServiceControl::stop);
    }

    void write(const std::vector<std::string>& identifiers) {
        std::vector<support::JournalEntry> entries;
        for (const std::string& each : identifiers)
            entries.push_back(JournalFolder::message(second++, each, "Failed password for zoe"));
        journal.append("system", entries);
    }
    std::string qlnhost(const std::string& arguments) {
        const fs::path output = scratch.root() / "output";
        const std::string command =
            std::string(QLNHOST_PROGRAM) + " " + arguments + " >" + output.string() + " 2>&1";
        code = WEXITSTATUS(std::system(command.c_str()));
        return platform::files::readFile(output);
    }
    std::string create(const std::string& options = {}) {
        const std::string text = qlnhost("create " + root.string() + " --this-machine --journal-folder " +
                                         journal.path().string() + options);
        platform::host::setFolder(root / "Host");
        return text;
    }
    std::string onHost(const std::string& arguments) {
        return qlnhost("--host " + root.string() + " " + arguments);
    }
    // With the socket on which the system's service manager would listen.
    void supervise() {
        const std::string address = (scratch.root() / "notify").string();
        fs::remove(address);
        manager = platform::Descriptor(::socket(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
        sockaddr_un place{};
        place.sun_family = AF_UNIX;
        address.copy(place.sun_path, sizeof place.sun_path - 1);
        ASSERT_EQ(::bind(manager.get(), reinterpret_cast<sockaddr*>(&place), sizeof place), 0);
        supervisor = ::fork();
        if (supervisor == 0) {
            ::setenv("NOTIFY_SOCKET", address.c_str(), 1);
            ::setenv("WATCHDOG_USEC", "60000000", 1);
            const int output =
                ::open((scratch.root() / "supervisor").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
            ::dup2(output, 1);
            ::dup2(output, 2);
            ::execl(QLNHOST_PROGRAM, "qlnhost", "--host", root.c_str(), "services", "run", nullptr);
            ::_exit(127);
        }
    }
    int stopSupervisor() {
        if (supervisor <= 0)
            return -1;
        ::kill(supervisor, SIGTERM);
        int status = 0;
        ::waitpid(std::exchange(supervisor, -1), &status, 0);
        return WEXITSTATUS(status);
    }
    // Whether the manager has been told so by now.
    bool isNotified(const std::string& text) {
        std::array<char, 4096> piece{};
        for (ssize_t size; (size = ::recv(manager.get(), piece.data(), piece.size(), 0)) > 0;)
            notified.append(piece.data(), static_cast<std::size_t>(size)).append("\n");
        return notified.find(text) != std::string::npos;
    }
    static bool comes(const std::function<bool()>& condition) {
        for (const auto end = steady_clock::now() + std::chrono::seconds(10); steady_clock::now() < end;
             std::this_thread::sleep_for(std::chrono::milliseconds(20)))
            if (condition())
                return true;
        return false;
    }
    static bool runs() { return platform::queryServiceStatus("HbQlnSvc").state == ServiceState::running; }
    std::string said() const { return platform::files::readFile(scratch.root() / "supervisor"); }

    support::TemporaryHost scratch;
    fs::path root = scratch.root() / "machine";
    JournalFolder journal{scratch.root() / "journal"};
    std::uint64_t second = static_cast<std::uint64_t>(::time(nullptr)) - 100;
    int code = 0;
    pid_t supervisor = -1;
    platform::Descriptor manager;
    std::string notified;
};

TEST_F(MachineHost, KnowsWhatTheJournalLogsAndWhoIsHere) {
    std::ofstream(scratch.root() / "people.csv")
        << "Alias,FirstName,LastName,Extension,Type\nzoe,Zo\xC3\xAB,Abbott,1000,1\n";
    const std::string told = create(" --directory " + (scratch.root() / "people.csv").string());
    ASSERT_EQ(code, 0) << told;
    for (const char* part :
         {"the journal knows 3.", "People: 1 ", "with\\backslash", "services run", "Mail: "})
        EXPECT_NE(told.find(part), std::string::npos) << part << "\n" << told;
    const std::string logs = "HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Services\\EventLog\\";
    EXPECT_TRUE(platform::registry().keyExists(logs + "Application\\postfix/smtpd"));
    EXPECT_TRUE(platform::registry().keyExists(logs + "System\\kernel"));
    EXPECT_FALSE(platform::registry().keyExists("HKEY_LOCAL_MACHINE\\SOFTWARE\\Tessaly\\Kesn"));
    write({"cron", "sshd"});
    EXPECT_EQ(onHost("sources refresh"),
              "1 new sources\nLeft out, because no key of a registry can have this "
              "name: with\\backslash\n");
    EXPECT_NE(create(), "");
    EXPECT_EQ(code, 1) << "a host is never made over";
    support::run(root / "Database" / "QLNDB.MDB", "INSERT INTO Recipients VALUES (7, 'Night desk', -1)");
    fs::rename(platform::host::registryFile(), root / "gone");
    EXPECT_NE(create().find("QLNDB.MDB"), std::string::npos) << "nor is what an administrator has entered";
    EXPECT_EQ(code, 1);
    EXPECT_EQ(support::query(root / "Database" / "QLNDB.MDB", "SELECT RecipientName FROM Recipients"),
              std::vector<std::string>{"Night desk"});
    // One that was cut short is made anew.
    std::ofstream(root / "Host" / "unfinished").flush();
    std::ofstream(platform::host::registryFile()) << "half";
    create();
    EXPECT_EQ(code, 0);
    EXPECT_FALSE(fs::exists(root / "Host" / "unfinished"));
    EXPECT_TRUE(platform::registry().keyExists(logs + "System\\kernel"));
    fs::remove_all(journal.path());
    EXPECT_NE(onHost("services").find("There is no journal in"), std::string::npos);
    EXPECT_NE(onHost("sources refresh").find("There is no journal in"), std::string::npos);
    EXPECT_EQ(code, 1);
    for (const host::Subscriber& person : host::machinePeople())
        EXPECT_FALSE(person.alias.empty() || person.displayName.empty());
}

TEST_F(MachineHost, ItsServiceTellsOfTheJournalAndComesBackAfterACrash) {
    ASSERT_NE(create(), "");
    platform::registry().setValue(
        "HKEY_LOCAL_MACHINE\\SOFTWARE\\Tessaly\\ToolRack\\Diagnostic Tools\\Quillon Service\\Mail", "Relay",
        std::string());
    support::run(root / "Database" / "QLNDB.MDB",
                 "UPDATE Configuration SET Value = '0' WHERE Setting = 'EventNotificationInterval';"
                 "INSERT INTO Recipients VALUES (1, 'Night desk', -1);"
                 "INSERT INTO Device VALUES (1, 4, 'night@example.net', -1);"
                 "INSERT INTO DeviceRecipient VALUES (1, 1);"
                 "INSERT INTO Events VALUES (10, 'sshd', -1, '', 4, -1, 0, NULL);"
                 "INSERT INTO Contents VALUES (10, 3, NULL, 1, '<Source>', '<Description>');"
                 "INSERT INTO EventDevice VALUES (10, 1, -1);");
    const fs::path mails = root / "Host" / "mail" / "night@example.net" / "new";
    const auto mailCount = [&] { return fs::exists(mails) ? platform::files::listFiles(mails).size() : 0; };
    supervise();
    ASSERT_TRUE(comes([&] { return isNotified("READY=1") && runs(); })) << said();
    EXPECT_NE(onHost("services run").find("supervised already"), std::string::npos);
    EXPECT_EQ(code, 1);
    EXPECT_TRUE(comes([&] { return isNotified("STATUS=HbQlnSvc running") && isNotified("WATCHDOG=1"); }));
    ASSERT_TRUE(comes([&] { return fs::exists(root / "Service" / "HbQlnSvc.db"); }));
    write({"sshd", "cron"});
    EXPECT_TRUE(comes([&] { return mailCount() == 1; }));

    const auto record = platform::readServiceRecord("HbQlnSvc").value();
    ::kill(static_cast<pid_t>(record.processId), SIGKILL);
    ASSERT_TRUE(
        comes([&] { return said().find("crashed; it is started again in 1 s") != std::string::npos; }));
    write({"sshd"});
    EXPECT_TRUE(comes([&] { return runs(); })) << said();
    EXPECT_TRUE(comes([&] { return mailCount() == 2; })) << "what came meanwhile is told";

    // As the console stops it.
    EXPECT_EQ(onHost("services stop HbQlnSvc"), "");
    EXPECT_TRUE(comes([&] { return said().find("HbQlnSvc was stopped") != std::string::npos; }));
    std::this_thread::sleep_for(std::chrono::milliseconds(1500));
    EXPECT_FALSE(runs()) << "what somebody stopped stays stopped";
    ::kill(supervisor, SIGKILL);
    ::waitpid(std::exchange(supervisor, -1), nullptr, 0);
    supervise();
    EXPECT_TRUE(comes([&] { return said().find("HbQlnSvc stays stopped") != std::string::npos; })) << said();
    EXPECT_EQ(onHost("services start HbQlnSvc"), "");
    EXPECT_TRUE(comes([&] { return said().find("HbQlnSvc was started") != std::string::npos; }));
    // One that waits for its next start can be stopped.
    ::kill(static_cast<pid_t>(platform::readServiceRecord("HbQlnSvc")->processId), SIGKILL);
    EXPECT_TRUE(comes([&] { return said().find("is started again in") != std::string::npos; }));
    EXPECT_NE(onHost("services stop HbQlnSvc").find("does not run"), std::string::npos);
    EXPECT_TRUE(comes([&] { return said().find("is not started again") != std::string::npos; }));
    EXPECT_EQ(onHost("services start HbQlnSvc"), "");
    EXPECT_TRUE(comes([&] { return runs(); }));
    // One that was stopped in order, and cannot be started for a while, comes as soon as it can.
    EXPECT_EQ(stopSupervisor(), 0);
    fs::permissions(root / "Service" / "HbQlnSvc.exe", fs::perms::owner_read);
    supervise();
    EXPECT_TRUE(comes([&] { return said().find("could not be started") != std::string::npos; })) << said();
    fs::permissions(root / "Service" / "HbQlnSvc.exe", fs::perms::owner_all);
    EXPECT_TRUE(comes([&] { return runs(); })) << said();
    // Set to start by hand meanwhile, it is still stopped at the end.
    platform::registry().setValue("HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Services\\HbQlnSvc",
                                  "Start", std::uint32_t{3});
    std::this_thread::sleep_for(std::chrono::milliseconds(700));
    EXPECT_TRUE(runs());
    EXPECT_EQ(stopSupervisor(), 0);
    EXPECT_FALSE(runs());
    EXPECT_TRUE(isNotified("STOPPING=1"));
}

}  // namespace
