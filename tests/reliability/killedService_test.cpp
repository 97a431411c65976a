// Kills of the service at the points that a crash has to be survived at: no record is lost, and a message
// comes a second time only when it had been sent and that could not be marked any more, under the same key.
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>

#include <fstream>
#include <map>
#include <random>
#include <set>

#include "core/state.h"
#include "service/notifier.h"
#include "service/outbox/inspection.h"
#include "service/sources/hostLog.h"
#include "support/childProcess.h"
#include "support/killHarness.h"
#include "support/temporaryHost.h"

namespace {

using namespace service;

constexpr int recordsAtOnce = 6;
const std::vector<std::string> addresses{"a@b", "c@d", "e@f"};

// A receiver that writes down what it was sent.
class Ledger : public Transport {
  public:
    explicit Ledger(std::filesystem::path file) : file_(std::move(file)) {}
    Outcome send(const Message& message, const Deadline&) override {
        std::ofstream(file_, std::ios::app)
            << message.key + "|" + message.address + "|" + message.subject + "\n";
        return {Result::delivered, "Delivered"};
    }

  private:
    std::filesystem::path file_;
};

class KilledService : public testing::Test {
  protected:
    KilledService() {
        host.openConfiguration();
        std::string statements =
            "UPDATE Configuration SET Value = '0' WHERE Setting = 'EventNotificationInterval';"
            "INSERT INTO Recipients VALUES (1, 'Night', -1);"
            "INSERT INTO Events VALUES (10, 'Disk', -1, '', 4, -1, 0, NULL);"
            "INSERT INTO Contents VALUES (10, 3, NULL, 1, '<Event>', '');";
        for (std::size_t i = 0; i < addresses.size(); ++i) {
            const std::string key = std::to_string(i + 1);
            statements += "INSERT INTO Device VALUES (" + key + ", 4, '" + addresses[i] +
                          "', -1); INSERT INTO DeviceRecipient VALUES (" + key +
                          ", 1); INSERT INTO EventDevice VALUES (10, " + key + ", -1);";
        }
        support::run(host.databaseFile(), statements);
        core::gDatabase.close();
    }
    std::filesystem::path outboxFile() const { return host.root() / "HbQlnSvc.db"; }
    std::filesystem::path ledger() const { return host.root() / "sent"; }
    void write(int count) {
        while (count-- > 0)
            platform::appendEvent(
                {"System", "", "Disk", static_cast<std::uint32_t>(++records), 1, 0, "", "", ""});
    }
    // Lets the service work until it has nothing to do, or is killed at the so-and-so-many-th pass of a
    // point. True when it was killed.
    bool serve(const std::string& point = {}, int passes = 0) {
        support::ChildProcess child([&, passes](const auto& ready) mutable {
            NotifierOptions options;
            options.databaseFile = host.databaseFile();
            options.outboxFile = outboxFile();
            options.pause = std::chrono::hours(1);
            options.isSetUp = [](DeviceKind) { return true; };
            options.delivery.makeTransport = [&](DeviceKind) { return std::make_unique<Ledger>(ledger()); };
            options.delivery.passes = [&](std::string_view passed) {
                if (passed == point && --passes == 0)
                    ::raise(SIGKILL);
            };
            std::vector<std::unique_ptr<Source>> sources;
            sources.push_back(std::make_unique<HostLog>("System"));
            Notifier notifier(std::move(options), std::move(sources));
            notifier.begin();
            ready();
            for (int quiet = 0; quiet < 2;) {
                const auto next = notifier.look();
                pollfd news{notifier.descriptor(), POLLIN, 0};
                const bool waits = viewOutbox(outboxFile()) && !viewOutbox(outboxFile())->waiting.empty();
                quiet = waits || next.count() == 0 || ::poll(&news, 1, 5) > 0 ? 0 : quiet + 1;
            }
            notifier.end();
        });
        child.awaitReady();
        return child.wait() == -SIGKILL;
    }
    // How often each message was sent, by "key|address|id".
    std::map<std::string, int> sent() const {
        std::map<std::string, int> counts;
        std::ifstream stream(ledger());
        for (std::string line; std::getline(stream, line);)
            ++counts[line];
        return counts;
    }
    // Those that were sent, and of which the outbox does not know it.
    std::set<std::string> unmarked() const {
        std::set<std::string> found;
        const auto outbox = viewOutbox(outboxFile());
        for (const auto& [line, count] : sent())
            for (const Outgoing& each : outbox->waiting)
                if (line.substr(0, line.find('|')).ends_with('-' + std::to_string(each.key)))
                    found.insert(line);
        return found;
    }

    support::TemporaryHost host;
    int records = 0;
};

TEST_F(KilledService, LosesNoRecordAndRepeatsOnlyWhatItCouldNotMark) {
    const long kills = support::numberFromEnvironment("QLN_KILLS", 4);
    std::mt19937 random(20261125);
    serve();
    for (const char* point : {"rows committed", "before send", "sent but unmarked", "before the history"}) {
        int killed = 0;
        int repeated = 0;
        for (long i = 0; i < kills; ++i) {
            SCOPED_TRACE(std::string(point) + ", " + std::to_string(i));
            std::filesystem::remove(ledger());
            const int first = records + 1;
            write(recordsAtOnce);
            // The records that are there are one batch, and so may their outcomes be.
            const bool isOnce = std::string_view(point) == "rows committed" ||
                                std::string_view(point) == "before the history";
            const int most = isOnce ? 1 : recordsAtOnce;
            killed += serve(point, std::uniform_int_distribution(1, most)(random));
            const std::set<std::string> again = unmarked();
            write(1);
            serve();
            std::set<std::string> told;
            for (const auto& [line, count] : sent()) {
                EXPECT_EQ(count, again.contains(line) ? 2 : 1) << line;
                told.insert(line.substr(line.find('|') + 1));
            }
            std::set<std::string> expected;
            for (int id = first; id <= records; ++id)
                for (const std::string& address : addresses)
                    expected.insert(address + "|" + std::to_string(id));
            EXPECT_EQ(told, expected);
            EXPECT_EQ(sent().size(), expected.size()) << "each message has one key";
            repeated += static_cast<int>(again.size());
        }
        std::printf("%s: %d kills, %d messages sent twice\n", point, killed, repeated);
        EXPECT_GT(killed, 0) << point;
    }
    EXPECT_EQ(
        support::query(host.databaseFile(), "SELECT Count(*), Count(DISTINCT LogKey) FROM NotificationLog"),
        std::vector<std::string>{std::to_string(records * 3) + "|" + std::to_string(records * 3)});
}

}  // namespace
