// The service's work as a whole, from a record in a log to the history: with a way out that the test answers
// for.
#include "service/notifier.h"

#include <gtest/gtest.h>
#include <poll.h>

#include <atomic>
#include <fstream>
#include <mutex>
#include <set>

#include "platform/failure.h"
#include "platform/files/files.h"
#include "service/outbox/schedule.h"
#include "service/outbox/sendAgain.h"
#include "service/sources/hostLog.h"
#include "support/temporaryHost.h"

namespace {

using namespace service;
using Texts = std::vector<std::string>;
using std::chrono::minutes;
using std::chrono::seconds;

// What was sent, and the answers to it.
class Post {
  public:
    Outcome take(const Message& message) {
        const std::lock_guard lock(mutex_);
        sent_.push_back(message);
        const auto answer = answers_.find(message.address);
        return answer == answers_.end() ? Outcome{Result::delivered, "Delivered"} : answer->second;
    }
    void answer(const std::string& address, Result result, const std::string& words) {
        const std::lock_guard lock(mutex_);
        answers_[address] = {result, words};
    }
    // Takes what was sent since the last call.
    std::vector<Message> sent() {
        const std::lock_guard lock(mutex_);
        return std::exchange(sent_, {});
    }

  private:
    std::mutex mutex_;
    std::vector<Message> sent_;
    std::map<std::string, Outcome> answers_;
};

class PostTransport : public Transport {
  public:
    explicit PostTransport(Post& post) : post_(post) {}
    Outcome send(const Message& message, const Deadline&) override { return post_.take(message); }

  private:
    Post& post_;
};

class NotifierTest : public testing::Test {
  protected:
    NotifierTest() {
        host.openConfiguration();
        run("UPDATE Configuration SET Value = '" + logFile().string() +
            "' WHERE Setting = 'OutputFilePath'; INSERT INTO NotificationLog(LogKey) VALUES (7);"
            "INSERT INTO Recipients VALUES (1, 'Night', -1);"
            "INSERT INTO Device VALUES (1, 4, 'a@b', -1), (2, 3, 'DIR-1', -1), (3, 4, 'c@d', -1);"
            "INSERT INTO DeviceRecipient VALUES (1, 1), (2, 1), (3, 1);"
            "INSERT INTO Events VALUES (10, 'Disk', 51, 'Watch it', 2, -1, 0, NULL), (20, 'Fan', -1, '', 2, "
            "-1, 0, "
            "NULL);"
            "INSERT INTO Contents VALUES (10, 3, NULL, 2, 'S <Event>', 'B <Description>'), (20, 3, NULL, 1, "
            "'Fan "
            "<Event>', '');"
            "INSERT INTO EventDevice VALUES (10, 1, -1), (20, 1, -1), (20, 3, -1);");
        host.makeDirectory({"CREATE TABLE GlobalSubscriber(Alias, DisplayName, DirectoryId)",
                            "CREATE TABLE DistributionList(Alias, DisplayName, DirectoryId)",
                            "INSERT INTO DistributionList VALUES ('duty', 'Duty', 'DIR-1')"});
        clock.set(std::chrono::floor<seconds>(clock.now()));
        restart();
    }
    ~NotifierTest() override { notifier.reset(); }

    std::filesystem::path logFile() const { return host.root() / "Service" / "out.log"; }
    std::filesystem::path outboxFile() const { return host.root() / "Service" / "HbQlnSvc.db"; }
    void run(const std::string& statements) { support::run(host.databaseFile(), statements); }
    Texts rows(const std::string& statement) { return support::query(host.databaseFile(), statement); }
    std::unique_ptr<Notifier> makeNotifier() {
        NotifierOptions options;
        options.databaseFile = host.databaseFile();
        options.outboxFile = outboxFile();
        options.pause = std::chrono::hours(1);
        options.isSetUp = [this](DeviceKind) { return isSetUp.load(); };
        options.refreshWaysOut = [] { return true; };
        options.delivery.makeTransport = [this](DeviceKind) {
            return isSetUp ? std::make_unique<PostTransport>(post) : nullptr;
        };
        options.delivery.mailDomain = [] { return std::string("mail.example"); };
        std::vector<std::unique_ptr<Source>> sources;
        sources.push_back(std::make_unique<HostLog>("Application"));
        sources.push_back(std::make_unique<HostLog>("System"));
        auto made = std::make_unique<Notifier>(std::move(options), std::move(sources));
        made->begin();
        return made;
    }
    void restart() {
        notifier.reset();
        notifier = makeNotifier();
        look();
    }
    void write(const std::string& source, std::uint32_t id, const std::string& description = {},
               minutes ago = minutes(0)) {
        platform::appendEvent({"Application", platform::storedForm(platform::localTime(clock.now() - ago)),
                               source, id, 1, 0, "", "node1", description});
    }
    // Looks until nothing comes any more of itself.
    void look() {
        for (int quiet = 0; quiet < 2;) {
            const auto next = notifier->look();
            pollfd news{notifier->descriptor(), POLLIN, 0};
            quiet = ::poll(&news, 1, 30) > 0 || next.count() == 0 ? 0 : quiet + 1;
        }
    }
    void pass(std::chrono::seconds time) {
        clock.set(clock.now() + time);
        look();
    }
    // "address: subject / body", in the order of the addresses.
    Texts told() {
        std::multiset<std::string> texts;
        for (const Message& message : post.sent())
            texts.insert(message.address + ": " + message.subject + " / " + message.body);
        return {texts.begin(), texts.end()};
    }
    bool isLogged(const std::string& text) {
        return platform::files::readFile(logFile()).find(text) != std::string::npos;
    }
    std::string moment() { return platform::storedForm(platform::localTime(clock.now())); }

    support::TemporaryHost host;
    support::ManualClock clock;
    Post post;
    std::atomic<bool> isSetUp = true;
    std::unique_ptr<Notifier> notifier;
};

TEST_F(NotifierTest, TellsEachAddressOfANewRecordOnceAndSaysSo) {
    run("INSERT INTO EventDevice VALUES (10, 2, -1)");
    write("disk", 51, "full");
    look();
    const std::vector<Message> sent = post.sent();
    ASSERT_EQ(sent.size(), 2u);
    EXPECT_EQ(
        rows("SELECT * FROM NotificationLog WHERE LogKey > 7 ORDER BY LogKey"),
        (Texts{"8|" + moment() + "|disk|51|DIR-1|Delivered", "9|" + moment() + "|disk|51|a@b|Delivered"}));
    EXPECT_EQ(rows("SELECT EventLastNotification FROM Events WHERE EventKey = 10"), Texts{moment()});
    for (const Message& message : sent) {
        EXPECT_TRUE(message.address == "a@b" || message.address == "duty@mail.example") << message.address;
        EXPECT_EQ(message.subject, "S 51");
        EXPECT_EQ(message.body, "B full");
        EXPECT_EQ(message.priority, Priority::urgent);
    }
    EXPECT_NE(sent[0].key, sent[1].key);
    EXPECT_TRUE(isLogged("Told: message 9 to Night, a@b: Delivered"));
    restart();
    EXPECT_EQ(told(), Texts{}) << "neither record nor message comes a second time";
    EXPECT_EQ(rows("SELECT Count(*) FROM NotificationLog"), Texts{"3"});
}

TEST_F(NotifierTest, OfAThousandRecordsTheFirstIsToldAndTheOthersInOneMessage) {
    for (int i = 0; i < 1000; ++i)
        write("Disk", 51, std::to_string(i));
    look();
    EXPECT_EQ(told(), Texts{"a@b: S 51 / B 0"});
    write("Fan", 1);
    pass(minutes(14));
    restart();
    EXPECT_EQ(told(), (Texts{"a@b: Fan 1 / ", "c@d: Fan 1 / "})) << "each event has its own interval";
    pass(minutes(1) + seconds(1));
    const std::string when =
        platform::defaultForm(platform::localTime(clock.now() - minutes(15) - seconds(1)));
    EXPECT_EQ(told(), Texts{"a@b: S 51 / B 999\r\n999 records of this event had been held back, from " +
                            when + " to " + when + "."});
    pass(minutes(16));
    EXPECT_EQ(told(), Texts{});
    // An event that is switched off meanwhile says in the log what it did not tell.
    write("Disk", 51, "told");
    write("Disk", 51, "held");
    look();
    EXPECT_EQ(told().size(), 1u);
    run("UPDATE Events SET EventActive = 0 WHERE EventKey = 10");
    pass(minutes(16));
    EXPECT_EQ(told(), Texts{});
    EXPECT_TRUE(isLogged("1 records of event 10 that were held back are not told: the event is inactive"));
}

TEST_F(NotifierTest, TriesAgainAsLongAsADayAndKeepsNobodyElseWaiting) {
    post.answer("a@b", Result::tryAgain, "451 later");
    write("Fan", 1);
    look();
    EXPECT_EQ(told(), (Texts{"a@b: Fan 1 / ", "c@d: Fan 1 / "}));
    EXPECT_EQ(rows("SELECT DeviceAddress, Success FROM NotificationLog WHERE LogKey > 7"),
              Texts{"c@d|Delivered"});
    int attempts = 1;
    for (const auto pause :
         {seconds(10), seconds(30), seconds(60), seconds(120), seconds(300), seconds(900)}) {
        pass(pause - seconds(1));
        EXPECT_EQ(told(), Texts{});
        pass(seconds(1));
        EXPECT_EQ(told().size(), 1u) << pause.count();
        ++attempts;
    }
    restart();
    run("DELETE FROM Events WHERE EventKey = 20");
    for (int hour = 0; hour < 27; ++hour) {
        pass(minutes(60));
        attempts += static_cast<int>(told().size());
    }
    EXPECT_EQ(
        rows("SELECT DeviceAddress, Success FROM NotificationLog WHERE LogKey > 7 ORDER BY LogKey"),
        (Texts{"a@b|Given up after " + std::to_string(attempts) + " attempts: 451 later", "c@d|Delivered"}))
        << "also of an event that was deleted meanwhile";
    EXPECT_EQ(nextAttempt(7, clock.now(), clock.now()), clock.now() + minutes(30));

    post.answer("a@b", Result::refused, "550 unknown");
    write("Disk", 51);
    look();
    EXPECT_EQ(told().size(), 1u);
    EXPECT_EQ(rows("SELECT Success FROM NotificationLog WHERE EventSource = 'Disk'"),
              Texts{"Refused: 550 unknown"});
    EXPECT_EQ(rows("SELECT EventLastNotification FROM Events WHERE EventKey = 10"), Texts{"NULL"});
    write("Disk", 51);
    pass(minutes(1));
    EXPECT_EQ(told(), Texts{}) << "an address that refuses is not stormed";
    run("INSERT INTO EventDevice VALUES (10, 2, -1)");
    support::run(host.root() / "Host" / "CorvaneDb.db", "DELETE FROM DistributionList");
    pass(minutes(20));
    EXPECT_EQ(rows("SELECT Success FROM NotificationLog WHERE DeviceAddress = 'DIR-1'"),
              Texts{"Refused: The directory has no such entry"});
}

TEST_F(NotifierTest, TellsWhatIsOldInOneMessageForEachEvent) {
    notifier->end();
    notifier.reset();
    for (int i = 0; i < 5; ++i)
        write("Disk", 51, std::to_string(i), minutes(300));
    write("Fan", 3, {}, minutes(59));
    restart();
    const std::string when = platform::defaultForm(platform::localTime(clock.now() - minutes(300)));
    EXPECT_EQ(told(), (Texts{"a@b: Fan 3 / ",
                             "a@b: S 51 / B 4\r\n5 records of this event had been held back, from " + when +
                                 " to " + when + ".",
                             "c@d: Fan 3 / "}));
}

TEST_F(NotifierTest, WhatItCannotReadOrWriteIsDoneLaterAndTold) {
    // The database is away when the record comes, and read-only when the message has been sent.
    std::filesystem::rename(host.databaseFile(), host.root() / "away");
    write("Disk", 51);
    std::ofstream(platform::eventLogFile("Application"), std::ios::app) << "no record\n";
    look();
    look();
    EXPECT_EQ(told(), Texts{});
    std::filesystem::rename(host.root() / "away", host.databaseFile());
    run("CREATE TRIGGER held BEFORE INSERT ON NotificationLog BEGIN SELECT raise(ABORT, 'held'); END");
    look();
    EXPECT_EQ(told().size(), 1u);
    EXPECT_EQ(rows("SELECT Count(*) FROM NotificationLog"), Texts{"1"});
    EXPECT_TRUE(isLogged("History: held"));
    const std::string text = platform::files::readFile(logFile());
    EXPECT_EQ(text.find("is no record"), text.rfind("is no record")) << "what is read again is told once";
    run("DROP TRIGGER held");
    restart();
    EXPECT_EQ(told(), Texts{});
    EXPECT_EQ(rows("SELECT LogKey, Success FROM NotificationLog WHERE LogKey > 7"), Texts{"8|Delivered"});

    // A damaged outbox is kept, and a new one does not use old keys again.
    notifier->end();
    notifier.reset();
    write("Disk", 51, "lost with the position");
    for (const char* ending : {"-wal", "-shm"})
        std::filesystem::remove(outboxFile().string() + ending);
    std::ofstream(outboxFile()) << "no outbox at all, but long enough to be looked at as one by the engine";
    restart();
    EXPECT_TRUE(isLogged("The outbox was damaged and is kept as"));
    EXPECT_TRUE(std::filesystem::exists(outboxFile().string() + ".damaged"));
    write("Fan", 2);
    look();
    EXPECT_EQ(told().size(), 2u);
    EXPECT_EQ(rows("SELECT max(LogKey) FROM NotificationLog"), Texts{"10"});
}

TEST_F(NotifierTest, APassingFaultOfTheSetUpLosesNothing) {
    post.answer("a@b", Result::tryAgain, "451 \xFF\n2026-01-01 00:00:00  forged");
    write("Disk", 51);
    write("Disk", 51, "held");
    look();
    EXPECT_EQ(told().size(), 1u);
    EXPECT_TRUE(isLogged("451 \xEF\xBF\xBD 2026-01-01 00:00:00  forged")) << "one line, readable";
    isSetUp = false;
    post.answer("a@b", Result::delivered, "Delivered");
    pass(seconds(10));
    EXPECT_EQ(told(), Texts{});
    pass(minutes(20));
    EXPECT_EQ(told(), Texts{});
    isSetUp = true;
    pass(minutes(6));
    const std::string when =
        platform::defaultForm(platform::localTime(clock.now() - minutes(26) - seconds(10)));
    EXPECT_EQ(told(), (Texts{"a@b: S 51 / B ",
                             "a@b: S 51 / B held\r\n1 record of this event had been held back, from " + when +
                                 " to " + when + "."}));
}

TEST_F(NotifierTest, WhatWasHeldBackIsToldAlsoWhereAnotherEventWouldTellTheAddressByNow) {
    run("INSERT INTO Events VALUES (5, 'Fan', -1, '', 2, 0, 0, NULL);"
        "INSERT INTO Contents VALUES (5, 3, NULL, 1, 'Earlier <Event>', '');"
        "INSERT INTO EventDevice VALUES (5, 1, -1), (5, 3, -1);");
    write("Fan", 1);
    look();
    EXPECT_EQ(told().size(), 2u);
    write("Fan", 2);
    look();
    EXPECT_EQ(told(), Texts{}) << "held back";
    run("UPDATE Events SET EventActive = -1 WHERE EventKey = 5");
    pass(minutes(16));
    EXPECT_EQ(told().size(), 2u);
}

TEST_F(NotifierTest, ASecondServiceOnTheSameOutboxWaitsForItsTurn) {
    const auto second = makeNotifier();
    second->look();
    EXPECT_TRUE(isLogged("another process works on"));
    write("Disk", 51);
    second->look();
    EXPECT_EQ(told(), Texts{});
    look();
    EXPECT_EQ(told().size(), 1u);
    notifier.reset();
    write("Fan", 2);
    for (int i = 0; i < 20 && rows("SELECT Count(*) FROM NotificationLog") == Texts{"2"}; ++i) {
        second->look();
        ::poll(nullptr, 0, 10);
    }
    EXPECT_EQ(told().size(), 2u);
}

TEST_F(NotifierTest, ADatabaseThatNoConsoleHasUpgradedYetIsReadAsItIs) {
    run("DROP TABLE Exclusions; CREATE TABLE Exclusions(EventSource TEXT(50), EventId LONG);"
        "INSERT INTO Exclusions VALUES ('Disk', 51); DROP TABLE AddressDetails;"
        "DELETE FROM Configuration WHERE Setting IN ('EventNotificationInterval', 'ReportDataAging');"
        "UPDATE Events SET EventActive = -1 WHERE EventCollection <> 0");
    restart();
    write("Disk", 51);
    look();
    EXPECT_EQ(told().size(), 1u);
    EXPECT_FALSE(isLogged("Configuration: "));
}

TEST_F(NotifierTest, OldRowsOfTheHistoryGo) {
    run("UPDATE Configuration SET Value = '3' WHERE Setting = 'ReportDataAging'; UPDATE NotificationLog SET "
        "LogTime = "
        "'" +
        moment() + "'");
    pass(minutes(60 * 24 * 3 - 60));
    EXPECT_EQ(rows("SELECT Count(*) FROM NotificationLog"), Texts{"1"});
    pass(minutes(62));
    EXPECT_EQ(rows("SELECT Count(*) FROM NotificationLog"), Texts{"0"});
}

TEST_F(NotifierTest, WhatReachedNobodyGoesOutOnceMoreWhileTheServiceRuns) {
    post.answer("a@b", Result::refused, "550 unknown");
    write("Disk", 51, "full");
    look();
    EXPECT_EQ(told(), Texts{"a@b: S 51 / B full"});
    EXPECT_EQ(rows("SELECT Success FROM NotificationLog WHERE LogKey = 8"), Texts{"Refused: 550 unknown"});
    EXPECT_EQ(sendAgain(outboxFile(), 7, clock.now()), SentAgain::isGone) << "of before this outbox";
    EXPECT_EQ(sendAgain(outboxFile(), 8, clock.now()), SentAgain::made);
    EXPECT_EQ(sendAgain(outboxFile(), 8, clock.now()), SentAgain::waits) << "a second request";
    EXPECT_EQ(sendAgain(outboxFile(), 9, clock.now()), SentAgain::wasTold) << "it is on its way";
    post.answer("a@b", Result::delivered, "250 OK");
    look();
    EXPECT_EQ(told(), Texts{"a@b: S 51 / B full"});
    EXPECT_EQ(
        rows("SELECT LogKey, DeviceAddress, Success FROM NotificationLog WHERE LogKey > 7 ORDER BY LogKey"),
        (Texts{"8|a@b|Refused: 550 unknown", "9|a@b|250 OK"}));
    EXPECT_EQ(sendAgain(outboxFile(), 9, clock.now()), SentAgain::wasTold);
    EXPECT_EQ(sendAgain(outboxFile(), 8, clock.now()), SentAgain::made)
        << "the old one can be asked for again";
    EXPECT_THROW(sendAgain(host.root() / "none.db", 8, clock.now()), platform::Failure);
    EXPECT_FALSE(std::filesystem::exists(host.root() / "none.db"));
}

}  // namespace
