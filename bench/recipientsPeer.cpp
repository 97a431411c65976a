#include "recipientsPeer.h"

#include <fcntl.h>
#include <sys/time.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>

#include "database/deviceType.h"

namespace bench {

using namespace mdlDatabase;

namespace {

constexpr char recipientsForEventQuery[] =
    "SELECT DISTINCT r.RecipientName, e.Active, d.DeviceType, a.DisplayName, d.DeviceKey, r.RecipientKey "
    "FROM EventDevice e JOIN Events v ON v.EventKey = e.EventKey JOIN Device d ON d.DeviceKey = e.DeviceKey "
    "JOIN DeviceRecipient l ON l.DeviceKey = d.DeviceKey JOIN Recipients r ON r.RecipientKey = "
    "l.RecipientKey "
    "JOIN AddressDetails a ON a.DeviceAddress = d.DeviceAddress WHERE e.EventKey = ?1 ORDER BY "
    "r.RecipientName";

}  // namespace

Peer::Peer(const std::filesystem::path& database, const std::filesystem::path& directory,
           const std::filesystem::path& log)
    : engine_(openBare(database)),
      directory_(openBare(directory)),
      log_(::open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600)) {
    insist(log_ >= 0, "cannot write " + log.string());
}

Peer::~Peer() {
    ::close(log_);
}

Prepared& Peer::statement(const char* text) {
    return statements_.try_emplace(text, engine_, text).first->second;
}

Prepared& Peer::inDirectory(const char* text) {
    return statements_.try_emplace(text, directory_, text).first->second;
}

// Two lines of the console's form: time, level, tag, and the second one with its times.
void Peer::called(std::string_view procedure) {
    if (!logging_)
        return;
    for (const bool leaving : {false, true}) {
        timeval now{};
        ::gettimeofday(&now, nullptr);
        tm local{};
        ::localtime_r(&now.tv_sec, &local);
        std::array<char, 256> line{};
        const double seconds = static_cast<double>(now.tv_usec) / 1e6;
        const int length =
            leaving ? std::snprintf(
                          line.data(), line.size(),
                          "%02d:%02d:%02d    Info:(%45s) Exiting  %s_0 Start: %.7g End: %.7g - Elapsed: "
                          "%.6f\n",
                          local.tm_hour, local.tm_min, local.tm_sec, procedure.data(), procedure.data(),
                          seconds, seconds, seconds)
                    : std::snprintf(line.data(), line.size(), "%02d:%02d:%02d    Info:(%45s) Entering %s_0\n",
                                    local.tm_hour, local.tm_min, local.tm_sec, procedure.data(),
                                    procedure.data());
        insist(::write(log_, line.data(), static_cast<std::size_t>(length)) == length,
               "the log cannot be written");
    }
}

long Peer::rebuildAddressDetails() {
    called("[mdlDatabase]rebuildAddressDetailsTable");
    std::vector<Stored> devices;
    Prepared& all = statement("SELECT DeviceKey, DeviceType, DeviceAddress FROM Device");
    while (all.row())
        devices.push_back({all.number(0), all.number(1), all.text(2)});
    statement("DELETE FROM AddressDetails").run();
    Prepared& insert = statement("INSERT INTO AddressDetails VALUES (?1, ?2, ?3, ?4)");
    Prepared& subscriber = inDirectory("SELECT DisplayName FROM GlobalSubscriber WHERE DirectoryId = ?1");
    Prepared& list = inDirectory("SELECT DisplayName FROM DistributionList WHERE DirectoryId = ?1");
    for (const Stored& device : devices) {
        std::string name = device.address + " (Pager)";
        long type = addressPager;
        if (device.type != pager) {
            if (subscriber.bind(1, device.address).row()) {
                name = subscriber.text(0) + " (Subscriber)";
                type = addressSubscriber;
            } else if (list.bind(1, device.address).row()) {
                name = list.text(0) + " (Distribution List)";
                type = addressDistributionList;
            } else {
                name = "Address Not Found (DirectoryId = " + device.address + ")";
                type = addressNotFound;
            }
            subscriber.reset();
            list.reset();
        }
        insert.bind(1, device.address).bind(2, name).bind(3, type).bind(4, device.key).run();
    }
    return static_cast<long>(devices.size());
}

long Peer::recipientsForEvent(long event) {
    called("[mdlDatabase]getRecipientsForEvent");
    long sum = 0;
    for (Prepared& rows = statement(recipientsForEventQuery).bind(1, event); rows.row();)
        sum += rows.number(4) + static_cast<long>(rows.text(0).size() + rows.text(3).size());
    return sum;
}

bool Peer::active(long recipient) {
    called("[mdlDatabase]isRecipientActive");
    Prepared& row = statement("SELECT RecipientActive FROM Recipients WHERE RecipientKey = ?1");
    const bool found = row.bind(1, recipient).row() && row.number(0) != 0;
    row.reset();
    return found;
}

long Peer::analyze(long event) {
    called("[mdlDatabase]analyzeEvent");
    called("[mdlDatabase]getRecipientsForEvent");
    std::vector<std::pair<long, bool>> assigned;
    for (Prepared& rows = statement(recipientsForEventQuery).bind(1, event); rows.row();)
        assigned.emplace_back(rows.number(5), rows.number(1) != 0);
    long devices = 0;
    long recipients = 0;
    long activeRecipients = 0;
    for (const auto& [recipient, on] : assigned)
        devices += on && active(recipient) ? 1 : 0;
    long before = 0;
    for (const auto& [recipient, on] : assigned) {
        if (recipient == before)
            continue;
        before = recipient;
        ++recipients;
        activeRecipients += active(recipient) ? 1 : 0;
    }
    return devices * 10000 + recipients * 100 + activeRecipients;
}

long Peer::eventState(long event) {
    called("[mdlDatabase]getEventState");
    const long counts = analyze(event);
    const bool complete = counts / 10000 != 0 && counts / 100 % 100 != 0 && counts % 100 != 0;
    called("[mdlDatabase]isEventActive");
    Prepared& row = statement("SELECT EventActive FROM Events WHERE EventKey = ?1");
    const bool on = row.bind(1, event).row() && row.number(0) != 0;
    row.reset();
    return on ? (complete ? 0 : 1) : 2;
}

long Peer::countDevices(long type, long recipient) {
    called("[mdlDatabase]countDevices");
    Prepared& row = statement(
        "SELECT count(d.DeviceKey) FROM DeviceRecipient l JOIN Device d ON d.DeviceKey = l.DeviceKey JOIN "
        "Recipients r ON r.RecipientKey = l.RecipientKey WHERE r.RecipientKey = ?1 AND d.DeviceType = ?2");
    row.bind(1, recipient).bind(2, type).row();
    const long count = row.number(0);
    row.reset();
    return count;
}

void Peer::rewrite(long device, const std::string& address) {
    statement("UPDATE Device SET DeviceAddress = ?1, DeviceActive = -1 WHERE DeviceKey = ?2")
        .bind(1, address)
        .bind(2, device)
        .run();
}

void Peer::create(long recipient, long type, const std::string& address) {
    statement("INSERT INTO Device(DeviceType, DeviceAddress, DeviceActive) VALUES (?1, ?2, -1)")
        .bind(1, type)
        .bind(2, address)
        .run();
    called("[mdlDatabase]getLastKey");
    Prepared& last = statement("SELECT max(DeviceKey) FROM Device");
    last.row();
    const long key = last.number(0);
    last.reset();
    called("[mdlDatabase]linkDeviceRecipient");
    statement("INSERT INTO DeviceRecipient VALUES (?1, ?2)").bind(1, key).bind(2, recipient).run();
    called("[mdlDatabase]addToExistingEvents");
    std::vector<long> events;
    Prepared& rows = statement(
        "SELECT DISTINCT e.EventKey FROM DeviceRecipient l JOIN EventDevice e ON e.DeviceKey = l.DeviceKey "
        "WHERE l.RecipientKey = ?1 AND e.DeviceKey <> ?2");
    rows.bind(1, recipient).bind(2, key);
    while (rows.row())
        events.push_back(rows.number(0));
    statement("BEGIN IMMEDIATE").run();
    for (const long event : events)
        statement("INSERT INTO EventDevice VALUES (?1, ?2, 0)").bind(1, event).bind(2, key).run();
    statement("COMMIT").run();
}

void Peer::remove(long device) {
    called("[mdlDatabase]deleteDevice");
    statement("DELETE FROM EventDevice WHERE DeviceKey = ?1").bind(1, device).run();
    statement("DELETE FROM DeviceRecipient WHERE DeviceKey = ?1").bind(1, device).run();
    statement("DELETE FROM Device WHERE DeviceKey = ?1").bind(1, device).run();
}

void Peer::saveList(long recipient, long type, const std::vector<Stored>& stored,
                    const std::vector<AddressEntry>& entries) {
    std::vector<long> leaving;
    for (const Stored& device : stored) {
        if (device.type != type)
            continue;
        const std::string nodeKey = "DeviceKey:" + std::to_string(device.key);
        const auto entry = std::find_if(entries.begin(), entries.end(),
                                        [&](const AddressEntry& each) { return each.nodeKey == nodeKey; });
        if (entry == entries.end())
            leaving.push_back(device.key);
        else if (entry->address != device.address)
            rewrite(device.key, entry->address);
    }
    for (const AddressEntry& entry : entries) {
        if (entry.nodeKey.empty())
            create(recipient, type, entry.address);
    }
    std::for_each(leaving.begin(), leaving.end(), [&](long key) { remove(key); });
}

// Knows of the record what the row changes: his name, lists of addresses, and the syslog device's rewriting.
void Peer::modify(long recipient, const RecipientRecord& record) {
    called("[mdlDatabase]modifyRecipient");
    statement("UPDATE Recipients SET RecipientName = ?1, RecipientActive = -1 WHERE RecipientKey = ?2")
        .bind(1, record.name)
        .bind(2, recipient)
        .run();
    std::vector<Stored> stored;
    Prepared& rows = statement(
        "SELECT d.DeviceKey, d.DeviceType, d.DeviceAddress FROM DeviceRecipient l JOIN Device d ON "
        "d.DeviceKey = "
        "l.DeviceKey WHERE l.RecipientKey = ?1");
    rows.bind(1, recipient);
    while (rows.row())
        stored.push_back({rows.number(0), rows.number(1), rows.text(2)});
    saveList(recipient, pager, stored, record.pagerNumbers);
    saveList(recipient, smtpAddress, stored, record.smtpAddresses);
    for (const Stored& device : stored) {
        if (device.type == syslog)
            rewrite(device.key, record.syslogHostAddress);
    }
}

}  // namespace bench
