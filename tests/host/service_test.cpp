// The service's real program: from a record in a log to a mail in the host's mailboxes.
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstdio>
#include <thread>

#include "platform/files/files.h"
#include "platform/machine/eventLog.h"
#include "platform/machine/host.h"
#include "support/serviceHost.h"

namespace {

namespace fs = std::filesystem;
using platform::ServiceState;
using std::chrono::steady_clock;

class ServiceProgram : public ::testing::Test {
  protected:
    ServiceProgram() {
        host.installService();
        host.openConfiguration();
        support::run(
            host.databaseFile(),
            "UPDATE Configuration SET Value = '" + logFile().string() +
                "' WHERE Setting = 'OutputFilePath';"
                "INSERT INTO Recipients VALUES (1, 'Night shift', -1);"
                "INSERT INTO Device VALUES (1, 4, 'night@example.org', -1);"
                "INSERT INTO DeviceRecipient VALUES (1, 1);"
                "INSERT INTO Events VALUES (10, 'Disk', -1, 'Title', 4, -1, 0, NULL);"
                "INSERT INTO Contents VALUES (10, 3, NULL, 0, '<Type> <Source>[<Event>]', '<Description>');"
                "INSERT INTO EventDevice VALUES (10, 1, -1);");
    }

    fs::path logFile() const { return host.root() / "Service" / "watch.log"; }
    static void write(unsigned id) {
        platform::appendEvent({"System", "", "Disk", id, 2, 0, "", "", "1. line\r\n2. line with <Type>"});
    }
    platform::Service service() {
        return {platform::ServiceManager(platform::managerExecute), "HbQlnSvc",
                platform::serviceStart | platform::serviceStop};
    }
    void start() {
        EXPECT_EQ(service().start(), 0u);
        EXPECT_TRUE(host.reaches(ServiceState::running));
    }
    void stop() {
        EXPECT_EQ(service().control(platform::ServiceControl::stop), 0u);
        EXPECT_TRUE(host.reaches(ServiceState::stopped));
    }
    // What the tool prints.
    std::string qlnhost(const std::string& arguments) const {
        const std::string command =
            std::string(QLNHOST_PROGRAM) + " --host " + host.root().string() + " " + arguments + " 2>&1";
        FILE* const pipe = popen(command.c_str(), "r");
        std::string text;
        std::array<char, 4096> piece{};
        while (const std::size_t size = fread(piece.data(), 1, piece.size(), pipe))
            text.append(piece.data(), size);
        pclose(pipe);
        return text;
    }
    // The mails that have come, once there are so many of them.
    std::vector<std::string> mails(std::size_t count) {
        const fs::path folder = platform::host::folder() / "mail" / "night@example.org" / "new";
        std::vector<std::string> texts;
        for (const auto end = steady_clock::now() + std::chrono::seconds(10);
             texts.size() < count && steady_clock::now() < end;
             platform::wait(std::chrono::milliseconds(5))) {
            texts.clear();
            if (fs::exists(folder))
                for (const auto& file : fs::directory_iterator(folder))
                    texts.push_back(platform::files::readFile(file.path()));
        }
        return texts;
    }

    support::ServiceHost host;
};

TEST_F(ServiceProgram, ARecordLiesAsAMailInTheHostsMailboxAtOnce) {
    write(50);
    start();
    const auto begin = steady_clock::now();
    write(51);
    const auto found = mails(1);
    EXPECT_LT(steady_clock::now() - begin, std::chrono::seconds(2)) << "the polling interval is ten seconds";
    ASSERT_EQ(found.size(), 1u);
    EXPECT_NE(found[0].find("\nSubject: Warning Disk[51]\n"), std::string::npos) << found[0];
    EXPECT_NE(found[0].find("\n1. line\n2. line with <Type>\n"), std::string::npos) << found[0];
    stop();
    const std::string log = platform::files::readFile(logFile());
    for (const char* line :
         {"  HbQlnSvc started\n",
          "  Found in the System log: Disk 51, Warning; monitored and active as event 10, \"Title\"\n",
          "  Told: message 1 to Night shift, night@example.org: ", "  HbQlnSvc stopped\n"})
        EXPECT_NE(log.find(line), std::string::npos) << line << "\n" << log;
    EXPECT_EQ(log.find("Disk 50"), std::string::npos) << "what was there before the first start is no news";

    // What a person sees of it.
    EXPECT_EQ(qlnhost("mail"), "night@example.org                        1 new, 0 read\n");
    EXPECT_NE(qlnhost("mail night@example.org").find("  Warning Disk[51]\n"), std::string::npos);
    EXPECT_NE(qlnhost("notifications").find("  Disk 51  night@example.org: In the host's mailbox\n"),
              std::string::npos);
    EXPECT_NE(qlnhost("services").find("stopped, last look 20"), std::string::npos);
    EXPECT_EQ(
        qlnhost("explain System DISK 9 information"),
        "Event 10, \"Title\": told\n  Night shift, night@example.org: within the notification interval\n");
    EXPECT_EQ(qlnhost("explain System Other 9 error"), "No monitored event has this source and id.\n");
    EXPECT_NE(qlnhost("transports").find("pager         not set up: "), std::string::npos);

    // What comes while it does not run is told when it runs again.
    support::run(host.databaseFile(), "UPDATE Events SET EventLastNotification = NULL");
    EXPECT_EQ(qlnhost("events add System Disk 52 warning --category=3 'more text'"), "");
    EXPECT_NE(qlnhost("events add System Disk 52 bad x"), "");
    start();
    EXPECT_EQ(mails(2).size(), 2u);
    stop();
}

TEST_F(ServiceProgram, StopsAtOnceAlsoWhileTheLogNeverRests) {
    start();
    std::atomic<bool> isWriting = true;
    std::thread writer([&] {
        while (isWriting)
            write(51);
    });
    platform::wait(std::chrono::milliseconds(300));
    const auto begin = steady_clock::now();
    EXPECT_EQ(service().control(platform::ServiceControl::stop), 0u);
    EXPECT_TRUE(host.reaches(ServiceState::stopped));
    EXPECT_LT(steady_clock::now() - begin, std::chrono::seconds(2));
    isWriting = false;
    writer.join();
}

}  // namespace
