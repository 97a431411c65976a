// Times of the operations on recipients, devices and assignments, each beside the same work on the engine's
// C interface, run in turn in this one process. Prints "what | ours | peer | ratio", medians of the runs; the
// ratio is our time by the peer's. Every row comes twice: with a peer that only works, and with one that also
// writes the log that each of the console's procedures writes.
//
// recipients_bench [folder]: the databases are made below the folder, by default in memory. What is written
// is as durable as the console makes it, so on a disk the rows that write tell of little but the disk, and a
// rebuild with its 15,000 statements takes minutes.
#include <sqlite3.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>

#include "core/classLog.h"
#include "core/state.h"
#include "database/addressDetails.h"
#include "database/assignment.h"
#include "database/devices.h"
#include "database/exclusions.h"
#include "database/recipients.h"
#include "host/provision.h"
#include "platform/host.h"
#include "recipientsPeer.h"

namespace {

namespace fs = std::filesystem;
using namespace mdlDatabase;
using bench::Peer;

constexpr int rounds = 7;
constexpr long recipientCount = 5000;
constexpr long deviceCount = 15000;
constexpr long eventCount = 1000;
constexpr long assignmentCount = 20000;
constexpr long subscriberCount = 50000;
constexpr long listCount = 2000;
constexpr long bigRecipient = recipientCount;  // has 20 devices
constexpr long bigFirstDevice = deviceCount - 19;
constexpr int savesPerRun = 20;

class Workplace {
  public:
    explicit Workplace(const fs::path& parent) {
        std::string pattern = (parent / "recipients-bench-XXXXXX").string();
        root_ = ::mkdtemp(pattern.data());
        for (const char* folder : {"Host", "QLNAdmin", "Database"})
            fs::create_directories(root_ / folder);
        platform::host::setFolder(root_ / "Host");
        platform::program::setFile(root_ / "QLNAdmin" / "QLNAdmin");
        host::createTemplateDatabase(database());
        fill();
        core::gDatabase.open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + database().string());
        core::gCorvaneDb.open("Provider=SQLOLEDB.1;Initial Catalog=CorvaneDb");
    }
    ~Workplace() {
        core::gDatabase.close();
        core::gCorvaneDb.close();
        core::resetLog();
        std::error_code ignored;
        fs::remove_all(root_, ignored);
    }
    Workplace(const Workplace&) = delete;
    Workplace& operator=(const Workplace&) = delete;

    fs::path database() const { return root_ / "Database" / "QLNDB.MDB"; }
    fs::path directory() const { return platform::host::directoryDatabase(); }
    fs::path peerLog() const { return root_ / "peer.LOG"; }

  private:
    void fill() const {
        fillDirectory();
        const auto engine = bench::openBare(database());
        bench::runBare(engine.get(), "BEGIN");
        bench::Prepared recipient(engine.get(), "INSERT INTO Recipients VALUES (?1, ?2, ?3)");
        // One of ten is inactive.
        for (long key = 1; key <= recipientCount; ++key)
            recipient.bind(1, key)
                .bind(2, "Recipient " + std::to_string(key * 7919 % 10007))
                .bind(3, key % 10 == 0 && key != bigRecipient ? 0L : -1L)
                .run();
        fillDevices(engine.get());
        bench::Prepared event(
            engine.get(),
            "INSERT INTO Events(EventSource, EventId, EventTitle, EventType, EventActive) VALUES "
            "('Source', ?1, 'Event', 1, -1)");
        for (long count = eventCount - 2; count > 0; --count)
            event.bind(1, count).run();
        bench::Prepared assignment(engine.get(), "INSERT INTO EventDevice VALUES (?1, ?2, ?3)");
        for (long i = 0; i < assignmentCount; ++i)
            assignment.bind(1, i % eventCount + 1)
                .bind(2, i * 7919 % deviceCount + 1)
                .bind(3, i % 3 == 0 ? 0L : -1L)
                .run();
        bench::runBare(engine.get(), "COMMIT");
    }
    // Voice mail, e-mail and pager for everybody, until 20 devices are left for the last recipient.
    static void fillDevices(sqlite3* engine) {
        bench::Prepared device(engine, "INSERT INTO Device VALUES (?1, ?2, ?3, -1)");
        bench::Prepared link(engine, "INSERT INTO DeviceRecipient VALUES (?1, ?2)");
        for (long key = 1; key <= deviceCount; ++key) {
            const bool big = key >= bigFirstDevice;
            long type = key % 3 + 1;
            std::string address = type == pager
                                      ? "555-" + std::to_string(key)
                                      : "id-" + std::to_string(key * 31 % (subscriberCount + listCount));
            if (big) {
                type = key == deviceCount ? syslog : key % 2 == 0 ? pager : smtpAddress;
                address = "address-" + std::to_string(key);
            }
            device.bind(1, key).bind(2, type).bind(3, address).run();
            link.bind(1, key).bind(2, big ? bigRecipient : (key - 1) / 3 + 1).run();
        }
    }
    void fillDirectory() const {
        const auto engine = bench::openBare(directory());
        bench::runBare(
            engine.get(),
            "BEGIN; CREATE TABLE GlobalSubscriber(DisplayName TEXT COLLATE NOCASE, DirectoryId TEXT "
            "COLLATE NOCASE); CREATE TABLE DistributionList(DisplayName TEXT COLLATE NOCASE, DirectoryId "
            "TEXT COLLATE NOCASE); CREATE INDEX S ON GlobalSubscriber(DirectoryId); CREATE INDEX L ON "
            "DistributionList(DirectoryId)");
        bench::Prepared subscriber(engine.get(), "INSERT INTO GlobalSubscriber VALUES (?1, ?2)");
        bench::Prepared list(engine.get(), "INSERT INTO DistributionList VALUES (?1, ?2)");
        for (long i = 0; i < subscriberCount + listCount; ++i)
            (i < subscriberCount ? subscriber : list)
                .bind(1, "Name " + std::to_string(i))
                .bind(2, "id-" + std::to_string(i))
                .run();
        bench::runBare(engine.get(), "COMMIT");
    }

    fs::path root_;
};

using Side = std::function<long()>;

double timed(const Side& side, long& result) {
    const auto start = std::chrono::steady_clock::now();
    result = side();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

// One line of the table. Both sides must give the same result, or the program ends.
void compare(const std::string& what, long units, const Side& ours, const Side& peer) {
    std::vector<double> ourTimes;
    std::vector<double> peerTimes;
    for (int round = 0; round <= rounds; ++round) {
        long ourResult = 0;
        long peerResult = 0;
        const double ourTime = timed(ours, ourResult);
        const double peerTime = timed(peer, peerResult);
        if (ourResult != peerResult)
            bench::stop(what + ": the two sides disagree: " + std::to_string(ourResult) + " and " +
                        std::to_string(peerResult));
        if (round == 0)
            continue;  // warms up
        ourTimes.push_back(ourTime);
        peerTimes.push_back(peerTime);
    }
    const double ourMedian = median(ourTimes);
    const double peerMedian = median(peerTimes);
    const double unit = 1e6 / static_cast<double>(units);
    std::printf("%s | %.2f us | %.2f us | %.2f\n", what.c_str(), ourMedian * unit, peerMedian * unit,
                ourMedian / peerMedian);
    std::fflush(stdout);
}

void compareBoth(Peer& peer, const std::string& what, long units, const Side& ours, const Side& theirs) {
    peer.setLogging(false);
    compare(what, units, ours, theirs);
    peer.setLogging(true);
    compare(what + ", peer with log", units, ours, theirs);
}

// The sum over all events.
Side overEvents(const std::function<long(long)>& one) {
    return [one] {
        long sum = 0;
        for (long event = 1; event <= eventCount; ++event)
            sum += one(event);
        return sum;
    };
}

Side overCounts(const std::function<long(long, long)>& one) {
    return [one] {
        long sum = 0;
        for (long recipient = 1; recipient <= recipientCount; ++recipient)
            for (long type = voiceMail; type <= failover; ++type)
                sum += one(type, recipient) * type;
        return sum;
    };
}

long readRecipients(long event) {
    long sum = 0;
    for (platform::Recordset rows = getRecipientsForEvent(event); !rows.EOF_(); rows.moveNext())
        sum += rows.number("DeviceKey") +
               static_cast<long>(rows.text("RecipientName").size() + rows.text("DisplayName").size());
    return sum;
}

long analyzed(long event) {
    const EventAnalysis counts = analyzeEvent(event);
    return counts.at("ActiveDevices") * 10000 + counts.at("Recipients") * 100 + counts.at("ActiveRecipients");
}

// Saves of the recipient with 20 devices. Each save renames him, changes two addresses, takes one device away
// and adds one, so that he keeps his number of devices.
class Saves {
  public:
    explicit Saves(sqlite3* reader)
        : devices_(
              reader,
              "SELECT d.DeviceKey, d.DeviceType, d.DeviceAddress FROM DeviceRecipient l JOIN Device d ON "
              "d.DeviceKey = l.DeviceKey WHERE l.RecipientKey = ?1 ORDER BY d.DeviceKey") {}

    // The time of the saves alone, without reading what there is to save.
    long run(const std::function<void(const RecipientRecord&)>& save, double& seconds) {
        seconds = 0;
        for (int i = 0; i < savesPerRun; ++i) {
            const RecipientRecord record = next();
            const auto start = std::chrono::steady_clock::now();
            save(record);
            seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        }
        long count = 0;
        for (devices_.bind(1, bigRecipient); devices_.row();)
            ++count;
        return count;
    }

  private:
    RecipientRecord next() {
        RecipientRecord record;
        const std::string number = std::to_string(++number_);
        record.name = "Name " + number;
        record.syslogEnabled = 1;
        record.syslogHostAddress = "host" + number;
        devices_.bind(1, bigRecipient);
        while (devices_.row()) {
            const long type = devices_.number(1);
            auto& list = type == pager ? record.pagerNumbers : record.smtpAddresses;
            if (type != syslog)
                list.push_back({"DeviceKey:" + std::to_string(devices_.number(0)), devices_.text(2)});
        }
        record.pagerNumbers.erase(record.pagerNumbers.begin());
        record.pagerNumbers.front().address = "pager" + number;
        record.smtpAddresses.front().address = "smtp" + number;
        record.pagerNumbers.push_back({"", "new" + number});
        return record;
    }

    bench::Prepared devices_;
    long number_ = 0;
};

void compareSaves(Peer& peer, const fs::path& database, bool logging) {
    peer.setLogging(logging);
    const auto reader = bench::openBare(database);
    Saves saves(reader.get());
    std::vector<double> ours;
    std::vector<double> theirs;
    for (int round = 0; round <= rounds; ++round) {
        double ourTime = 0;
        double peerTime = 0;
        const long ourCount =
            saves.run([](const RecipientRecord& r) { modifyRecipient(bigRecipient, r); }, ourTime);
        const long peerCount =
            saves.run([&](const RecipientRecord& r) { peer.modify(bigRecipient, r); }, peerTime);
        if (ourCount != 20 || peerCount != 20)
            bench::stop("modifyRecipient: a device was lost or won");
        if (round == 0)
            continue;
        ours.push_back(ourTime);
        theirs.push_back(peerTime);
    }
    std::printf("modifyRecipient of one with 20 devices%s | %.2f us | %.2f us | %.2f\n",
                logging ? ", peer with log" : "", median(ours) / savesPerRun * 1e6,
                median(theirs) / savesPerRun * 1e6, median(ours) / median(theirs));
}

}  // namespace

int main(int argc, char** argv) {
    constexpr char memory[] = "/dev/shm";
    const fs::path usual = fs::is_directory(memory) ? fs::path(memory) : fs::temp_directory_path();
    const Workplace place(argc > 1 ? fs::path(argv[1]) : usual);
    Peer peer(place.database(), place.directory(), place.peerLog());
    std::printf("what | ours | peer | ratio\n");
    compare(
        "rebuildAddressDetailsTable, 15,000 devices, 52,000 entries", 1,
        [] {
            rebuildAddressDetailsTable();
            return deviceCount;
        },
        [&] { return peer.rebuildAddressDetails(); });
    compareBoth(peer, "getRecipientsForEvent, each of 1,000 events", eventCount, overEvents(readRecipients),
                overEvents([&](long event) { return peer.recipientsForEvent(event); }));
    compareBoth(peer, "analyzeEvent, each of 1,000 events", eventCount, overEvents(analyzed),
                overEvents([&](long event) { return peer.analyze(event); }));
    compareBoth(peer, "getEventState, over 1,000 events", 1, overEvents(getEventState),
                overEvents([&](long event) { return peer.eventState(event); }));
    compareBoth(peer, "seven countDevices, each of 5,000 recipients", recipientCount,
                overCounts([](long type, long recipient) { return countDevices(type, recipient); }),
                overCounts([&](long type, long recipient) { return peer.countDevices(type, recipient); }));
    compareSaves(peer, place.database(), false);
    compareSaves(peer, place.database(), true);
    return 0;
}
