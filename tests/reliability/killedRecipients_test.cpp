// Kills of what writes recipients and their devices.

#include "database/recipients.h"
#include "killedStores.h"
#include "support/scriptedPrompts.h"

namespace {

using namespace killed;
using platform::BoxAnswer;

// A recipient's devices, new ones (above Ben's) without their keys, with their switches on the events.
Lines devicesOf(const TemporaryHost& host, const std::string& recipient) {
    return support::query(
        host.databaseFile(),
        "SELECT iif(DeviceKey > 20, 'new', DeviceKey), DeviceType, DeviceAddress, DeviceActive, (SELECT "
        "group_concat(EventKey || ':' || Active) FROM (SELECT * FROM EventDevice WHERE EventDevice.DeviceKey "
        "= Device.DeviceKey ORDER BY EventKey)) FROM Device JOIN DeviceRecipient USING(DeviceKey) WHERE "
        "RecipientKey = " +
            recipient + " ORDER BY DeviceType, DeviceAddress");
}

// A device between its row and its link has no owner. A kill leaves one at most; no event reaches it, and
// nothing removes it.
void expectBenAndAtMostOneWithoutOwner(const TemporaryHost& host) {
    EXPECT_EQ(devicesOf(host, "6"), Lines{"20|2|b|-1|10:-1"});
    EXPECT_LE(std::stol(one(host.databaseFile(),
                            "SELECT count(*) FROM Device WHERE DeviceKey NOT IN (SELECT DeviceKey FROM "
                            "DeviceRecipient)")),
              1);
    contentOf(host);
}

RecipientRecord recordOf(const std::string& name, const std::string& voiceMail, bool failover) {
    RecipientRecord record;
    record.name = name;
    record.voiceMailDirectoryId = voiceMail;
    record.smtpAddresses = {{"", "s2"}};
    record.snmpTrapEnabled = record.syslogEnabled = true;
    record.syslogHostAddress = "h2";
    record.failoverEnabled = failover;
    return record;
}

TEST(Killed, AddingARecipient) {
    const auto add = [] {
        RecipientRecord record = recordOf("Cid", "v", true);
        record.emailDirectoryId = "v2";
        record.pagerNumbers = {{"", "1"}, {"", "2"}};
        EXPECT_GT(addNewRecipient(record), 6);
    };
    Writes writes{{"recipient", "INSERT INTO Recipients VALUES(7, 'Cid', -1)"}};
    const char* devices[] = {"21, 1, 'v'",  "22, 3, 'v2'",        "23, 2, '1'", "24, 2, '2'",
                             "25, 4, 's2'", "26, 5, 'SNMP TRAP'", "27, 6, 'h2'"};
    for (const char* device : devices)
        addCreation(writes, "some of his devices", device, 7, {});
    addCreation(writes, "all of his devices", "28, 7, 'Failover'", 7, {});
    killInOrder({"add a recipient", add, writes, add, [](const TemporaryHost& host) {
                     EXPECT_EQ(devicesOf(host, "(SELECT max(RecipientKey) FROM Recipients)"),
                               (Lines{"new|1|v|-1|NULL", "new|2|1|-1|NULL", "new|2|2|-1|NULL",
                                      "new|3|v2|-1|NULL", "new|4|s2|-1|NULL", "new|5|SNMP TRAP|-1|NULL",
                                      "new|6|h2|-1|NULL", "new|7|Failover|-1|NULL"}));
                     EXPECT_EQ(devicesOf(host, "5").size(), 8u);
                     expectBenAndAtMostOneWithoutOwner(host);
                 }});
}

// Addresses kept, changed, dropped and new; a switch that comes, one that stays, one that goes.
TEST(Killed, ModifyingARecipient) {
    const auto modify = [] {
        RecipientRecord record = recordOf("Anna", "v2", false);
        record.pagerNumbers = {{"DeviceKey:3", "p1"}, {"DeviceKey:4", "p2 x"}, {"", "p4"}};
        modifyRecipient(ann, record);
    };
    const Lines events{"10", "11"};
    Writes writes{
        {"recipient",
         "UPDATE Recipients SET RecipientName = 'Anna', RecipientActive = -1 WHERE RecipientKey = 5"},
        {"voice mail", "UPDATE Device SET DeviceAddress = 'v2', DeviceActive = -1 WHERE DeviceKey = 1"}};
    addDeletion(writes, 2, "e-mail");
    writes.emplace_back("pagers begun",
                        "UPDATE Device SET DeviceAddress = 'p2 x', DeviceActive = -1 WHERE DeviceKey = 4");
    addCreation(writes, "pagers", "21, 2, 'p4'", ann, events);
    addCreation(writes, "SMTP", "22, 4, 's2'", ann, events);
    addCreation(writes, "trap", "23, 5, 'SNMP TRAP'", ann, events);
    writes.emplace_back("syslog", "UPDATE Device SET DeviceAddress = 'h2' WHERE DeviceKey = 7");
    addDeletion(writes, 5, "pager");
    addDeletion(writes, 6, "SMTP");
    addDeletion(writes, 8, "failover");
    killInOrder({"modify a recipient", modify, writes, modify, [](const TemporaryHost& host) {
                     Lines devices = devicesOf(host, "5");
                     // A trap that was linked, and not yet on the events, is not new to the next save.
                     for (std::string& device : devices)
                         if (device == "new|5|SNMP TRAP|-1|NULL")
                             device = "new|5|SNMP TRAP|-1|10:0,11:0";
                     EXPECT_EQ(devices, (Lines{"1|1|v2|-1|10:-1", "3|2|p1|-1|10:-1,11:0", "4|2|p2 x|-1|NULL",
                                               "new|2|p4|-1|10:0,11:0", "new|4|s2|-1|10:0,11:0",
                                               "new|5|SNMP TRAP|-1|10:0,11:0", "7|6|h2|-1|NULL"}));
                     EXPECT_EQ(one(host.databaseFile(), "SELECT * FROM Recipients WHERE RecipientKey = 5"),
                               "5|Anna|-1");
                     expectBenAndAtMostOneWithoutOwner(host);
                 }});
}

TEST(Killed, DeletingARecipient) {
    const auto remove = [] {
        support::ScriptedPrompts prompts;
        prompts.expect({"Are your sure you want to delete recipient: Ann", "Delete Selected Recipient?",
                        platform::BoxIcon::question, platform::BoxButtons::yesNo},
                       BoxAnswer::yes);
        EXPECT_TRUE(deleteRecipient(ann));
    };
    Writes writes;
    for (long device = 1; device <= 7; ++device)
        addDeletion(writes, device, "a device");
    addDeletion(writes, 8, "the last device");
    writes.emplace_back("recipient deleted", "DELETE FROM Recipients WHERE RecipientKey = 5");
    killInOrder({"delete a recipient", remove, writes,
                 [&] {
        if (countRecipients() == 2)
            remove();
                 },
                 [](const TemporaryHost& host) {
        EXPECT_EQ(one(host.databaseFile(), "SELECT * FROM Recipients"), "6|Ben|-1");
        EXPECT_EQ(one(host.databaseFile(), "SELECT * FROM DeviceRecipient"), "20|6");
        EXPECT_EQ(one(host.databaseFile(), "SELECT * FROM EventDevice"), "10|20|-1");
        expectBenAndAtMostOneWithoutOwner(host);
    }});
}

}  // namespace
