#include "database/events.h"

#include "database/settings.h"
#include "storeFixture.h"
#include "support/failingRead.h"

namespace {

using namespace mdlDatabase;
using databaseTest::Lines;
using platform::BoxAnswer;
using platform::BoxButtons;
using platform::BoxIcon;

constexpr long hiddenEvent = 1;
constexpr long catchAllEvent = 2;

class Events : public databaseTest::Store {
  protected:
    Lines events() { return rows("SELECT * FROM Events ORDER BY EventKey"); }
    Lines contentsOf(long key) {
        return rows(
            "SELECT ContentType, ContentAttachment, ContentPriority, ContentSubject, ContentNote FROM "
            "Contents WHERE EventKey = " +
            std::to_string(key) + " ORDER BY ContentType");
    }
    long failures() { return host.countInLog("Err.Number"); }
    void expectDuplicate(const std::string& source, const std::string& id, BoxAnswer answer) {
        prompts.expect({"A duplicate of this event source and id was found.\nEvent Source: " + source +
                            "   Event Id:" + id + "\n\nAre you sure you want to create this event?",
                        "Duplicate Monitored Event", BoxIcon::question, BoxButtons::yesNo},
                       answer);
    }
};

NewEvent newEvent(const std::string& source, const std::string& id) {
    return {source, id, "Title", 2, {"voice.wav", 2, "Subject", "Note", 0}};
}

ModifiedEvent changed(long key) {
    return {key, "Changed", "-1", "Other", 4, true, {"other.wav", 0, "S", "N", 2}};
}

const Lines newContents{"1|voice.wav|2|Subject|Note", "3|NULL|0|Subject|Note"};
const Lines changedContents{"1|other.wav|0|S|N", "3|NULL|2|S|N"};

TEST_F(Events, NewOnesAreInactiveWithBothContentsAndNoDevices) {
    const long key = addNewEvent(newEvent("Disk", "7"));
    EXPECT_EQ(key, 3);
    EXPECT_EQ(events().back(), "3|Disk|7|Title|2|0|0|NULL");
    EXPECT_EQ(contentsOf(key), newContents);
    EXPECT_EQ(rows("SELECT count(*) FROM Contents WHERE EventKey > 2"), Lines{"2"});
    EXPECT_EQ(rows("SELECT count(*) FROM EventDevice"), Lines{"0"});
    EXPECT_EQ(failures(), 0);
}

TEST_F(Events, DuplicatesAreAskedAboutWhileTheSettingSaysSo) {
    const long first = addNewEvent(newEvent("Disk", "7"));
    EXPECT_EQ(addNewEvent(newEvent("Disk", "-1")), first + 1);
    EXPECT_EQ(addNewEvent(newEvent("Disk", "8")), first + 2);
    EXPECT_EQ(addNewEvent(newEvent("Disk ", "7")), first + 3) << "texts are never trimmed";

    const Lines before = events();
    expectDuplicate("disk", "7", BoxAnswer::no);
    EXPECT_EQ(addNewEvent(newEvent("disk", "7")), first);
    expectDuplicate("Disk", "-1", BoxAnswer::cancel);
    EXPECT_EQ(addNewEvent(newEvent("Disk", "-1")), first + 1);
    EXPECT_EQ(events(), before);
    EXPECT_EQ(rows("SELECT count(*) FROM Contents WHERE EventKey > 2"), Lines{"8"});
    {
        const support::FailingRead setting(1, "FROM Configuration");
        expectDuplicate("Disk", "7", BoxAnswer::no);
        EXPECT_EQ(addNewEvent(newEvent("Disk", "7")), first);
    }
    EXPECT_EQ(events(), before);
    EXPECT_EQ(failures(), 1);

    expectDuplicate("Disk", "7", BoxAnswer::yes);
    long next = first + 4;
    EXPECT_EQ(addNewEvent(newEvent("Disk", "7")), next);
    for (const char* off : {"0", "1", ""}) {
        setConfigurationSetting("WarnOnDuplicateMonitoredEvents", off);
        EXPECT_EQ(addNewEvent(newEvent("Disk", "7")), ++next) << off;
    }
    EXPECT_EQ(events().size(), before.size() + 4);
    EXPECT_EQ(failures(), 1);
}

TEST_F(Events, HalfMadeOneStaysInactiveAndHealsWithTheNextSave) {
    run("ALTER TABLE Contents RENAME TO Hidden");
    EXPECT_EQ(addNewEvent(newEvent("Disk", "7")), 0);
    EXPECT_EQ(events().back(), "3|Disk|7|Title|2|0|0|NULL");
    EXPECT_GT(failures(), 0);
    run("ALTER TABLE Hidden RENAME TO Contents");
    modifyEvent(changed(3));
    EXPECT_EQ(events().back(), "3|Changed|-1|Other|4|-1|0|NULL");
    EXPECT_EQ(contentsOf(3), changedContents);

    // An event without its id could neither be seen nor deleted again.
    EXPECT_EQ(addNewEvent(newEvent("Disk", "99999999999")), 0);
    EXPECT_EQ(rows("SELECT count(*) FROM Events WHERE EventId IS NULL"), Lines{"0"});
    // Nor is one complete whose content is there in part.
    NewEvent partial = newEvent("Disk", "8");
    partial.content.emailPriority = 1L << 40;
    EXPECT_EQ(addNewEvent(partial), 0);
    run("DELETE FROM Contents WHERE EventKey > 3");
    // Contents of an event that could not be written go to no other event.
    run("CREATE TRIGGER full BEFORE INSERT ON Events BEGIN SELECT RAISE(ABORT, 'refused'); END");
    EXPECT_EQ(addNewEvent(newEvent("Disk", "7")), 0);
    EXPECT_EQ(contentsOf(3), changedContents);
    EXPECT_EQ(rows("SELECT count(*) FROM Contents WHERE EventKey > 2"), Lines{"2"});
}

TEST_F(Events, SavingRewritesTheEventAndForgetsItsLastNotification) {
    const long key = addNewEvent(newEvent("Disk", "7"));
    const long other = addNewEvent(newEvent("Disk", "8"));
    run("UPDATE Events SET EventActive = -1, EventLastNotification = '2026-11-24 14:05:09'; "
        "DELETE FROM Contents WHERE EventKey = 3 AND ContentType = 1; "
        "UPDATE Contents SET ContentAttachment = 'kept.wav' WHERE ContentType = 3");
    modifyEvent(changed(key));
    EXPECT_EQ(events()[2], "3|Changed|-1|Other|4|-1|0|NULL");
    EXPECT_EQ(contentsOf(key), (Lines{"1|other.wav|0|S|N", "3|kept.wav|2|S|N"}));
    EXPECT_EQ(events()[3], "4|Disk|8|Title|2|-1|0|2026-11-24 14:05:09");
    EXPECT_EQ(contentsOf(other), (Lines{newContents[0], "3|kept.wav|0|Subject|Note"}));
    modifyEvent(changed(catchAllEvent));
    EXPECT_EQ(rows("SELECT EventCollection FROM Events WHERE EventKey = 2"), Lines{"-1"});

    const Lines before = events();
    modifyEvent(changed(99));
    EXPECT_EQ(events(), before);
    EXPECT_EQ(contentsOf(99), changedContents);
    EXPECT_EQ(failures(), 0);
}

TEST_F(Events, DeletingAsksAndTakesDependentsFirst) {
    const long key = addNewEvent(newEvent("Disk", "7"));
    const long other = addNewEvent(newEvent("Disk", "8"));
    run("INSERT INTO EventDevice VALUES (3, 1, -1), (3, 2, 0), (4, 1, -1); CREATE TABLE Trace (name);"
        "CREATE TRIGGER a AFTER DELETE ON Events BEGIN INSERT INTO Trace VALUES ('Events'); END;"
        "CREATE TRIGGER b AFTER DELETE ON EventDevice BEGIN INSERT INTO Trace VALUES ('EventDevice'); END;"
        "CREATE TRIGGER c AFTER DELETE ON Contents BEGIN INSERT INTO Trace VALUES ('Contents'); END");
    const Lines before = events();
    prompts.expect({"You can not delete this event.  You can only deactivate it.", "Can Not Delete Event",
                    BoxIcon::information, BoxButtons::ok},
                   BoxAnswer::ok);
    EXPECT_FALSE(deleteEvent(catchAllEvent, "All"));
    const platform::MessageBox question{"Are your sure you want to delete event: Disk \"7\"",
                                        "Delete Selected Event?", BoxIcon::question, BoxButtons::yesNo};
    for (const BoxAnswer answer : {BoxAnswer::no, BoxAnswer::cancel}) {
        prompts.expect(question, answer);
        EXPECT_FALSE(deleteEvent(key, "Disk \"7\""));
    }
    EXPECT_EQ(events(), before);
    EXPECT_EQ(rows("SELECT count(*) FROM Trace"), Lines{"0"});
    EXPECT_EQ(host.countInLog("Deleting event"), 0);

    prompts.expect(question, BoxAnswer::yes);
    EXPECT_TRUE(deleteEvent(key, "Disk \"7\""));
    EXPECT_EQ(rows("SELECT * FROM Trace"),
              (Lines{"Contents", "Contents", "EventDevice", "EventDevice", "Events"}));
    EXPECT_EQ(events(), (Lines{before[0], before[1], before[3]}));
    EXPECT_EQ(contentsOf(other), newContents);
    EXPECT_EQ(rows("SELECT * FROM EventDevice"), Lines{"4|1|-1"});
    EXPECT_EQ(host.countInLog("[mdlDatabase]deleteEvent)   Deleting event: Disk \"7\" Key: 3"), 1);
    EXPECT_EQ(failures(), 0);
}

TEST_F(Events, ActivationRestartsNotificationAndDeactivationKeepsItsTime) {
    const auto state = [&] {
        return rows("SELECT EventActive, EventLastNotification FROM Events WHERE EventKey = 2");
    };
    run("UPDATE Events SET EventActive = -1, EventLastNotification = '2026-11-24 14:05:09'");
    EXPECT_TRUE(isEventActive(catchAllEvent));
    setEventActiveState(catchAllEvent, false);
    EXPECT_EQ(state(), Lines{"0|2026-11-24 14:05:09"});
    EXPECT_FALSE(isEventActive(catchAllEvent));
    setEventActiveState(catchAllEvent, true);
    EXPECT_EQ(state(), Lines{"-1|NULL"});
    EXPECT_EQ(events()[0], "1|QLNTest|10001|$$IGNORE|4|-1|0|2026-11-24 14:05:09");
    EXPECT_EQ(failures(), 0);

    EXPECT_FALSE(isEventActive(99));
    EXPECT_EQ(
        host.countInLog("[mdlDatabase]isEventActive)   Err.Number = -2147220503 Err.Description = Event "
                        "was not found.  EventKey = 99 Line: "),
        1);
    EXPECT_EQ(failures(), 1);
    setEventActiveState(99, true);
    EXPECT_GT(failures(), 1);
}

TEST_F(Events, FindingTakesTheFirstAndNeverWrites) {
    setConfigurationSetting("WarnOnDuplicateMonitoredEvents", "0");
    const long first = addNewEvent(newEvent("Disk", "7"));
    addNewEvent(newEvent("Disk", "7"));
    const long quoted = addNewEvent(newEvent("O'Brien", "7"));
    EXPECT_EQ(findEvent("DISK", "7"), first);
    EXPECT_EQ(findEvent("Disk", "-1"), -1);
    EXPECT_EQ(failures(), 0);
    EXPECT_EQ(findEvent("O''Brien", "7"), quoted) << "the source goes into the statement as it is";
}

TEST_F(Events, ListHasTheCatchAllFirstAndNeverTheHiddenOne) {
    for (const char* source : {"zeta", "Beta", "alpha"})
        addNewEvent(newEvent(source, "7"));
    platform::Recordset list = getEvents();
    Lines sources;
    while (list.next())
        sources.push_back(list.text("EventSource"));
    EXPECT_EQ(sources, (Lines{"MeridaneCorvane", "alpha", "Beta", "zeta"}));
    EXPECT_EQ(getIgnoreEventKey(), hiddenEvent);
    run("DELETE FROM Events WHERE EventKey = 1");
    EXPECT_EQ(getIgnoreEventKey(), -1);
    EXPECT_EQ(failures(), 0);
}

TEST_F(Events, DefaultContentOverwritesOrIsAdded) {
    setConfigurationSetting("DefaultEmailSubject", "Own subject");
    setConfigurationSetting("DefaultEmailBody", "Own body");
    const Lines defaults{"1|QLN_Default_ENU.wav|1|Own subject|Own body", "3|NULL|1|Own subject|Own body"};
    const long key = addNewEvent(newEvent("Disk", "7"));
    for (const long event : {hiddenEvent, key}) {
        setDefaultContentForEvent(event);
        EXPECT_EQ(contentsOf(event), defaults);
    }
    run("DELETE FROM Contents WHERE EventKey = 3");
    setDefaultContentForEvent(key);
    EXPECT_EQ(contentsOf(key), defaults);
    EXPECT_EQ(failures(), 0);
}

}  // namespace
