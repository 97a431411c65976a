#include "database/exclusions.h"

#include "database/deviceType.h"
#include "database/recipients.h"
#include "storeFixture.h"

namespace {

using namespace mdlDatabase;
using databaseTest::Lines;
using platform::BoxAnswer;

class Exclusions : public databaseTest::Store {
  protected:
    Lines exclusions() { return rows("SELECT * FROM Exclusions ORDER BY ExclusionKey"); }
};

TEST_F(Exclusions, AreAddedChangedAndDeletedByKey) {
    EXPECT_EQ(addNewExclusion(" It's ", 70000), 0);
    EXPECT_EQ(addNewExclusion("b", -1), 1);
    EXPECT_EQ(addNewExclusion("B", -1), 2) << "the same pair may stand twice";
    modifyExclusion(1, 7);
    modifyExclusion(9, 7);
    EXPECT_EQ(exclusions(), (Lines{"0| It's |70000", "1|b|7", "2|B|-1"}));
    EXPECT_EQ(getExclusion(1).number("EventID"), 7);
    Lines order;
    for (platform::Recordset rows = getExclusions(); !rows.EOF_(); rows.moveNext())
        order.push_back(rows.text("ExclusionKey"));
    EXPECT_EQ(order, (Lines{"0", "2", "1"}));

    const platform::MessageBox question{"Are your sure you want to delete exclusion:b",
                                        "Delete Selected Exclusion?", platform::BoxIcon::question,
                                        platform::BoxButtons::yesNo};
    prompts.expect(question, BoxAnswer::no);
    EXPECT_FALSE(deleteExclusion(1));
    EXPECT_EQ(exclusions().size(), 3u);
    prompts.expect(question, BoxAnswer::yes);
    EXPECT_TRUE(deleteExclusion(1));
    EXPECT_EQ(exclusions(), (Lines{"0| It's |70000", "2|B|-1"}));
    EXPECT_EQ(logOf("deleteExclusion"), Lines{"VerInfo: Deleting exclusion: b Key: 1"});
    EXPECT_EQ(host.countInLog("Err.Number"), 0);
    run("CREATE TRIGGER full BEFORE INSERT ON Exclusions BEGIN SELECT raise(ABORT, 'full'); END");
    EXPECT_EQ(addNewExclusion("c", 1), 0) << "not the highest key, which is another's";
}

TEST_F(Exclusions, ReplacingRewritesTheTableWithNewKeys) {
    addNewExclusion("old", 1);
    core::Dictionary<long> dictionary;
    dictionary.set("z", -1);
    dictionary.set("a", 3);
    dictionary.set("z", 4);
    replaceExclusions(dictionary);
    EXPECT_EQ(exclusions(), (Lines{"1|z|4", "2|a|3"}));
    EXPECT_EQ(host.countInLog("Err.Number"), 0);

    // The old rows are gone even when the new ones, all or none, cannot be written.
    run("CREATE TRIGGER full BEFORE INSERT ON Exclusions WHEN new.EventSource = 'a' "
        "BEGIN SELECT raise(ABORT, 'full'); END");
    replaceExclusions(dictionary);
    EXPECT_EQ(exclusions(), Lines{});
    EXPECT_EQ(host.countInLog("Err.Number"), 1);
    run("INSERT INTO Exclusions VALUES (9, 'x', 1)");
    dictionary.clear();
    replaceExclusions(dictionary);
    EXPECT_EQ(exclusions(), Lines{});
}

class EventHealth : public databaseTest::Store {
  protected:
    // Event 1 with one recipient of three devices, two of them active on it.
    EventHealth() {
        makeRecipients({"Ann", "Ben"});
        for (const long device : {3, 4, 5}) {
            makeDevice(device, 1, pager, std::to_string(device), false);
            assign(1, device, device != 5);
        }
        makeDevice(6, 2, pager, "6");
        run("INSERT INTO AddressDetails SELECT DeviceAddress, DeviceAddress, 3, DeviceKey FROM Device;"
            "UPDATE Events SET EventActive = -1 WHERE EventKey = 1");
    }
};

TEST_F(EventHealth, CountsSwitchesOfTheEventAndOfRecipientsOnly) {
    EXPECT_EQ(analyzeEvent(1), (EventAnalysis{2, 1, 1})) << "a device's own switch plays no part";
    EXPECT_EQ(analyzeEvent(2), (EventAnalysis{0, 0, 0}));
    setRecipientActiveState(1, false);
    EXPECT_EQ(analyzeEvent(1), (EventAnalysis{0, 1, 0}));
    assign(1, 6, true);
    EXPECT_EQ(analyzeEvent(1), (EventAnalysis{1, 2, 1}));
    run("DELETE FROM AddressDetails WHERE DeviceKey <> 6");
    EXPECT_EQ(analyzeEvent(1), (EventAnalysis{1, 1, 1})) << "a device without details is not counted at all";
    EXPECT_EQ(host.countInLog("Err.Number"), 0);
}

TEST_F(EventHealth, StateIsInactiveBeforeIncompleteBeforeComplete) {
    EXPECT_EQ(getEventState(1), eventComplete);
    run("UPDATE EventDevice SET Active = 0");
    EXPECT_EQ(getEventState(1), eventIncomplete);
    run("DELETE FROM EventDevice");
    EXPECT_EQ(getEventState(1), eventIncomplete);
    run("UPDATE Events SET EventActive = 0");
    EXPECT_EQ(getEventState(1), eventInactive);
    EXPECT_EQ(getEventState(99), eventInactive);
}

}  // namespace
