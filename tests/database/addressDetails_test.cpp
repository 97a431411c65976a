#include "database/addressDetails.h"

#include "database/deviceType.h"
#include "database/recipients.h"
#include "storeFixture.h"

namespace {

using namespace mdlDatabase;
using databaseTest::Lines;

class AddressDetails : public databaseTest::Store {
  protected:
    AddressDetails() {
        makeRecipients({"Ann"});
        const std::pair<long, const char*> devices[] = {{voiceMail, "both"},
                                                        {pager, "555"},
                                                        {email, "list"},
                                                        {smtpAddress, "a@b"},
                                                        {snmpTrap, snmpTrapAddress},
                                                        {syslog, "10.0.0.1"},
                                                        {failover, failoverAddress},
                                                        {voiceMail, "lost"}};
        long key = 1;
        for (const auto& [type, address] : devices)
            makeDevice(key++, 1, type, address);
        run("UPDATE Device SET DeviceActive = 0 WHERE DeviceKey = 2;"
            "INSERT INTO AddressDetails VALUES ('old', 'old', 3, 77)");
    }
    void openDirectory(const std::vector<std::string>& statements) {
        host.makeDirectory(statements);
        core::gCorvaneDb.open("Provider=SQLOLEDB.1;Initial Catalog=CorvaneDb");
    }
    Lines details() { return rows("SELECT * FROM AddressDetails ORDER BY DeviceKey"); }
    std::string inactive() {
        return value("SELECT group_concat(DeviceKey) FROM Device WHERE NOT DeviceActive");
    }

    const Lines full{"both|Bo (Subscriber)|1|1",        "555|555 (Pager)|3|2",
                     "list|Li (Distribution List)|2|3", "a@b|a@b (SMTP Address)|4|4",
                     "SNMP TRAP| (SNMP Trap)|5|5",      "10.0.0.1| (SYSLOG)|6|6",
                     "Failover| (FAILOVER)|7|7",        "lost|Address Not Found (DirectoryId = lost)|0|8"};
};

TEST_F(AddressDetails, EveryKindHasItsLabelAndALostEntryCutsItsDeviceOff) {
    openDirectory({"CREATE TABLE GlobalSubscriber(DisplayName, DirectoryId)",
                   "CREATE TABLE DistributionList(DisplayName, DirectoryId)",
                   "INSERT INTO GlobalSubscriber VALUES ('Other', 'other'), ('Bo', 'both')",
                   "INSERT INTO DistributionList VALUES ('Wrong', 'both'), ('Li', 'list')"});
    rebuildAddressDetailsTable();
    EXPECT_EQ(details(), full);
    EXPECT_EQ(inactive(), "2,8");
    EXPECT_EQ(getRecipientState(1), recipientUnresolved);
    rebuildAddressDetailsTable();
    EXPECT_EQ(details(), full);

    // An entry that comes back shows its name and leaves the device off.
    core::gCorvaneDb.close();
    openDirectory({"INSERT INTO GlobalSubscriber VALUES ('Found', 'lost')"});
    rebuildAddressDetailsTable();
    EXPECT_EQ(details().back(), "lost|Found (Subscriber)|1|8");
    EXPECT_EQ(inactive(), "2,8");
    EXPECT_EQ(host.countInLog("Err.Number"), 0);
}

TEST_F(AddressDetails, TheNewerDirectoryIsReadThroughItsViews) {
    openDirectory(
        {"CREATE TABLE S(Id, N)", "INSERT INTO S VALUES ('both', 'Bo'), ('list', 'Li')",
         "CREATE VIEW vw_Subscriber_Global AS SELECT N AS DisplayName, Id AS DirectoryId FROM S WHERE "
         "Id = 'both'",
         "CREATE VIEW vw_DistributionList AS SELECT N AS DisplayName, Id AS DirectoryId FROM S"});
    core::gViewsSupported = true;
    rebuildAddressDetailsTable();
    EXPECT_EQ(details(), full);
    EXPECT_EQ(host.countInLog("Err.Number"), 0);
}

TEST_F(AddressDetails, AnEmptyDirectoryCutsAllOffAndAnUnreadableOneNobody) {
    rebuildAddressDetailsTable();
    EXPECT_EQ(host.countInLog("Err.Number = 3709 "), 2);
    EXPECT_EQ(host.countInLog("Err.Number"), 2);
    EXPECT_EQ(details().size(), 8u);
    EXPECT_EQ(details()[0], "both|Address Not Found (DirectoryId = both)|0|1");
    EXPECT_EQ(inactive(), "2");

    openDirectory({"CREATE TABLE GlobalSubscriber(DisplayName, DirectoryId)"});
    rebuildAddressDetailsTable();
    EXPECT_EQ(inactive(), "2") << "half a directory cannot tell that an entry is gone";
    core::gCorvaneDb.close();
    forgetLog();
    openDirectory({"CREATE TABLE DistributionList(DisplayName, DirectoryId)"});
    rebuildAddressDetailsTable();
    EXPECT_EQ(inactive(), "1,2,3,8");
    EXPECT_EQ(details().size(), 8u);
    EXPECT_EQ(logOf("rebuildAddressDetailsTable"), Lines{});
}

TEST_F(AddressDetails, AnAddressThatCannotBeSearchedHurtsNoOther) {
    openDirectory({"CREATE TABLE GlobalSubscriber(DisplayName, DirectoryId COLLATE NOCASE)",
                   "CREATE TABLE DistributionList(DisplayName, DirectoryId)",
                   "INSERT INTO GlobalSubscriber VALUES ('O', 'O''Brien'), ('Bo', 'BOTH')"});
    run("UPDATE Device SET DeviceAddress = 'O''Brien' WHERE DeviceKey = 3");
    rebuildAddressDetailsTable();
    EXPECT_EQ(details()[0], "both|Bo (Subscriber)|1|1");
    EXPECT_EQ(inactive(), "2,8");
    EXPECT_EQ(host.countInLog("[mdlDatabase]rebuildAddressDetailsTable)   Err.Number = 5 "), 1);
    run("DELETE FROM Device");
    rebuildAddressDetailsTable();
    EXPECT_EQ(details(), Lines{});
}

TEST_F(AddressDetails, ATableThatCannotBeReplacedIsKeptAndTold) {
    openDirectory({"CREATE TABLE GlobalSubscriber(DisplayName, DirectoryId)",
                   "CREATE TABLE DistributionList(DisplayName, DirectoryId)"});
    run("CREATE TRIGGER held BEFORE INSERT ON AddressDetails WHEN NEW.DeviceKey = 7 "
        "BEGIN SELECT raise(ABORT, 'held'); END");
    const auto expectKept = [&] {
        rebuildAddressDetailsTable();
        const Lines told = logOf("rebuildAddressDetailsTable");
        ASSERT_EQ(told.size(), 1u);
        EXPECT_TRUE(told[0].starts_with("ERROR: Err.Number = -2147")) << told[0];
        EXPECT_EQ(details(), Lines{"old|old|3|77"});
        forgetLog();
    };
    expectKept();
    run("DROP TRIGGER held; DELETE FROM Device WHERE DeviceKey <> 2");
    std::filesystem::permissions(host.databaseFile(), std::filesystem::perms::owner_read);
    core::gDatabase.close();
    core::gDatabase.open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + host.databaseFile().string());
    expectKept();
}

TEST_F(AddressDetails, ARebuildTellsItsSuccessAndWhoHasDevicesWithoutARow) {
    EXPECT_TRUE(hasDeviceWithoutDetails(1));
    EXPECT_FALSE(hasDeviceWithoutDetails(2));
    EXPECT_THROW(openRecipientWithDevices(1), platform::Failure);
    run("CREATE TRIGGER held BEFORE INSERT ON AddressDetails BEGIN SELECT raise(ABORT, 'held'); END");
    EXPECT_FALSE(rebuildAddressDetailsTable());
    EXPECT_EQ(details(), Lines{"old|old|3|77"});
    run("DROP TRIGGER held");
    EXPECT_TRUE(rebuildAddressDetailsTable());
    EXPECT_FALSE(hasDeviceWithoutDetails(1));
    EXPECT_EQ(openRecipientWithDevices(1).recordCount(), 8);
}

}  // namespace
