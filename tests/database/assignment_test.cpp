#include "database/assignment.h"

#include "database/addressDetails.h"
#include "database/deviceType.h"
#include "storeFixture.h"
#include "support/failingRead.h"

namespace {

using namespace mdlDatabase;
using databaseTest::Lines;
using platform::BoxAnswer;

class Assignment : public databaseTest::Store {
  protected:
    // Ann has a pager (3) and failover (4), Ben an e-mail device (5).
    Assignment() {
        makeRecipients({"Ann", "Ben"});
        makeDevice(3, 1, pager, "1");
        makeDevice(4, 1, failover, failoverAddress);
        makeDevice(5, 2, email, "id");
    }
    static DeviceSelection selected(std::initializer_list<long> devices) {
        DeviceSelection selection;
        for (const long device : devices)
            selection.set(selectionKey(device), true);
        return selection;
    }
    void expectFailoverQuestion(BoxAnswer answer) {
        prompts.expect(
            {"You have chosen to enable Failover for this event.  Are you sure you want to do this?",
             "Enable Failover?", platform::BoxIcon::question, platform::BoxButtons::yesNo},
            answer);
    }
    Lines assignments() { return rows("SELECT * FROM EventDevice"); }
};

TEST_F(Assignment, AddingKeepsTheOrderOfTheTicksAndAsksAboutFailover) {
    assign(1, 5, true);
    expectFailoverQuestion(BoxAnswer::no);
    run("INSERT INTO Device VALUES (9, 2, '9', -1)");
    addRecipientToEvent(1, selected({5, 4, 3, 9, 99}), false);
    EXPECT_EQ(assignments(), (Lines{"1|5|-1", "1|5|-1", "1|4|0", "1|3|-1", "1|9|-1"}))
        << "a device that is declined gets its row, and nobody's too, but not one that is gone";
    EXPECT_EQ(logOf("addRecipientToEvent"),
              (Lines{"ERROR: Not enabled, because it is gone or cannot be read: DeviceKey:99",
                     "VerInfo: Adding DeviceKey: 5 (         E-mail) Active:  True to EventKey: 1",
                     "VerInfo: User chose not to enable this failover device.",
                     "VerInfo: Adding DeviceKey: 4 (       Failover) Active: False to EventKey: 1",
                     "VerInfo: Adding DeviceKey: 3 (          Pager) Active:  True to EventKey: 1",
                     "VerInfo: Adding DeviceKey: 9 (          Pager) Active:  True to EventKey: 1"}));
    forgetLog();
    assign(2, 3, true);
    expectFailoverQuestion(BoxAnswer::yes);
    addRecipientToEvent(1, selected({4}), true);
    EXPECT_EQ(assignments(), (Lines{"2|3|-1", "1|4|-1"}));
    EXPECT_EQ(logOf("addRecipientToEvent"),
              (Lines{"VerInfo: User chose to enable this failover device.",
                     "VerInfo: Adding DeviceKey: 4 (       Failover) Active:  True to EventKey: 1"}));
    // Clearing stands even where no row can be written afterwards.
    run("CREATE TRIGGER full BEFORE INSERT ON EventDevice BEGIN SELECT raise(ABORT, 'full'); END");
    addRecipientToEvent(1, selected({3}), true);
    EXPECT_EQ(assignments(), Lines{"2|3|-1"});
    EXPECT_EQ(host.countInLog("Err.Number"), 1);
}

TEST_F(Assignment, ChangingReconcilesTheRowsAndAddsTheRest) {
    assign(1, 3, true);
    assign(1, 5, false);
    assign(2, 3, true);
    DeviceSelection selection = selected({4, 5});
    expectFailoverQuestion(BoxAnswer::yes);
    EXPECT_TRUE(changeRecipientsForEvent(1, selection));
    EXPECT_EQ(assignments(), (Lines{"1|3|0", "1|5|-1", "2|3|-1", "1|4|-1"}));
    EXPECT_EQ(selection.keys(), Lines{"DeviceKey:4"});
    EXPECT_EQ(logOf("changeRecipientsForEvent"),
              (Lines{"VerInfo: Disabling DeviceKey:3 (Pager)", "VerInfo: Enabling DeviceKey:5 (E-mail)"}));
    EXPECT_EQ(logOf("addRecipientToEvent").size(), 2u);

    forgetLog();
    selection.clear();
    EXPECT_FALSE(changeRecipientsForEvent(7, selection));
    selection = selected({3});
    EXPECT_FALSE(changeRecipientsForEvent(7, selection)) << "an event without rows takes all entries";
    EXPECT_EQ(rows("SELECT * FROM EventDevice WHERE EventKey = 7"), Lines{"7|3|-1"});
}

TEST_F(Assignment, FailoverIsAskedForOnlyWhenItIsSwitchedOn) {
    assign(1, 4, true);
    DeviceSelection selection = selected({4});
    EXPECT_TRUE(changeRecipientsForEvent(1, selection));
    EXPECT_EQ(logOf("changeRecipientsForEvent"), Lines{"VerInfo: Enabling DeviceKey:4 (Failover)"});
    selection = selected({});
    EXPECT_TRUE(changeRecipientsForEvent(1, selection));
    EXPECT_EQ(assignments(), Lines{"1|4|0"});

    forgetLog();
    selection = selected({4, 3});
    expectFailoverQuestion(BoxAnswer::no);
    EXPECT_TRUE(changeRecipientsForEvent(1, selection));
    EXPECT_EQ(assignments(), (Lines{"1|4|0", "1|3|-1"}));
    EXPECT_FALSE(selection.contains("DeviceKey:4")) << "or the question would come twice";
    EXPECT_EQ(logOf("changeRecipientsForEvent"),
              Lines{"VerInfo: User chose not to enable this failover device."});

    forgetLog();
    selection = selected({4, 3});
    expectFailoverQuestion(BoxAnswer::yes);
    EXPECT_TRUE(changeRecipientsForEvent(1, selection));
    EXPECT_EQ(assignments(), (Lines{"1|4|-1", "1|3|-1"}));
    EXPECT_EQ(logOf("changeRecipientsForEvent"),
              (Lines{"VerInfo: Enabling DeviceKey:4 (Failover)", "VerInfo: Enabling DeviceKey:3 (Pager)"}));
}

TEST_F(Assignment, AnUnknownTypeSwitchesNothingOnAndClearsNothing) {
    const std::string types = "SELECT DeviceType";
    assign(1, 4, false);
    assign(1, 3, true);
    DeviceSelection selection = selected({4, 5});
    {
        const support::FailingRead read(1, types);
        EXPECT_TRUE(changeRecipientsForEvent(1, selection));
    }
    EXPECT_EQ(assignments(), (Lines{"1|4|0", "1|3|0", "1|5|-1"}));
    EXPECT_FALSE(selection.contains(selectionKey(4))) << "or it would get a second row";
    {
        const support::FailingRead read(2, types);
        EXPECT_FALSE(addRecipientToEvent(1, selected({3, 4}), true));
    }
    // One without a type may be failover as well.
    makeDevice(6, 2, pager, "6");
    run("UPDATE Device SET DeviceType = NULL WHERE DeviceKey = 6");
    EXPECT_FALSE(addRecipientToEvent(1, selected({3, 6}), true));
    EXPECT_EQ(assignments(), (Lines{"1|4|0", "1|3|0", "1|5|-1"}));
    EXPECT_EQ(host.countInLog("ERROR", "getDeviceType", "Err.Number = 94 "), 1);
    // One that is gone is known to be no failover, and the rest is assigned.
    EXPECT_TRUE(addRecipientToEvent(1, selected({3, 99}), true));
    EXPECT_EQ(assignments(), Lines{"1|3|-1"});
    assign(1, 99, false);
    selection = selected({3, 99});
    EXPECT_TRUE(changeRecipientsForEvent(1, selection));
    EXPECT_EQ(assignments(), (Lines{"1|3|-1", "1|99|0"}));
    // Nobody is asked about rows that could not be added.
    forgetLog();
    run("ALTER TABLE EventDevice RENAME TO Gone");
    EXPECT_FALSE(addRecipientToEvent(1, selected({4}), false));
    EXPECT_EQ(logOf("addRecipientToEvent").size(), 1u);
}

TEST_F(Assignment, RemovingARecipientTakesAllHisDevicesOrNone) {
    for (const long device : {3, 4, 5})
        assign(1, device, true);
    assign(2, 3, true);
    EXPECT_TRUE(removeRecipientFromEvent(2, 2)) << "nothing of Ben is on it, and others are";
    run("CREATE TRIGGER kept BEFORE DELETE ON EventDevice WHEN old.DeviceKey = 4 "
        "BEGIN SELECT raise(ABORT, 'kept'); END");
    removeRecipientFromEvent(1, 1);
    EXPECT_EQ(assignments().size(), 4u);
    run("DROP TRIGGER kept");
    EXPECT_TRUE(removeRecipientFromEvent(1, 1));
    EXPECT_EQ(assignments(), (Lines{"1|5|-1", "2|3|-1"}));
    EXPECT_FALSE(removeRecipientFromEvent(1, 2));
    EXPECT_FALSE(removeRecipientFromEvent(1, 2));
    EXPECT_EQ(host.countInLog("Err.Number"), 1);
}

TEST_F(Assignment, AnEventShowsItsDevicesThroughTheAddressDetails) {
    makeDevice(6, 2, pager, "1");
    for (const long device : {5, 6, 3, 4})
        assign(1, device, device != 3);
    run("INSERT INTO AddressDetails VALUES ('1', '1 (Pager)', 3, 3), ('1', '1 (Pager)', 3, 6), "
        "('id', 'Ben (Subscriber)', 1, 5)");
    Lines shown;
    for (platform::Recordset rows = getRecipientsForEvent(1); !rows.EOF_(); rows.moveNext())
        shown.push_back(rows.text("RecipientName") + " " + rows.text("DeviceKey") + " " +
                        rows.text("DisplayName") + (rows.boolean("Active") ? " on" : " off"));
    EXPECT_EQ(shown, (Lines{"Ann 3 1 (Pager) off", "Ben 5 Ben (Subscriber) on", "Ben 6 1 (Pager) on"}))
        << "the same address twice is folded, and a device without details is missing";
}

}  // namespace
