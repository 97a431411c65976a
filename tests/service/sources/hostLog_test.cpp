#include "service/sources/hostLog.h"

#include <gtest/gtest.h>

#include <fstream>

#include "platform/files/files.h"
#include "platform/machine/host.h"
#include "support/temporaryHost.h"

namespace {

using Texts = std::vector<std::string>;

class HostLogTest : public testing::Test {
  protected:
    static void write(const std::string& description) {
        platform::appendEvent({"System", "", "Disk", 51, 1, 0, "", "", description});
    }
    // Reads to the end, from where the last call ended; gives the descriptions.
    Texts news(std::size_t most = 100) {
        Texts texts;
        notices.clear();
        service::Batch batch;
        do {
            batch = log.read(position, most);
            position = batch.position;
            for (const auto& record : batch.records)
                texts.push_back(record.description);
            notices.insert(notices.end(), batch.notices.begin(), batch.notices.end());
        } while (!batch.isWhole);
        return texts;
    }

    support::TemporaryHost host;
    service::HostLog log{"System", 256};
    std::string position = log.end();
    std::filesystem::path file = platform::eventLogFile("System");
    Texts notices;
};

TEST_F(HostLogTest, GivesEachRecordOnceHoweverLongItIs) {
    EXPECT_EQ(news(), Texts{});
    const std::string big(3000, 'x');
    for (const std::string& text : {std::string("1"), big, std::string("3"), std::string("4\nand more")})
        write(text);
    EXPECT_EQ(news(1), (Texts{"1", big, "3", "4\nand more"}));
    EXPECT_EQ(news(), Texts{});
    EXPECT_EQ(log.end(), position);
    // A line that its writer has not finished yet counts when it has.
    std::ofstream(file, std::ios::app) << "2026-11-24 14:05:09\tDisk\t51\t1\t0\t\t\tunfini";
    EXPECT_EQ(log.end(), position);
    EXPECT_EQ(news(), Texts{});
    std::ofstream(file, std::ios::app) << "shed\nno record\n";
    write("6");
    EXPECT_EQ(news(), (Texts{"unfinished", "6"}));
    ASSERT_EQ(notices.size(), 1u);
    EXPECT_NE(notices[0].find("is no record and is skipped"), std::string::npos);
}

TEST_F(HostLogTest, NoticesAnotherLogInItsPlaceAndKnowsACopy) {
    for (int i = 0; i < 30; ++i)
        write("old " + std::to_string(i));
    EXPECT_EQ(news().size(), 30u);
    const auto copy = host.root() / "copy";
    std::filesystem::copy_file(file, copy);
    std::filesystem::remove(file);
    std::filesystem::copy_file(copy, file);
    write("new");
    EXPECT_EQ(news(), Texts{"new"}) << "a log that was put back is the same log";
    EXPECT_EQ(notices, Texts{});

    std::filesystem::remove(file);
    write("replaced");
    EXPECT_EQ(news(), Texts{"replaced"});
    EXPECT_EQ(notices, Texts{"System log: it is shorter than before; it is read from its beginning."});
    // Cleared, and filled beyond the place of before.
    std::filesystem::resize_file(file, 0);
    write("cleared and filled with more than before");
    EXPECT_EQ(news(), Texts{"cleared and filled with more than before"});
    EXPECT_EQ(
        notices,
        Texts{"System log: it was replaced, or cleared and filled again; it is read from its beginning."});
    std::filesystem::remove(file);
    EXPECT_EQ(news(), Texts{});
    EXPECT_EQ(notices.size(), 1u);
    EXPECT_EQ(news(), Texts{});
    EXPECT_EQ(notices, Texts{}) << "that a log is gone is told once";
    write("again");
    EXPECT_EQ(news(), Texts{"again"});
    position = "nonsense";
    EXPECT_EQ(news(), Texts{"again"});
    EXPECT_EQ(notices.size(), 1u);
    std::filesystem::remove(file);
    std::filesystem::create_directory(file);
    EXPECT_THROW(news(), platform::Failure);
}

}  // namespace
