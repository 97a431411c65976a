// Devices without a row in AddressDetails, as a rebuild beside a lock leaves them: no window shows them, and
// none may save what it does not show.
#include <gtest/gtest.h>

#include <QLineEdit>
#include <QPushButton>

#include "database/addressDetails.h"
#include "support/mainWindowFixture.h"
#include "ui/dialogs/dlgEditRecipients.h"
#include "ui/panes/paneRecipientDetails.h"
#include "ui/parts/deviceTabs.h"
#include "ui/widgets/entryList.h"

namespace {

using Lines = std::vector<std::string>;

// Ana has a pager (1) and an address (2), both on the event, the pager alone with details.
class MissingDetails : public uiTest::MainWindow {
  protected:
    MissingDetails() {
        event = add("Alarm", "9");
        run("INSERT INTO Recipients VALUES(1, 'Ana', -1);"
            "INSERT INTO Device VALUES(1, 2, '55', -1), (2, 4, 'a@b', -1);"
            "INSERT INTO DeviceRecipient VALUES(1, 1), (2, 1);"
            "INSERT INTO AddressDetails VALUES('55', '55 (Pager)', 3, 1);"
            "INSERT INTO EventDevice SELECT " +
            std::to_string(event) + ", DeviceKey, -1 FROM Device");
    }
    void refuseRebuilds() {
        run("CREATE TRIGGER held BEFORE INSERT ON AddressDetails BEGIN SELECT raise(ABORT, 'held'); END");
    }
    Lines assignments() { return rows("SELECT DeviceKey, Active FROM EventDevice ORDER BY DeviceKey"); }

    long event = 0;
};

TEST_F(MissingDetails, ARecipientIsNotOfferedForEditingWithoutOneOfHisDevices) {
    refuseRebuilds();
    open();
    clickNode("RecipientKey:1");
    auto* pane = find<paneRecipientDetails>("vsviewportDetails_3");
    EXPECT_FALSE(pane->isEnabled());
    EXPECT_EQ(pane->findChild<QLineEdit*>("txtRecipientName")->text(), "");
    EXPECT_GE(host.countInLog("A device has no address details.  RecipientKey = 1"), 1);

    // The next click tries again.
    run("DROP TRIGGER held");
    clickNode("keyRecipients");
    clickNode("RecipientKey:1");
    EXPECT_TRUE(pane->isEnabled());
    EXPECT_EQ(pane->findChild<ui::EntryList*>("tvSMTPAddresses")->count(), 1);
    QTest::keyClicks(pane->findChild<QLineEdit*>("txtRecipientName"), "x");
    person::click(*pane, "cmdRecipientApply");
    EXPECT_EQ(rows("SELECT RecipientName FROM Recipients"), Lines{"Anax"});
    EXPECT_EQ(rows("SELECT DeviceKey FROM Device"), (Lines{"1", "2"}));
    EXPECT_EQ(assignments(), (Lines{"1|-1", "2|-1"}));
}

TEST_F(MissingDetails, SavingAnEventLeavesOnWhatItsTreeDidNotShow) {
    open();
    clickNode("EventKey-" + std::to_string(event));
    EXPECT_FALSE(find<ui::KeyedTree>("tvRecipients")->contains("DeviceKey:2"));
    person::type(*find<QLineEdit>("txtEventTitle"), "x");
    press("cmdEventApply");
    EXPECT_EQ(assignments(), (Lines{"1|-1", "2|-1"}));
    EXPECT_GE(host.countInLog("Stays on the event without being shown: DeviceKey:2"), 1);

    // A changed address whose details are those of before has a node, and is ticked.
    run("INSERT INTO AddressDetails VALUES('old@b', 'old@b', 4, 2)");
    dlgEditRecipients dialog(nullptr);
    script.expect("dlgEditRecipients", [](QWidget& shown) {
        EXPECT_TRUE(shown.findChild<ui::KeyedTree*>("tvRecipients")->isChecked("DeviceKey:2"));
        person::click(shown, "cmdOk");
    });
    dialog.displayForm(event, "Alarm (9)");
    EXPECT_EQ(dialog.selectedDevices.keys(), (Lines{"DeviceKey:1", "DeviceKey:2"}));
}

}  // namespace
