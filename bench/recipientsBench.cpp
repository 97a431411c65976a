// Times of the operations on recipients, devices and assignments, each beside the same work on the engine's
// C interface, run in turn in this one process. Prints "what | ours | peer | ratio", medians of the runs; the
// ratio is our time by the peer's. Every row comes twice: with a peer that only works, and with one that also
// writes the log that each of the console's procedures writes.
//
// recipients_bench [folder]: the databases are made below the folder, by default in memory. What is written
// is as durable as the console makes it, so on a disk the rows that write tell of little but the disk, and a
// rebuild with its 15,000 statements takes minutes.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>

#include "bench/largeInstallation.h"
#include "bench/recipientsPeer.h"
#include "database/addressDetails.h"
#include "database/assignment.h"
#include "database/devices.h"
#include "database/exclusions.h"
#include "database/recipients.h"

namespace {

namespace fs = std::filesystem;
using namespace mdlDatabase;
using namespace bench;

constexpr int rounds = 7;
constexpr int savesPerRun = 20;

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
        insist(ourResult == peerResult, what + ": the two sides disagree: " + std::to_string(ourResult) +
                                            " and " + std::to_string(peerResult));
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
    return counts.activeDevices * 10000 + counts.recipients * 100 + counts.activeRecipients;
}

// Saves of the recipient with 20 devices. Each save renames him, changes two addresses, takes one device away
// and adds one, so that he keeps his number of devices.
class Saves {
  public:
    explicit Saves(const Engine& reader)
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
        record.syslogEnabled = true;
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

    Prepared devices_;
    long number_ = 0;
};

void compareSaves(Peer& peer, const fs::path& database, bool logging) {
    peer.setLogging(logging);
    const Engine reader = openBare(database);
    Saves saves(reader);
    std::vector<double> ours;
    std::vector<double> theirs;
    for (int round = 0; round <= rounds; ++round) {
        double ourTime = 0;
        double peerTime = 0;
        const long ourCount =
            saves.run([](const RecipientRecord& r) { modifyRecipient(bigRecipient, r); }, ourTime);
        const long peerCount =
            saves.run([&](const RecipientRecord& r) { peer.modify(bigRecipient, r); }, peerTime);
        insist(ourCount == 20 && peerCount == 20, "modifyRecipient: a device was lost or won");
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
    const LargeInstallation place(argc > 1 ? fs::path(argv[1]) : usual);
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
