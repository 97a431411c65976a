// Kills of what writes events, recipients, their assignments, the exclusions and the address details. The
// order of writes is told once more here, as statements; the states that they make, one after the other, are
// all that a kill may leave.
#include <gtest/gtest.h>

#include "database/assignment.h"
#include "database/exclusions.h"
#include "database/openRecordset.h"
#include "database/recipients.h"
#include "killed.h"
#include "support/scriptedPrompts.h"

namespace {

using namespace killed;
using namespace mdlDatabase;
using platform::BoxAnswer;
using Lines = std::vector<std::string>;

// Ann (5) has one or more devices of each kind but the trap, and is on both events; Ben (6) has a pager.
constexpr long ann = 5, event = 10, inactiveEvent = 11;
constexpr char team[] =
    "UPDATE Configuration SET Value = '0' WHERE Setting = 'WarnOnDuplicateMonitoredEvents';"
    "INSERT INTO Events VALUES(10, 'Backup', 17, 'old', 1, -1, 0, '2026-01-02 03:04:05'),"
    "(11, 'Cluster', 5, '', 1, 0, 0, '2026-01-02 03:04:05');"
    "INSERT INTO Contents VALUES(10, 1, 'old.wav', 0, 'old', 'old'), (10, 3, NULL, 0, 'old', 'old');"
    "INSERT INTO Recipients VALUES(5, 'Ann', 0), (6, 'Ben', -1);"
    "INSERT INTO Device VALUES(1, 1, 'v', 0), (2, 3, 'lost', -1), (3, 2, 'p1', -1), (4, 2, 'p2', 0),"
    "(5, 2, 'p3', -1), (6, 4, 's1', -1), (7, 6, 'h', -1), (8, 7, 'Failover', -1), (20, 2, 'b', -1);"
    "INSERT INTO DeviceRecipient SELECT DeviceKey, iif(DeviceKey = 20, 6, 5) FROM Device;"
    "INSERT INTO EventDevice VALUES(10, 1, -1), (10, 3, -1), (10, 5, 0), (10, 8, 0), (10, 20, -1), (11, 2, "
    "-1),"
    "(11, 3, 0), (11, 6, -1);"
    "INSERT INTO AddressDetails SELECT DeviceAddress, 'old', 3, DeviceKey FROM Device;"
    "INSERT INTO Exclusions VALUES(8, 'old', 1), (9, 'older', 2)";

void prepareTeam(TemporaryHost& host) {
    prepareDatabase(host, team);
    host.makeDirectory({"INSERT INTO GlobalSubscriber VALUES('Ann', 'v', ''), ('Annex', 'v2', '')"});
}

// A name for the state after a write, and a statement that does the same as the write.
using Writes = std::vector<std::pair<std::string, std::string>>;

void addDeletion(Writes& writes, long device, const std::string& name) {
    for (const std::string table : {"EventDevice", "DeviceRecipient", "Device"})
        writes.emplace_back(name + (table == "Device" ? " deleted" : " deletion begun"),
                            "DELETE FROM " + table + " WHERE DeviceKey = " + std::to_string(device));
}

// `events` are those that the recipient is on: all of them come in one write.
void addCreation(Writes& writes, const std::string& name, const std::string& device, long recipient,
                 const Lines& events) {
    const std::string key = device.substr(0, device.find(','));
    writes.emplace_back(name + " begun", "INSERT INTO Device VALUES(" + device + ", -1)");
    writes.emplace_back(name + (events.empty() ? "" : " begun"),
                        "INSERT INTO DeviceRecipient VALUES(" + key + ", " + std::to_string(recipient) + ")");
    std::string rows;
    for (const std::string& each : events)
        rows += (rows.empty() ? "(" : ", (") + each + ", " + key + ", 0)";
    if (!rows.empty())
        writes.emplace_back(name, "INSERT INTO EventDevice VALUES" + rows);
}

// Everything that the operations write. What an event is assigned to is there, at any moment.
std::string contentOf(const TemporaryHost& host) {
    EXPECT_EQ(
        one(host.databaseFile(),
            "SELECT count(*) FROM EventDevice WHERE DeviceKey NOT IN (SELECT DeviceKey FROM Device JOIN "
            "DeviceRecipient USING(DeviceKey))"),
        "0");
    std::string content;
    for (const std::string table : {"Events", "Contents", "Recipients", "Device", "DeviceRecipient",
                                    "EventDevice", "AddressDetails", "Exclusions"})
        for (const std::string& row :
             support::query(host.databaseFile(), "SELECT * FROM " + table + " ORDER BY 1, 2"))
            content.append(table).append(" ").append(row).append("\n");
    return content;
}

struct OrderedOperation {
    std::string name;
    std::function<void()> operation;
    Writes writes;
    std::function<void()> onceMore;  // after a start
    std::function<void(const TemporaryHost&)> afterwards;
};

void killInOrder(const OrderedOperation& row) {
    std::map<std::string, std::string> states;
    {
        TemporaryHost host;
        prepareTeam(host);
        states[contentOf(host)] = "nothing";
        for (const auto& [name, statement] : row.writes) {
            support::run(host.databaseFile(), statement);
            states.try_emplace(contentOf(host), name);
        }
    }
    support::killRepeatedly(
        {row.name, prepareTeam,
         [] {
        openDatabase();
        mdlCorvaneDatabase::openCorvaneDB(core::gCorvaneDb);
         },
         row.operation, [&](const TemporaryHost& host) { return lookUp(states, contentOf(host)); },
         [&] {
        startUp();
        row.onceMore();
        },
        row.afterwards});
}

TEST(Killed, AddingAnEvent) {
    const auto add = [] {
        EXPECT_GT(addNewEvent({"Disk", "5", "added", 4, {"a.wav", 1, "s", "n", 2}}), inactiveEvent);
    };
    killInOrder({"add an event",
                 add,
                 {{"inactive event", "INSERT INTO Events VALUES(12, 'Disk', 5, 'added', 4, 0, 0, NULL)"},
                  {"and voice content", "INSERT INTO Contents VALUES(12, 1, 'a.wav', 1, 's', 'n')"},
                  {"and both contents", "INSERT INTO Contents VALUES(12, 3, NULL, 2, 's', 'n')"}},
                 add,
                 [](const TemporaryHost& host) {
        EXPECT_EQ(one(host.databaseFile(),
                      "SELECT group_concat(ContentType) FROM Contents WHERE EventKey = (SELECT "
                      "max(EventKey) FROM Events)"),
                  "1,3");
        EXPECT_EQ(one(host.databaseFile(), "SELECT min(EventActive) FROM Events WHERE EventKey > 11"), "0")
            << "what a kill left half-made stays inactive";
                 }});
}

TEST(Killed, ModifyingAnEvent) {
    const auto modify = [] {
        modifyEvent({event, "Backup", "18", "new", 2, true, {"new.wav", 2, "new", "new", 1}});
    };
    killInOrder(
        {"modify an event",
         modify,
         {{"event",
           "UPDATE Events SET EventId = 18, EventTitle = 'new', EventType = 2, EventLastNotification = "
           "NULL WHERE EventKey = 10"},
          {"and voice content",
           "UPDATE Contents SET ContentAttachment = 'new.wav', ContentPriority = 2, ContentSubject = "
           "'new', ContentNote = 'new' WHERE ContentType = 1 AND EventKey = 10"},
          {"and e-mail content",
           "UPDATE Contents SET ContentPriority = 1, ContentSubject = 'new', ContentNote = 'new' WHERE "
           "ContentType = 3 AND EventKey = 10"}},
         modify,
         [](const TemporaryHost& host) {
        EXPECT_EQ(one(host.databaseFile(), "SELECT * FROM Events WHERE EventKey = 10"),
                  "10|Backup|18|new|2|-1|0|NULL");
        EXPECT_EQ(support::query(host.databaseFile(), "SELECT * FROM Contents WHERE EventKey = 10"),
                  (Lines{"10|1|new.wav|2|new|new", "10|3|NULL|1|new|new"}));
         }});
}

TEST(Killed, DeletingAnEvent) {
    const auto remove = [] {
        support::ScriptedPrompts prompts;
        prompts.expect({"Are your sure you want to delete event: Backup (17)", "Delete Selected Event?",
                        platform::BoxIcon::question, platform::BoxButtons::yesNo},
                       BoxAnswer::yes);
        EXPECT_TRUE(deleteEvent(event, "Backup (17)"));
    };
    killInOrder({"delete an event",
                 remove,
                 {{"contents gone", "DELETE FROM Contents WHERE EventKey = 10"},
                  {"and devices", "DELETE FROM EventDevice WHERE EventKey = 10"},
                  {"and event", "DELETE FROM Events WHERE EventKey = 10"}},
                 remove,
                 [](const TemporaryHost& host) {
        EXPECT_EQ(one(host.databaseFile(),
                      "SELECT (SELECT count(*) FROM Events WHERE EventKey = 10) + (SELECT count(*) FROM "
                      "Contents WHERE EventKey = 10) + (SELECT count(*) FROM EventDevice WHERE EventKey "
                      "= 10)"),
                  "0");
                 }});
}

TEST(Killed, ActivatingAnEvent) {
    const auto activate = [] { setEventActiveState(inactiveEvent, true); };
    killInOrder(
        {"activate an event",
         activate,
         {{"active", "UPDATE Events SET EventActive = -1, EventLastNotification = NULL WHERE EventKey = 11"}},
         activate,
         [](const TemporaryHost& host) {
        EXPECT_EQ(one(host.databaseFile(), "SELECT * FROM Events WHERE EventKey = 11"),
                  "11|Cluster|5||1|-1|0|NULL");
         }});
}

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

DeviceSelection selected(std::initializer_list<long> devices) {
    DeviceSelection selection;
    for (const long device : devices)
        selection.set(selectionKey(device), true);
    return selection;
}

std::function<void(const TemporaryHost&)> expectAssignments(const Lines& expected) {
    return [expected](const TemporaryHost& host) {
        EXPECT_EQ(support::query(host.databaseFile(), "SELECT * FROM EventDevice WHERE EventKey = 10"),
                  expected);
        EXPECT_EQ(one(host.databaseFile(), "SELECT count(*) FROM EventDevice WHERE EventKey <> 10"), "3");
    };
}

// Two are switched on, the failover device after its question; two off; one stays; two are new.
TEST(Killed, ChangingTheAssignmentOfAnEvent) {
    const auto change = [] {
        support::ScriptedPrompts prompts;
        if (!openForReading("SELECT Active FROM EventDevice WHERE EventKey = 10 AND DeviceKey = 8")
                 .boolean("Active"))
            prompts.expect(
                {"You have chosen to enable Failover for this event.  Are you sure you want to do this?",
                 "Enable Failover?", platform::BoxIcon::question, platform::BoxButtons::yesNo},
                BoxAnswer::yes);
        DeviceSelection selection = selected({7, 3, 8, 5, 4});
        EXPECT_TRUE(changeRecipientsForEvent(event, selection));
    };
    const std::string update = "UPDATE EventDevice SET Active = ",
                      where = " WHERE EventKey = 10 AND DeviceKey = ";
    killInOrder(
        {"change the assignment of an event",
         change,
         {{"some switches", update + "0" + where + "1"},
          {"some switches", update + "-1" + where + "5"},
          {"some switches", update + "-1" + where + "8"},
          {"all switches", update + "0" + where + "20"},
          {"and one of two new devices", "INSERT INTO EventDevice VALUES(10, 7, -1)"},
          {"and both", "INSERT INTO EventDevice VALUES(10, 4, -1)"}},
         change,
         expectAssignments({"10|1|0", "10|3|-1", "10|5|-1", "10|8|-1", "10|20|0", "10|7|-1", "10|4|-1"})});
}

TEST(Killed, AssigningAnEventAnew) {
    const auto assign = [] { addRecipientToEvent(event, selected({20, 3, 4}), true); };
    killInOrder({"assign an event anew",
                 assign,
                 {{"cleared", "DELETE FROM EventDevice WHERE EventKey = 10"},
                  {"and some rows", "INSERT INTO EventDevice VALUES(10, 20, -1)"},
                  {"and some rows", "INSERT INTO EventDevice VALUES(10, 3, -1)"},
                  {"and all rows", "INSERT INTO EventDevice VALUES(10, 4, -1)"}},
                 assign,
                 expectAssignments({"10|20|-1", "10|3|-1", "10|4|-1"})});
}

TEST(Killed, TakingARecipientOffAnEvent) {
    const auto remove = [] { EXPECT_TRUE(removeRecipientFromEvent(event, ann)); };
    killInOrder({"take a recipient off an event",
                 remove,
                 {{"all his devices", "DELETE FROM EventDevice WHERE EventKey = 10 AND DeviceKey <> 20"}},
                 remove,
                 expectAssignments({"10|20|-1"})});
}

TEST(Killed, RewritingTheExclusions) {
    const auto rewrite = [] {
        core::Dictionary<long> exclusions;
        for (const auto& [source, id] : {std::pair("old", 1L), std::pair("b", -1L), std::pair("c", 7L)})
            exclusions.set(source, id);
        replaceExclusions(exclusions);
    };
    killInOrder({"rewrite the exclusions",
                 rewrite,
                 {{"empty table", "DELETE FROM Exclusions"},
                  {"new rows", "INSERT INTO Exclusions VALUES(10, 'old', 1), (11, 'b', -1), (12, 'c', 7)"}},
                 rewrite,
                 [](const TemporaryHost& host) {
        EXPECT_EQ(support::query(host.databaseFile(),
                                 "SELECT EventSource, EventId FROM Exclusions ORDER BY ExclusionKey"),
                  (Lines{"old|1", "b|-1", "c|7"}));
                 }});
}

TEST(Killed, RebuildingTheAddressDetails) {
    const Lines details{
        "'v', 'Ann (Subscriber)', 1, 1", "'lost', 'Address Not Found (DirectoryId = lost)', 0, 2",
        "'p1', 'p1 (Pager)', 3, 3",      "'p2', 'p2 (Pager)', 3, 4",
        "'p3', 'p3 (Pager)', 3, 5",      "'s1', 's1 (SMTP Address)', 4, 6",
        "'h', ' (SYSLOG)', 6, 7",        "'Failover', ' (FAILOVER)', 7, 8",
        "'b', 'b (Pager)', 3, 20"};
    std::string rowsAtOnce = "DELETE FROM AddressDetails;";
    for (const std::string& row : details)
        rowsAtOnce += "INSERT INTO AddressDetails VALUES(" + row + ");";
    const Writes writes{{"lost device off", "UPDATE Device SET DeviceActive = 0 WHERE DeviceKey = 2"},
                        {"all rows", rowsAtOnce}};
    killInOrder({"rebuild the address details", rebuildAddressDetailsTable, writes,
                 rebuildAddressDetailsTable,
                 [&](const TemporaryHost& host) {
        EXPECT_EQ(support::query(host.databaseFile(),
                                 "SELECT quote(DeviceAddress) || ', ' || quote(DisplayName) || ', ' || "
                                 "AddressType || ', ' || DeviceKey FROM AddressDetails"),
                  details);
        EXPECT_EQ(
            one(host.databaseFile(), "SELECT group_concat(DeviceKey) FROM Device WHERE NOT DeviceActive"),
            "1,2,4");
                 }});
}

}  // namespace
