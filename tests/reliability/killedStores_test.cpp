// Kills of what writes events, their assignments, the exclusions and the address details.

#include "killedStores.h"

#include "database/assignment.h"
#include "database/exclusions.h"
#include "database/openRecordset.h"
#include "support/scriptedPrompts.h"

namespace {

using namespace killed;
using platform::BoxAnswer;

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
