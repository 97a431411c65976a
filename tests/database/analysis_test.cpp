// Who would be notified of an event, and the table of addresses that the answer joins through.
#include <gtest/gtest.h>

#include <fstream>

#include "core/state.h"
#include "database/addressDetails.h"
#include "database/assignment.h"
#include "database/exclusions.h"
#include "database/recipients.h"
#include "platform/host.h"
#include "support/temporaryHost.h"

namespace {

using namespace mdlDatabase;
using Lines = std::vector<std::string>;

constexpr char openingText[] = "Provider=SQLOLEDB;Initial Catalog=CorvaneDb";

class Analysis : public testing::Test {
  protected:
    void SetUp() override { host.openConfiguration(); }
    Lines rows(const std::string& statement) { return support::query(host.databaseFile(), statement); }
    void run(const std::string& statements) { support::run(host.databaseFile(), statements); }
    long failures() { return host.countInLog("Err.Number"); }

    void addRecipient(long key, const std::string& name, int active) {
        run("INSERT INTO Recipients VALUES (" + std::to_string(key) + ", '" + name + "', " +
            std::to_string(active) + ")");
    }
    void addDevice(long key, long recipient, int type, const std::string& address, int active = -1) {
        const std::string device = std::to_string(key);
        run("INSERT INTO Device VALUES (" + device + ", " + std::to_string(type) + ", '" + address + "', " +
            std::to_string(active) + "); INSERT INTO DeviceRecipient VALUES (" + device + ", " +
            std::to_string(recipient) + ")");
    }
    void assign(long event, long device, int active) {
        run("INSERT INTO EventDevice VALUES (" + std::to_string(event) + ", " + std::to_string(device) +
            ", " + std::to_string(active) + ")");
    }
    // Both layouts, told apart by their display names.
    void openDirectory(const std::string& entries) {
        const std::string columns = " (DisplayName TEXT, DirectoryId TEXT COLLATE NOCASE)";
        for (const char* table :
             {"GlobalSubscriber", "DistributionList", "vw_Subscriber_Global", "vw_DistributionList"})
            host.makeDirectory({"CREATE TABLE " + std::string(table) + columns});
        host.makeDirectory({entries});
        core::gCorvaneDb.open(openingText);
    }
    Lines details() {
        return rows("SELECT DeviceKey, AddressType, DisplayName FROM AddressDetails ORDER BY DeviceKey");
    }
    Lines active() { return rows("SELECT DeviceKey FROM Device WHERE DeviceActive ORDER BY DeviceKey"); }
    Lines recipientsFor(long event) {
        Lines found;
        platform::Recordset list = getRecipientsForEvent(event);
        for (; !list.EOF_(); list.moveNext()) {
            std::string row;
            for (std::size_t i = 0; i < list.fieldCount(); ++i)
                row += (i ? "|" : "") + platform::valueText(list.value(list.fieldName(i)));
            found.push_back(row);
        }
        return found;
    }

    support::TemporaryHost host;
};

EventAnalysis counts(long activeDevices, long recipients, long activeRecipients) {
    return {
        {"ActiveDevices", activeDevices}, {"Recipients", recipients}, {"ActiveRecipients", activeRecipients}};
}

TEST_F(Analysis, EveryKindOfDeviceHasItsLabel) {
    addRecipient(1, "Anna", -1);
    const char* addresses[] = {"id-1", "555", "id-2", "a@b", "SNMP TRAP", "host", "Failover"};
    for (int type = 1; type <= 7; ++type)
        addDevice(type, 1, type, addresses[type - 1], type == 2 ? 0 : -1);
    run("INSERT INTO AddressDetails VALUES ('stale', 'stale', 3, 99)");
    openDirectory("INSERT INTO GlobalSubscriber VALUES ('Plain', 'ID-1'), ('Both', 'id-2')");
    host.makeDirectory({"INSERT INTO DistributionList VALUES ('Lost', 'id-2')",
                        "INSERT INTO vw_Subscriber_Global VALUES ('Other', 'id-9')",
                        "INSERT INTO vw_DistributionList VALUES ('Crew', 'id-2'), ('Team', 'id-1')"});
    const Lines fixed{"4|4|a@b (SMTP Address)", "5|5| (SNMP Trap)", "6|6| (SYSLOG)", "7|7| (FAILOVER)"};
    Lines plain{"1|1|Plain (Subscriber)", "2|3|555 (Pager)", "3|1|Both (Subscriber)"};
    Lines views{"1|2|Team (Distribution List)", "2|3|555 (Pager)", "3|2|Crew (Distribution List)"};
    plain.insert(plain.end(), fixed.begin(), fixed.end());
    views.insert(views.end(), fixed.begin(), fixed.end());

    for (int time = 0; time < 2; ++time) {
        rebuildAddressDetailsTable();
        EXPECT_EQ(details(), plain);
    }
    core::gViewsSupported = true;
    rebuildAddressDetailsTable();
    EXPECT_EQ(details(), views);
    EXPECT_EQ(rows("SELECT count(*) FROM AddressDetails JOIN Device USING (DeviceKey, DeviceAddress)"),
              Lines{"7"});
    EXPECT_EQ(active(), (Lines{"1", "3", "4", "5", "6", "7"}));
    EXPECT_EQ(failures(), 0);

    run("DELETE FROM Device");
    rebuildAddressDetailsTable();
    EXPECT_EQ(details(), Lines{});
}

TEST_F(Analysis, LostEntryIsCutOffAndStaysSo) {
    addRecipient(1, "Anna", -1);
    addDevice(1, 1, 1, "id-1");
    addDevice(2, 1, 3, "lost");
    addDevice(3, 1, 2, "lost");
    openDirectory("INSERT INTO GlobalSubscriber VALUES ('Anna', 'id-1')");
    rebuildAddressDetailsTable();
    EXPECT_EQ(details(), (Lines{"1|1|Anna (Subscriber)", "2|0|Address Not Found (DirectoryId = lost)",
                                "3|3|lost (Pager)"}));
    EXPECT_EQ(active(), (Lines{"1", "3"}));

    host.makeDirectory({"INSERT INTO DistributionList VALUES ('Back', 'lost')"});
    rebuildAddressDetailsTable();
    EXPECT_EQ(details()[1], "2|2|Back (Distribution List)");
    EXPECT_EQ(active(), (Lines{"1", "3"}));

    host.makeDirectory({"DELETE FROM GlobalSubscriber", "DELETE FROM DistributionList"});
    rebuildAddressDetailsTable();
    EXPECT_EQ(active(), Lines{"3"}) << "an empty directory has lost everybody";
    EXPECT_EQ(failures(), 0);
}

TEST_F(Analysis, DirectoryThatCannotBeReadCutsNobodyOff) {
    addRecipient(1, "Anna", -1);
    addDevice(1, 1, 1, "id-1");
    addDevice(2, 1, 3, "list");
    const Lines unknown{"1|0|Address Not Found (DirectoryId = id-1)",
                        "2|0|Address Not Found (DirectoryId = list)"};
    rebuildAddressDetailsTable();
    EXPECT_EQ(details(), unknown);
    EXPECT_EQ(host.countInLog("[mdlDatabase]rebuildAddressDetailsTable)   Err.Number = 3709 "), 2);
    EXPECT_EQ(failures(), 2);

    openDirectory("INSERT INTO GlobalSubscriber VALUES ('Anna', 'id-1')");
    host.makeDirectory({"DROP TABLE DistributionList"});
    rebuildAddressDetailsTable();
    EXPECT_EQ(details(), (Lines{"1|1|Anna (Subscriber)", unknown[1]}));
    EXPECT_EQ(failures(), 3);

    host.makeDirectory({"CREATE TABLE DistributionList (DisplayName TEXT, DirectoryId TEXT)"});
    core::gCorvaneDb.close();
    core::gCorvaneDb.open(openingText);
    std::ofstream(platform::host::directoryDatabase()) << std::string(8192, 'x');
    rebuildAddressDetailsTable();
    EXPECT_EQ(details(), unknown);
    EXPECT_EQ(failures(), 3) << "a damaged or locked file is passed over in silence";
    EXPECT_EQ(active(), (Lines{"1", "2"}));
}

TEST_F(Analysis, AddressThatCannotBeSearchedHurtsNoOther) {
    addRecipient(1, "Anna", -1);
    addDevice(1, 1, 1, "O''Brien");
    addDevice(2, 1, 1, "id-1");
    openDirectory("INSERT INTO GlobalSubscriber VALUES ('Anna', 'id-1'), ('O', 'O''Brien')");
    rebuildAddressDetailsTable();
    EXPECT_EQ(details().back(), "2|1|Anna (Subscriber)");
    EXPECT_EQ(active(), (Lines{"1", "2"}));
    EXPECT_EQ(host.countInLog("[mdlDatabase]rebuildAddressDetailsTable)   Err.Number = 5 "), 1);
}

TEST_F(Analysis, RecipientStateIsUnresolvedBeforeInactive) {
    for (const long key : {1, 2, 3, 4})
        addRecipient(key, "R", key % 2 ? -1 : 0);
    addDevice(13, 3, 1, "lost");
    addDevice(14, 4, 3, "lost");
    addDevice(11, 1, 2, "555");
    run("INSERT INTO AddressDetails VALUES ('lost', 'x', 0, 13), ('lost', 'x', 0, 14), ('555', 'x', 3, 11)");
    const std::pair<long, long> table[] = {{1, 0}, {2, 2}, {3, 1}, {4, 1}};
    for (const auto& [key, state] : table)
        EXPECT_EQ(getRecipientState(key), state) << key;
    const std::set<long> unresolved = recipientsWithInvalidDevices();
    for (platform::Recordset rows = getRecipients(); !rows.EOF_(); rows.moveNext())
        EXPECT_EQ(stateOfRecipient(rows, unresolved), getRecipientState(rows.number("RecipientKey")))
            << "all at once as one by one";
    EXPECT_EQ(failures(), 0);
    EXPECT_EQ(getRecipientState(99), 2);
    EXPECT_EQ(
        host.countInLog("[mdlDatabase]isRecipientActive)     Err.Number = -2147220503 Err.Description = "
                        "Recipient was not found.  RecipientKey = 99 Line: "),
        1);
}

TEST_F(Analysis, RecipientsOfAnEventAreFoundThroughTheirAddresses) {
    addRecipient(1, "zoe", -1);
    addRecipient(2, "Anna", 0);
    addDevice(11, 1, 2, "555");
    addDevice(12, 1, 4, "a@b");
    addDevice(21, 2, 2, "555");
    addDevice(22, 2, 4, "unlisted");
    for (const long device : {11, 12, 21, 22})
        assign(7, device, device == 12 ? 0 : -1);
    assign(8, 11, -1);
    run("INSERT INTO Events (EventKey) VALUES (7), (8)");
    EXPECT_EQ(recipientsFor(7), Lines{}) << "nobody without a row of address details";

    run("INSERT INTO AddressDetails VALUES ('555', '555 (Pager)', 3, 11), ('555', '555 (Pager)', 3, 21), "
        "('A@B', 'a@b (SMTP Address)', 4, 12)");
    EXPECT_EQ(recipientsFor(7), (Lines{"Anna|-1|2|555 (Pager)|21|2", "zoe|-1|2|555 (Pager)|11|1",
                                       "zoe|0|4|a@b (SMTP Address)|12|1"}));
    // Devices that share an address find each other's labels.
    run("UPDATE AddressDetails SET DisplayName = 'other' WHERE DeviceKey = 21");
    EXPECT_EQ(recipientsFor(8), (Lines{"zoe|-1|2|555 (Pager)|11|1", "zoe|-1|2|other|11|1"}));
    EXPECT_EQ(getRecipientsForEvent(8).fieldName(3), "DisplayName");
    EXPECT_EQ(failures(), 0);
}

TEST_F(Analysis, EventCountsFollowRecipientsAndSwitches) {
    run("INSERT INTO Events (EventKey, EventActive) VALUES (7, -1)");
    addRecipient(1, "Anna", -1);
    addRecipient(2, "Bert", 0);
    for (const long device : {11, 12, 13, 21, 14}) {
        addDevice(device, device / 10, 2, std::to_string(device), device == 11 ? 0 : -1);
        if (device != 14)
            run("INSERT INTO AddressDetails VALUES ('" + std::to_string(device) + "', 'x', 3, " +
                std::to_string(device) + ")");
    }
    EXPECT_EQ(analyzeEvent(7), counts(0, 0, 0));
    EXPECT_EQ(getEventState(7), 1);
    assign(7, 13, 0);
    EXPECT_EQ(analyzeEvent(7), counts(0, 1, 1));
    EXPECT_EQ(getEventState(7), 1) << "nobody active";
    assign(7, 11, -1);
    assign(7, 12, -1);
    assign(7, 14, -1);
    EXPECT_EQ(analyzeEvent(7), counts(2, 1, 1)) << "a device's own switch does not matter, its address does";
    EXPECT_EQ(getEventState(7), 0);
    assign(7, 21, -1);
    EXPECT_EQ(analyzeEvent(7), counts(2, 2, 1));
    run("UPDATE Recipients SET RecipientActive = 0");
    EXPECT_EQ(analyzeEvent(7), counts(0, 2, 0));
    EXPECT_EQ(getEventState(7), 1);
    run("UPDATE Recipients SET RecipientActive = -1; UPDATE Events SET EventActive = 0");
    EXPECT_EQ(analyzeEvent(7), counts(3, 2, 2));
    EXPECT_EQ(getEventState(7), 2);
    EXPECT_EQ(failures(), 0);

    EXPECT_EQ(analyzeEvent(99), counts(0, 0, 0));
    EXPECT_EQ(getEventState(99), 2);
    EXPECT_EQ(failures(), 1);
}

}  // namespace
