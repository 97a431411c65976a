// The journal as a source, on journal files that the system's own writer makes.
#include "service/sources/journal.h"

#include <gtest/gtest.h>
#include <poll.h>

#include <algorithm>
#include <chrono>

#include "platform/failure.h"
#include "service/sources/journalPages.h"
#include "support/childProcess.h"
#include "support/journalFolder.h"
#include "support/temporaryHost.h"

namespace {

using service::Batch;
using service::Journal;
using support::JournalEntry;
using Texts = std::vector<std::string>;

constexpr std::uint64_t noon = 1'700'000'000;
const std::string beginning = "t=1";

class JournalSourceTest : public ::testing::Test {
  protected:
    void SetUp() override {
        if (!support::JournalFolder::isPossible())
            GTEST_SKIP() << "systemd-journal-remote is not installed";
    }

    void write(const std::string& file, std::uint64_t second, const Texts& texts) {
        std::vector<JournalEntry> entries;
        for (const std::string& text : texts)
            entries.push_back(support::JournalFolder::message(second++, "sshd", text));
        folder.append(file, entries);
    }
    // Reads to the end, from where the last call ended; gives the descriptions.
    Texts news(std::size_t most = 100) {
        Texts texts;
        notices.clear();
        Batch batch;
        do {
            batch = journal->read(position, most);
            position = batch.position;
            for (const auto& record : batch.records)
                texts.push_back(record.description);
            notices.insert(notices.end(), batch.notices.begin(), batch.notices.end());
        } while (!batch.isWhole);
        return texts;
    }
    void restart() { journal = std::make_unique<Journal>(folder.path()); }
    bool isTold(std::string_view text) const {
        return std::ranges::any_of(
            notices, [&](const std::string& notice) { return notice.find(text) != std::string::npos; });
    }

    support::TemporaryHost host;
    support::JournalFolder folder{host.root() / "journal"};
    std::unique_ptr<Journal> journal = std::make_unique<Journal>(folder.path());
    std::string position = beginning;
    Texts notices;
};

TEST_F(JournalSourceTest, EachFieldBecomesWhatTheConsoleKnows) {
    std::vector<JournalEntry> entries;
    for (int priority = 0; priority <= 7; ++priority)
        entries.push_back({noon, {{"SYSLOG_IDENTIFIER", "app"}, {"PRIORITY", std::to_string(priority)}}});
    const std::string big(1u << 20, 'x');
    entries.push_back(
        {noon, {{"SYSLOG_IDENTIFIER", "App"}, {"MESSAGE", big}, {"QLN_EVENT_ID", "4000000000"}}});
    entries.push_back({noon,
                       {{"_COMM", "cron"},
                        {"_UID", "0"},
                        {"_HOSTNAME", "node1"},
                        {"MESSAGE", std::string("a\xFF\0b \xC3\xA9", 7)},
                        {"MESSAGE_ID", "fc2e22bc6ee647b6b90729ab34a250b1"},
                        {"QLN_EVENT_ID", "12x"}}});
    entries.push_back(
        {noon, {{"SYSLOG_IDENTIFIER", "kernel"}, {"_TRANSPORT", "kernel"}, {"_UID", "4294967"}}});
    entries.push_back({noon, {{"SYSLOG_IDENTIFIER", "systemd"}, {"_PID", "1"}}});
    entries.push_back({noon, {{"SYSLOG_IDENTIFIER", "systemd"}, {"_PID", "77"}, {"PRIORITY", "loud"}}});
    entries.push_back({noon, {{"SOMETHING", "else"}}});
    folder.append("a", entries);

    const auto records = journal->read(position, 100).records;
    ASSERT_EQ(records.size(), entries.size());
    std::vector<int> types;
    for (std::size_t i = 0; i < 8; ++i)
        types.push_back(records[i].type);
    EXPECT_EQ(types, (std::vector<int>{1, 1, 1, 1, 2, 4, 4, 4}));
    EXPECT_EQ(records[0].source, "app");
    EXPECT_EQ(records[0].log, "Application");
    EXPECT_EQ(records[8].source, "App");
    EXPECT_EQ(records[8].id, 4'000'000'000u);
    EXPECT_EQ(records[8].description, big);
    EXPECT_EQ(records[9].source, "cron");
    EXPECT_EQ(records[9].id, 0xfc2e22bcu >> 1);
    EXPECT_EQ(records[9].user, "root");
    EXPECT_EQ(records[9].computer, "node1");
    EXPECT_EQ(records[9].description,
              "a\xEF\xBF\xBD\xEF\xBF\xBD"
              "b \xC3\xA9");
    EXPECT_EQ(records[10].log, "System");
    EXPECT_EQ(records[10].user, "4294967");
    EXPECT_EQ(records[11].log, "System");
    EXPECT_EQ(records[12].log, "Application") << "a user's own manager is not the system's";
    EXPECT_EQ(records[12].type, 4);
    EXPECT_EQ(records[13].source, "");
    EXPECT_EQ(records[13].time.substr(0, 7), "2023-11");

    const auto known = service::journalSources(folder.path()).sources;
    const std::vector<service::JournalSource> expected{
        {"Application", "App"}, {"Application", "app"}, {"System", "kernel"}, {"System", "systemd"}};
    EXPECT_EQ(known, expected);
}

TEST_F(JournalSourceTest, EachRecordIsReadOnceAlsoAfterARestartAndARotation) {
    write("a", noon, {"1", "2", "3"});
    EXPECT_EQ(news(2), (Texts{"1", "2", "3"}));
    EXPECT_EQ(news(), Texts{});
    write("a", noon + 10, {"4"});
    EXPECT_EQ(news(), Texts{"4"});
    // What is there already is no news to a first start.
    EXPECT_EQ(journal->end(), position);

    std::filesystem::rename(folder.file("a"), folder.file("a@0001"));
    write("a", noon + 20, {"5", "6"});
    EXPECT_EQ(news(), (Texts{"5", "6"}));
    restart();
    EXPECT_EQ(news(), Texts{});
    write("a", noon + 30, {"7"});
    restart();
    EXPECT_EQ(news(), Texts{"7"});
    EXPECT_EQ(notices, Texts{});
}

TEST_F(JournalSourceTest, APositionThatIsGoneIsToldAsAGapWithBothMoments) {
    for (const bool isRunning : {false, true}) {
        position = beginning;
        write("a", noon, {"1", "2"});
        EXPECT_EQ(news(), (Texts{"1", "2"}));
        write("a", noon + 10, {"lost"});
        std::filesystem::remove(folder.file("a"));
        write("b", noon + 86400, {"3"});
        if (!isRunning)
            restart();
        EXPECT_EQ(news(), Texts{"3"});
        EXPECT_TRUE(isTold("a gap: records between 2023-11-14 ")) << ::testing::PrintToString(notices);
        EXPECT_TRUE(isTold(" and 2023-11-15 "));
        EXPECT_EQ(news(), Texts{});
        EXPECT_EQ(notices, Texts{});
        std::filesystem::remove(folder.file("b"));
    }
    position = "no position at all";
    write("c", noon + 2 * 86400, {"4"});
    EXPECT_EQ(news(), Texts{});
    EXPECT_TRUE(isTold("its position cannot be read"));
    write("c", noon + 2 * 86400 + 5, {"5"});
    EXPECT_EQ(news(), Texts{"5"});
}

TEST_F(JournalSourceTest, ATruncatedFileIsToldOnceAndTheOthersAreRead) {
    write("a", noon, {"1"});
    write("b", noon + 10, {"2"});
    EXPECT_EQ(news(), (Texts{"1", "2"}));
    restart();
    std::filesystem::resize_file(folder.file("b"), 5000);
    write("c", noon + 20, {"3"});
    EXPECT_EQ(news(), Texts{"3"});
    EXPECT_TRUE(isTold("b.journal cannot be read")) << ::testing::PrintToString(notices);
    write("d", noon + 30, {"4"});
    EXPECT_EQ(news(), Texts{"4"});
    EXPECT_EQ(notices, Texts{});
}

TEST_F(JournalSourceTest, AJournalThatIsNotThereIsToldOnceAndReadWhenItComes) {
    const std::uint64_t now =
        static_cast<std::uint64_t>(std::chrono::system_clock::to_time_t(std::chrono::system_clock::now()));
    position = journal->end();
    EXPECT_EQ(news(), Texts{});
    EXPECT_TRUE(isTold("There is no journal in "));
    EXPECT_EQ(news(), Texts{});
    EXPECT_EQ(notices, Texts{});
    EXPECT_NE(journal->problem(), "");
    write("a", now + 60, {"1"});
    EXPECT_EQ(news(), Texts{"1"});
    EXPECT_EQ(journal->problem(), "");
}

TEST_F(JournalSourceTest, AClockThatIsSetBackIsToldAndNothingIsLostOrReadTwice) {
    write("a", noon, {"1", "2"});
    EXPECT_EQ(news(), (Texts{"1", "2"}));
    write("a", noon - 3600, {"3"});
    EXPECT_EQ(news(), Texts{"3"});
    EXPECT_TRUE(isTold("the clock was set back from ")) << ::testing::PrintToString(notices);
    restart();
    EXPECT_EQ(news(), Texts{});
    write("a", noon - 3590, {"4"});
    EXPECT_EQ(news(), Texts{"4"});
}

TEST_F(JournalSourceTest, TheDescriptorTellsOfNews) {
    write("a", noon, {"1"});
    EXPECT_EQ(news(), Texts{"1"});
    pollfd look{journal->descriptor(), POLLIN, 0};
    ASSERT_GE(look.fd, 0);
    EXPECT_EQ(::poll(&look, 1, 0), 0);
    write("a", noon + 1, {"2"});
    EXPECT_EQ(::poll(&look, 1, 1000), 1);
    EXPECT_EQ(news(), Texts{"2"});
    EXPECT_EQ(::poll(&look, 1, 0), 0);
}

TEST_F(JournalSourceTest, WithoutTheRightToReadOneLineSaysSo) {
    write("a", noon, {"1"});
    std::filesystem::permissions(folder.path(), std::filesystem::perms::none);
    std::filesystem::permissions(host.root(), std::filesystem::perms::all);
    const auto ran = support::runAsOrdinaryUser(host.root(), [&] {
        EXPECT_EQ(news(), Texts{});
        EXPECT_EQ(notices.size(), 1u);
        EXPECT_TRUE(isTold("This account may not read the journal"));
    });
    std::filesystem::permissions(folder.path(), std::filesystem::perms::owner_all);
    if (ran == support::Ran::impossible)
        GTEST_SKIP() << "this user cannot become another";
    EXPECT_EQ(ran, support::Ran::passed);
}

TEST_F(JournalSourceTest, ARecordThatWasCopiedIntoAnotherFileIsNotReadAgain) {
    write("a", noon, {"1", "2", "3"});
    EXPECT_EQ(news(), (Texts{"1", "2", "3"}));
    write("b", noon, {"1", "2", "3"});
    std::filesystem::remove(folder.file("a"));
    EXPECT_EQ(news(), Texts{});
    restart();
    EXPECT_EQ(news(), Texts{});
    EXPECT_FALSE(isTold("gap"));
    write("b", noon + 3, {"4"});
    EXPECT_EQ(news(), Texts{"4"});
}

TEST_F(JournalSourceTest, IsTurnedOverPageByPageTheNewestFirst) {
    EXPECT_THROW(service::JournalPages(folder.path()), platform::Failure);
    EXPECT_EQ(service::journalStamp(folder.path()), "");
    write("system", noon, {"1", "2", "3", "4", "5"});
    const std::string stamp = service::journalStamp(folder.path());
    service::JournalPages pages(folder.path());
    std::uint64_t last = UINT64_MAX;
    const auto texts = [&](std::size_t most, bool hasEarlier) {
        Texts result;
        const service::JournalPage page = pages.earlier(most);
        EXPECT_EQ(page.hasEarlier, hasEarlier);
        for (const auto& [place, record] : page.records) {
            EXPECT_LT(place, last);
            last = place;
            result.push_back(record.description);
        }
        return result;
    };
    EXPECT_EQ(texts(2, true), (Texts{"5", "4"}));
    write("system", noon + 10, {"6"});
    EXPECT_NE(service::journalStamp(folder.path()), stamp);
    EXPECT_EQ(texts(9, false), (Texts{"3", "2", "1"}));
    EXPECT_EQ(texts(9, false), Texts{});
}

}  // namespace
