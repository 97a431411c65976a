#include <map>
#include <random>
#include <set>

#include "database/devices.h"
#include "database/recipients.h"
#include "storeFixture.h"

namespace {

using namespace mdlDatabase;
using databaseTest::Lines;

class ModifyRecipient : public databaseTest::Store {
  protected:
    Lines devices() { return rows("SELECT * FROM Device ORDER BY DeviceKey"); }
    // Deletions, creations and their consequences, in the order in which they were called.
    Lines calls() {
        Lines names;
        for (const std::string& line : host.logLines())
            for (const char* name : {"deleteDevice", "linkDeviceRecipient", "addToExistingEvents"})
                if (line.find("Entering [mdlDatabase]" + std::string(name)) != std::string::npos)
                    names.emplace_back(name);
        return names;
    }
    // One device of each kind, keys 1 to 7, the pager (2) also on the event that the others are on.
    void makeFull(bool active = true) {
        makeRecipients({"Ann"});
        const char* addresses[] = {"v", "p", "e", "s", snmpTrapAddress, "h", failoverAddress};
        for (long type = 1; type <= 7; ++type)
            makeDevice(type, 1, type, addresses[type - 1], active);
        assign(9, 2, true);
    }
    RecipientRecord unchanged() {
        RecipientRecord record;
        record.name = "Ann";
        record.voiceMailDirectoryId = "v";
        record.emailDirectoryId = "e";
        record.pagerNumbers = {{"DeviceKey:2", "p"}};
        record.smtpAddresses = {{"devicekey:4", "s"}};
        record.snmpTrapEnabled = record.syslogEnabled = record.failoverEnabled = true;
        record.syslogHostAddress = "h";
        return record;
    }
};

TEST_F(ModifyRecipient, NothingChangedWritesTheRecipientAndTheSyslogDevice) {
    makeFull();
    run("CREATE TABLE Written(What); CREATE TRIGGER r AFTER UPDATE ON Recipients BEGIN INSERT INTO Written "
        "VALUES ('recipient'); END; CREATE TRIGGER d AFTER UPDATE ON Device BEGIN INSERT INTO Written VALUES "
        "('device ' || new.DeviceKey); END");
    const Lines before = devices();
    modifyRecipient(1, unchanged());
    EXPECT_EQ(devices(), before);
    EXPECT_EQ(logOf("modifyRecipient"), Lines{"Info: Activating Syslog device for Ann (h)"});
    EXPECT_EQ(rows("SELECT * FROM Written"), (Lines{"recipient", "device 6"}));
}

TEST_F(ModifyRecipient, EveryKindIsCreated) {
    makeRecipients({"Old"});
    RecipientRecord record = unchanged();
    record.name = "Ann";
    record.active = false;
    record.pagerNumbers = {{"", "1"}, {"", "2"}};
    record.smtpAddresses = {{"", "s"}};
    modifyRecipient(1, record);
    EXPECT_EQ(logOf("modifyRecipient"),
              (Lines{"Info: Creating voicemail device for Ann (v)", "Info: Creating email device for Ann (e)",
                     "Info: Creating pager device for Ann (1)", "Info: Creating pager device for Ann (2)",
                     "Info: Creating SMTP device for Ann (s)",
                     "Info: Creating SNMP Trap device for Ann (SNMP TRAP)",
                     "Info: Creating Syslog device for Ann (h)",
                     "Info: Creating Failover device for Ann (Failover)"}));

    run("DELETE FROM Device; DELETE FROM DeviceRecipient");
    forgetLog();
    RecipientRecord bare;
    bare.name = "Ann";
    modifyRecipient(1, bare);
    EXPECT_EQ(rows("SELECT * FROM Recipients"), Lines{"1|Ann|-1"}) << "the box's 1 is stored as true";
    EXPECT_EQ(
        logOf("modifyRecipient"),
        (Lines{"Info: No voicemail device was added for Ann", "Info: No email device was added for Ann",
               "Info: No SNMP Trap device was added for Ann", "Info: No Syslog device was added for Ann",
               "Info: No Failover device was added for Ann"}));
}

TEST_F(ModifyRecipient, ChangedAddressesKeepTheirKeysAndSwitchTheDeviceOn) {
    makeFull(false);
    RecipientRecord record = unchanged();
    record.name = "Anna";
    record.voiceMailDirectoryId = "V";  // another case is another address
    record.pagerNumbers[0].address = "p2";
    record.smtpAddresses[0].address = "s2";
    record.syslogHostAddress = "h2";
    modifyRecipient(1, record);
    EXPECT_EQ(logOf("modifyRecipient"), (Lines{"Info: Modifying voicemail device for Anna Prev: v New: V",
                                               "Info: Modifying pager device for Anna Prev: p New: p2",
                                               "Info: Modifying SMTP device for Anna Prev: s New: s2",
                                               "Info: Activating Syslog device for Anna (h)"}));
}

TEST_F(ModifyRecipient, SingleAddressesGoAtOnceAndTheOthersLast) {
    makeFull();
    RecipientRecord record;
    record.name = "Ann";
    record.emailDirectoryId = "e";
    record.pagerNumbers = {{"", "p"}};  // the same number anew is another device
    modifyRecipient(1, record);
    EXPECT_EQ(logOf("modifyRecipient"),
              (Lines{"Info: Deleting voicemail device for Ann (v)", "Info: Deleting pager device for Ann (p)",
                     "Info: Creating pager device for Ann (p)", "Info: Deleting SMTP device for Ann (s)",
                     "Info: Deleting SNMP Trap device for Ann (SNMP TRAP)",
                     "Info: Deleting Syslog device for Ann (h)",
                     "Info: Deleting Failover device for Ann (Failover)"}));
    EXPECT_EQ(calls(), (Lines{"deleteDevice", "linkDeviceRecipient", "addToExistingEvents", "deleteDevice",
                              "deleteDevice", "deleteDevice", "deleteDevice", "deleteDevice"}));
    EXPECT_EQ(devices(), (Lines{"3|3|e|-1", "8|2|p|-1"}));
    EXPECT_EQ(rows("SELECT * FROM EventDevice"), Lines{"9|8|0"})
        << "the new device met the event of the old one, silent";
}

TEST_F(ModifyRecipient, WithoutTheRecipientNothingIsWritten) {
    makeFull();
    const Lines before = devices();
    RecipientRecord record;
    record.name = "Nobody";
    modifyRecipient(5, record);
    EXPECT_EQ(logOf("modifyRecipient"),
              Lines{"ERROR: Could not find a recipient with RecipientKey = 5 Name: Nobody"});
    EXPECT_EQ(devices(), before);
}

TEST_F(ModifyRecipient, AnAbandonedSaveLosesNoDevice) {
    makeFull();
    run("CREATE TRIGGER full BEFORE INSERT ON Device BEGIN SELECT raise(ABORT, 'full'); END");
    RecipientRecord record = unchanged();
    record.emailDirectoryId = "e2";
    record.pagerNumbers.assign(11, {"", "new"});
    record.failoverEnabled = false;
    modifyRecipient(1, record);
    EXPECT_EQ(host.countInLog("Error count exceeded, forcing exit from [mdlDatabase]modifyRecipient"), 1);
    EXPECT_EQ(devices(), (Lines{"1|1|v|-1", "2|2|p|-1", "3|3|e2|-1", "4|4|s|-1", "5|5|SNMP TRAP|-1",
                                "6|6|h|-1", "7|7|Failover|-1"}));
    EXPECT_EQ(value("SELECT count(*) FROM DeviceRecipient"), "7");
}

TEST_F(ModifyRecipient, DevicesThatCannotBeReadAreNotStoredASecondTime) {
    makeFull();
    run("ALTER TABLE DeviceRecipient RENAME TO Gone");
    RecipientRecord record = unchanged();
    record.name = "Anna";
    modifyRecipient(1, record);
    EXPECT_EQ(logOf("modifyRecipient").size(), 1u);
    EXPECT_EQ(value("SELECT RecipientName FROM Recipients"), "Anna");
    EXPECT_EQ(value("SELECT count(*) FROM Device"), "7");

    // Nor does one get devices who cannot be read himself.
    run("ALTER TABLE Gone RENAME TO DeviceRecipient; ALTER TABLE Recipients RENAME TO Gone");
    record.pagerNumbers = {{"", "new"}};
    record.emailDirectoryId.clear();
    const Lines before = devices();
    forgetLog();
    modifyRecipient(1, record);
    EXPECT_EQ(logOf("modifyRecipient").size(), 1u);
    EXPECT_EQ(devices(), before);
}

// Random recipients and random edits of them, held against a plain model of what a save means.
class ModifyRandomly : public testing::Test {
  protected:
    struct Device {
        long key = 0;  // 0 for one that the save creates
        long type = 0;
        std::string address;
        bool active = true;
        std::map<long, bool> events;  // event to its assignment's switch
        bool leaves = false;          // at the end of the save
    };
    using Devices = std::vector<Device>;

    // Where every statement's sync costs nothing, so that thousands of saves are affordable.
    static std::string fastFolder() {
        const std::string before = std::filesystem::temp_directory_path().string();
        if (std::filesystem::is_directory("/dev/shm"))
            ::setenv("TMPDIR", "/dev/shm", 1);
        return before;
    }
    ModifyRandomly() { host.openConfiguration(); }
    ~ModifyRandomly() override { ::setenv("TMPDIR", before_.c_str(), 1); }

    long upTo(long most) { return std::uniform_int_distribution<long>(0, most)(random); }
    bool chance() { return upTo(1) == 1; }
    std::string anAddress() { return "a" + std::to_string(upTo(3)); }

    Devices randomStored(long& nextKey) {
        Devices stored;
        for (long type = 1; type <= 7; ++type) {
            const bool list = type == pager || type == smtpAddress;
            for (long count = upTo(list ? 3 : 1); count > 0; --count) {
                Device device{nextKey++, type, anAddress(), chance(), {}, false};
                for (long event = 11; event <= 14; ++event)
                    if (upTo(2) == 0)
                        device.events[event] = chance();
                stored.push_back(device);
            }
        }
        return stored;
    }

    std::vector<AddressEntry> randomList(const Devices& stored, long type) {
        std::vector<AddressEntry> entries;
        for (const Device& device : stored)
            if (device.type == type && upTo(3) != 0)
                entries.push_back({(chance() ? "DeviceKey:" : "DEVICEkey:") + std::to_string(device.key),
                                   chance() ? device.address : anAddress()});
        for (long count = upTo(2); count > 0; --count)
            entries.push_back({"", anAddress()});
        std::shuffle(entries.begin(), entries.end(), random);
        return entries;
    }

    RecipientRecord randomRecord(const Devices& stored) {
        RecipientRecord record;
        record.name = "Name" + anAddress();
        record.active = chance();
        record.voiceMailDirectoryId = chance() ? anAddress() : "";
        record.emailDirectoryId = chance() ? anAddress() : "";
        record.pagerNumbers = randomList(stored, pager);
        record.smtpAddresses = randomList(stored, smtpAddress);
        record.snmpTrapEnabled = chance();
        record.syslogEnabled = chance();
        record.syslogHostAddress = anAddress();
        record.failoverEnabled = chance();
        return record;
    }

    static void create(Devices& devices, long type, const std::string& address) {
        Device created{0, type, address, true, {}, false};
        for (const Device& other : devices)
            for (const auto& [event, active] : other.events)
                created.events[event] = false;
        devices.push_back(created);
    }

    // What the save shall make of the devices.
    static Devices expected(Devices devices, const RecipientRecord& record) {
        const auto rewrite = [](Device& device, const std::string& address) {
            device.active = device.active || device.address != address;
            device.address = address;
        };
        const auto one = [&](long type) {
            return std::find_if(devices.begin(), devices.end(),
                                [&](const Device& d) { return d.type == type; });
        };
        const auto single = [&](long type, const std::string& wanted) {
            if (const auto found = one(type); found != devices.end() && wanted.empty())
                devices.erase(found);
            else if (found != devices.end())
                rewrite(*found, wanted);
            else if (!wanted.empty())
                create(devices, type, wanted);
        };
        const auto list = [&](long type, const std::vector<AddressEntry>& entries) {
            std::map<std::string, std::string> kept;
            for (const AddressEntry& entry : entries)
                if (!entry.nodeKey.empty())
                    kept[entry.nodeKey.substr(std::string("DeviceKey:").size())] = entry.address;
            for (Device& device : devices)
                if (const auto entry = kept.find(std::to_string(device.key)); device.type != type)
                    continue;
                else if (entry == kept.end())
                    device.leaves = true;
                else
                    rewrite(device, entry->second);
            for (const AddressEntry& entry : entries)
                if (entry.nodeKey.empty())
                    create(devices, type, entry.address);
        };
        const auto onOrOff = [&](long type, long box, const std::string& address) {
            const auto found = one(type);
            if (found == devices.end() && box == 1)
                create(devices, type, address);
            else if (found != devices.end() && box == 0)
                found->leaves = found->active || type == syslog;
            else if (found != devices.end()) {
                found->active = true;
                if (type == syslog)
                    found->address = address;
            }
        };
        single(voiceMail, record.voiceMailDirectoryId);
        single(email, record.emailDirectoryId);
        list(pager, record.pagerNumbers);
        list(smtpAddress, record.smtpAddresses);
        onOrOff(snmpTrap, record.snmpTrapEnabled, snmpTrapAddress);
        onOrOff(syslog, record.syslogEnabled, record.syslogHostAddress);
        onOrOff(failover, record.failoverEnabled, failoverAddress);
        std::erase_if(devices, [](const Device& device) { return device.leaves; });
        return devices;
    }

    // Sorted lines "key|type|address|active|event:switch...", with 0 for a key from `firstNewKey` on.
    static std::multiset<std::string> described(const Devices& devices, long firstNewKey) {
        std::multiset<std::string> lines;
        for (const Device& device : devices) {
            std::string line = std::to_string(device.key >= firstNewKey ? 0 : device.key) + "|" +
                               std::to_string(device.type) + "|" + device.address + "|" +
                               (device.active ? "-1" : "0");
            for (const auto& [event, active] : device.events)
                line += "|" + std::to_string(event) + ":" + (active ? "-1" : "0");
            lines.insert(line);
        }
        return lines;
    }

    void write(const Devices& devices, const std::string& recipient) {
        std::string statements = "BEGIN;";
        for (const Device& device : devices) {
            const std::string key = std::to_string(device.key);
            statements += "INSERT INTO Device VALUES (" + key + "," + std::to_string(device.type) + ",'" +
                          device.address + "'," + (device.active ? "-1" : "0") +
                          ");INSERT INTO DeviceRecipient VALUES (" + key + "," + recipient + ");";
            for (const auto& [event, active] : device.events)
                statements += "INSERT INTO EventDevice VALUES (" + std::to_string(event) + "," + key + "," +
                              (active ? "-1" : "0") + ");";
        }
        support::run(host.databaseFile(), statements + "COMMIT");
    }

    Devices read(const std::string& recipient) {
        Devices devices;
        platform::Recordset rows;
        rows.open(
            "SELECT Device.*, EventKey, Active FROM DeviceRecipient JOIN Device USING (DeviceKey) LEFT "
            "JOIN EventDevice USING (DeviceKey) WHERE RecipientKey = " +
                recipient + " ORDER BY DeviceKey",
            core::gDatabase, platform::CursorType::staticCursor);
        while (rows.next()) {
            const long key = rows.number("DeviceKey");
            if (devices.empty() || devices.back().key != key)
                devices.push_back({key,
                                   rows.number("DeviceType"),
                                   rows.text("DeviceAddress"),
                                   rows.boolean("DeviceActive"),
                                   {},
                                   false});
            if (!rows.isNull("EventKey"))
                devices.back().events[rows.number("EventKey")] = rows.boolean("Active");
        }
        return devices;
    }

    std::string before_ = fastFolder();
    support::TemporaryHost host;
    support::ScriptedPrompts prompts;
    std::mt19937 random{20261124};
};

TEST_F(ModifyRandomly, LeavesWhatTheRecordSays) {
    constexpr int pairs = 2000;
    constexpr char orphans[] =
        "SELECT (SELECT count(*) FROM Device WHERE DeviceKey NOT IN (SELECT DeviceKey FROM DeviceRecipient)) "
        "+ "
        "(SELECT count(*) FROM DeviceRecipient WHERE DeviceKey NOT IN (SELECT DeviceKey FROM Device)) + "
        "(SELECT count(*) FROM EventDevice WHERE DeviceKey NOT IN (SELECT DeviceKey FROM Device)) + "
        "(SELECT count(*) - count(DISTINCT EventKey || ':' || DeviceKey) FROM EventDevice)";
    support::run(host.databaseFile(), "INSERT INTO Recipients VALUES (1, 'Ann', -1), (2, 'Bystander', -1)");
    for (int pair = 0; pair < pairs && !HasFailure(); ++pair) {
        SCOPED_TRACE("pair " + std::to_string(pair));
        long nextKey = 1;
        const Devices others = randomStored(nextKey);
        const Devices stored = randomStored(nextKey);
        const RecipientRecord record = randomRecord(stored);
        write(others, "2");
        write(stored, "1");
        modifyRecipient(1, record);
        EXPECT_EQ(described(read("1"), nextKey), described(expected(stored, record), nextKey));
        EXPECT_EQ(described(read("2"), nextKey), described(others, nextKey));
        EXPECT_EQ(support::query(host.databaseFile(), orphans), Lines{"0"});
        EXPECT_EQ(support::query(host.databaseFile(), "SELECT * FROM Recipients WHERE RecipientKey = 1"),
                  Lines{"1|" + record.name + (record.active ? "|-1" : "|0")});
        support::run(
            host.databaseFile(),
            "BEGIN; DELETE FROM Device; DELETE FROM DeviceRecipient; DELETE FROM EventDevice; UPDATE "
            "sqlite_sequence SET seq = 0 WHERE name = 'Device'; COMMIT");
    }
    EXPECT_EQ(host.countInLog("Err.Number"), 0);
}

}  // namespace
