#include "database/recipients.h"

#include "database/devices.h"
#include "storeFixture.h"

namespace {

using namespace mdlDatabase;
using databaseTest::Lines;
using platform::BoxAnswer;

class Recipients : public databaseTest::Store {
  protected:
    const std::string deviceQuery =
        "SELECT Device.*, RecipientKey FROM Device JOIN DeviceRecipient USING (DeviceKey) ORDER BY DeviceKey";
};

TEST_F(Recipients, ANewOneGetsHisDevicesInTheirOrderAndNoEvent) {
    makeRecipients({"Somebody"});
    makeDevice(7, 1, pager, "1");
    assign(1, 7, true);
    RecipientRecord record;
    record.name = " Ann O'Hara ";
    record.voiceMailDirectoryId = "id-1";
    record.emailDirectoryId = "id-3";
    record.pagerNumbers = {{"", "555"}, {"", "444"}};
    record.smtpAddresses = {{"", "a@b"}};
    record.snmpTrapEnabled = record.syslogEnabled = record.failoverEnabled = true;
    record.syslogHostAddress = "10.0.0.1";
    EXPECT_EQ(addNewRecipient(record), 2);
    EXPECT_EQ(value("SELECT * FROM Recipients WHERE RecipientKey = 2"), "2| Ann O'Hara |-1");
    EXPECT_EQ(rows(deviceQuery),
              (Lines{"7|2|1|-1|1", "8|1|id-1|-1|2", "9|3|id-3|-1|2", "10|2|555|-1|2", "11|2|444|-1|2",
                     "12|4|a@b|-1|2", "13|5|SNMP TRAP|-1|2", "14|6|10.0.0.1|-1|2", "15|7|Failover|-1|2"}));
    EXPECT_EQ(value("SELECT count(*) FROM EventDevice"), "1");

    RecipientRecord bare;
    bare.name = "Bare";
    bare.active = false;
    bare.syslogHostAddress = "host";
    EXPECT_EQ(addNewRecipient(bare), 3);
    EXPECT_EQ(value("SELECT RecipientActive FROM Recipients WHERE RecipientKey = 3"), "-1");
    EXPECT_EQ(countDevices(allDeviceTypes, 3), 0) << "only a box that is ticked makes a device";
    EXPECT_EQ(host.countInLog("Err.Number"), 0);
}

TEST_F(Recipients, ARowThatCannotBeWrittenIsNeverTakenForAnother) {
    makeRecipients({"Ann"});
    makeDevice(3, 1, pager, "1");
    run("CREATE TRIGGER full BEFORE INSERT ON Device BEGIN SELECT raise(ABORT, 'full'); END");
    RecipientRecord record;
    record.name = "Ben";
    record.voiceMailDirectoryId = "id";
    EXPECT_EQ(addNewRecipient(record), 2);
    EXPECT_EQ(rows(deviceQuery), Lines{"3|2|1|-1|1"});
    run("CREATE TRIGGER none BEFORE INSERT ON Recipients BEGIN SELECT raise(ABORT, 'none'); END");
    EXPECT_EQ(addNewRecipient(record), 0);
    EXPECT_EQ(logOf("addNewRecipient").size(), 2u);
}

TEST_F(Recipients, DeletingAsksAndTakesTheDevicesFirst) {
    makeRecipients({"Ann", "Ben"});
    makeDevice(3, 1, pager, "1");
    makeDevice(4, 2, pager, "2");
    makeDevice(5, 1, email, "id");
    for (const long device : {3, 4, 5})
        assign(1, device, true);
    const platform::MessageBox question{"Are your sure you want to delete recipient: Ann",
                                        "Delete Selected Recipient?", platform::BoxIcon::question,
                                        platform::BoxButtons::yesNo};
    prompts.expect(question, BoxAnswer::no);
    EXPECT_FALSE(deleteRecipient(1));
    EXPECT_EQ(countRecipients(), 2);
    EXPECT_EQ(logOf("deleteRecipient"), Lines{});

    // What one device's failing delete leaves is still whole and his, and the others go.
    run("CREATE TRIGGER kept BEFORE DELETE ON EventDevice WHEN old.DeviceKey = 3 "
        "BEGIN SELECT raise(ABORT, 'kept'); END");
    prompts.expect(question, BoxAnswer::yes);
    EXPECT_FALSE(deleteRecipient(1));
    EXPECT_EQ(rows("SELECT DeviceKey FROM EventDevice ORDER BY 1"), (Lines{"3", "4"}));
    EXPECT_EQ(rows("SELECT RecipientKey FROM DeviceRecipient ORDER BY 1"), (Lines{"1", "2"}));
    EXPECT_EQ(countRecipients(), 2);
    run("DROP TRIGGER kept");
    forgetLog();
    prompts.expect(question, BoxAnswer::yes);
    EXPECT_TRUE(deleteRecipient(1));
    EXPECT_EQ(logOf("deleteRecipient"), Lines{"VerInfo: Deleting recipient: Ann Key: 1"});
    EXPECT_EQ(rows(deviceQuery), Lines{"4|2|2|-1|2"});
    EXPECT_EQ(rows("SELECT * FROM EventDevice"), Lines{"1|4|-1"});
    EXPECT_EQ(rows("SELECT RecipientName FROM Recipients"), Lines{"Ben"});
}

TEST_F(Recipients, CountsAndStates) {
    makeRecipients({"Zoe", "Ann"});
    makeDevice(3, 1, pager, "1");
    makeDevice(4, 1, pager, "2", false);
    makeDevice(5, 1, voiceMail, "id");
    makeDevice(6, 2, snmpTrap, "SNMP TRAP");
    EXPECT_EQ(countDevices(allDeviceTypes), 4);
    EXPECT_EQ(countDevices(pager), 2);
    EXPECT_EQ(countDevices(pager, 2), 0);
    EXPECT_EQ(countDevices(snmpTrap, 2), 1);
    EXPECT_EQ(countDevices(allDeviceTypes, 1), 3);
    EXPECT_EQ(getDeviceType(5), voiceMail);
    EXPECT_EQ(getDeviceType(99), -1);
    EXPECT_TRUE(isDeviceActive(3));
    EXPECT_FALSE(isDeviceActive(4));
    EXPECT_EQ(getRecipients().text("RecipientName"), "Ann");
    EXPECT_EQ(getRecipient(1).text("RecipientName"), "Zoe");

    run("INSERT INTO AddressDetails VALUES ('id', 'gone', 0, 5), ('1', '1 (Pager)', 3, 3)");
    EXPECT_EQ(getRecipientState(2), recipientActive);
    setRecipientActiveState(2, false);
    EXPECT_EQ(getRecipientState(2), recipientInactive);
    setRecipientActiveState(1, false);
    EXPECT_EQ(getRecipientState(1), recipientUnresolved)
        << "an unresolved device outweighs an inactive recipient";
    const std::set<long> unresolved = recipientsWithInvalidDevices();
    for (platform::Recordset rows = getRecipients(); !rows.EOF_(); rows.moveNext())
        EXPECT_EQ(stateOfRecipient(rows, unresolved), getRecipientState(rows.number("RecipientKey")))
            << "all at once as one by one";
    setRecipientActiveState(1, true);
    EXPECT_EQ(rows("SELECT RecipientActive FROM Recipients ORDER BY 1"), (Lines{"-1", "0"}));
    EXPECT_EQ(host.countInLog("Err.Number"), 0);
}

TEST_F(Recipients, RowsThatAreNotThereFail) {
    EXPECT_FALSE(isDeviceActive(12));
    EXPECT_FALSE(isRecipientActive(13));
    EXPECT_EQ(host.countInLog("Err.Number = -2147220503 Err.Description = Device was not found.  "
                              "DeviceKey = 12 Line: "),
              1);
    EXPECT_EQ(host.countInLog("Err.Number = -2147220503 Err.Description = Recipient was not found.  "
                              "RecipientKey = 13 Line: "),
              1);
}

}  // namespace
