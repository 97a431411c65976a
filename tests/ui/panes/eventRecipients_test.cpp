// Whom an event goes to, in its pane.
#include "eventPaneFixture.h"

namespace {

using namespace uiTest;

TEST_F(EventPane, ApplyAsksWhatMayHaveBeenForgotten) {
    makeAna(true, false);
    show(event);
    // An active event without an active device is warned of, an inactive one is not.
    rename("1");
    apply();
    person::click(*window, "chkActive");
    prompts.expect(noActiveDevices, BoxAnswer::ok);
    apply();
    // Activated by a tick and Apply with a device: nothing to ask.
    toggle("DeviceKey:11");
    apply();
    EXPECT_EQ(assignments(), "11|-1 ");

    // An active event without recipients: No leaves it so.
    clickNode(nodeOf(other));
    person::click(*window, "chkActive");
    prompts.expect(noRecipients, BoxAnswer::no);
    apply();
    EXPECT_TRUE(mdlDatabase::isEventActive(other));
    // Yes opens the dialog, and its devices come on the event.
    rename("2");
    prompts.expect(noRecipients, BoxAnswer::yes);
    script.expect("Edit Recipients For Event: Alarm (All)", [](QWidget& dialog) {
        auto* tv = dialog.findChild<ui::KeyedTree*>("tvRecipients");
        QTest::keyClick(tv, Qt::Key_Space);
        QTest::mouseClick(dialog.findChild<QPushButton*>("cmdOk"), Qt::LeftButton);
    });
    apply();
    EXPECT_EQ(value("SELECT Count(*) FROM EventDevice WHERE EventKey = " + std::to_string(other)), "2");
    EXPECT_EQ(recipients->count(), 3);
}

TEST_F(EventPane, TheFirstRecipientIsCreatedOnTheWay) {
    show(event);
    person::click(*window, "chkActive");
    prompts.expect(noRecipients, BoxAnswer::yes);
    script.expect("dlgRecipient", [](QWidget& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    apply();
    EXPECT_EQ(value("SELECT Count(*) FROM Recipients"), "0");

    rename("again");
    prompts.expect(noRecipients, BoxAnswer::yes);
    script.expect("dlgRecipient", [](QWidget& dialog) {
        person::type(*dialog.findChild<QLineEdit*>("txtRecipientName"), "Ana");
        person::showPage(*dialog.findChild<ui::DeviceTabs*>(), 5);
        person::click(dialog, "chkSyslogEnabled");
        QTest::mouseClick(dialog.findChild<QPushButton*>("cmdOk"), Qt::LeftButton);
    });
    script.expect("dlgEditRecipients", [](QWidget& dialog) {
        QTest::keyClick(dialog.findChild<ui::KeyedTree*>("tvRecipients"), Qt::Key_Space);
        QTest::mouseClick(dialog.findChild<QPushButton*>("cmdOk"), Qt::LeftButton);
    });
    apply();
    EXPECT_EQ(value("SELECT RecipientName FROM Recipients"), "Ana");
    EXPECT_EQ(assignments(), "1|-1 ");
    EXPECT_EQ(recipients->count(), 2);
}

TEST_F(EventPane, AddsAndRemovesRecipients) {
    makeAna(false);
    show(event);
    const auto choose = [&](bool ok) {
        script.expect("dlgEditRecipients", [ok](QWidget& dialog) {
            auto* tv = dialog.findChild<ui::KeyedTree*>("tvRecipients");
            tv->select("DeviceKey:12");
            QTest::keyClick(tv, Qt::Key_Space);
            QTest::mouseClick(dialog.findChild<QPushButton*>(ok ? "cmdOk" : "cmdCancel"), Qt::LeftButton);
        });
        QTest::mouseClick(find<QPushButton>("cmdAddRecipient"), Qt::LeftButton);
    };
    choose(false);
    EXPECT_EQ(assignments(), "");
    choose(true);
    EXPECT_EQ(assignments(), "12|-1 ");
    EXPECT_EQ(recipients->count(), 3);

    // Unsaved edits are asked for first. After a Yes the boxes are good for the next Apply.
    rename("changed");
    prompts.expect(saveEventQuestion, BoxAnswer::cancel);
    QTest::mouseClick(find<QPushButton>("cmdAddRecipient"), Qt::LeftButton);
    EXPECT_TRUE(applyEnabled());
    prompts.expect(saveEventQuestion, BoxAnswer::yes);
    choose(false);
    EXPECT_EQ(title(event), "changed");
    rename("once more");
    apply();
    EXPECT_EQ(assignments(), "12|-1 ");

    auto* remove = find<QPushButton>("cmdRemoveRecipient");
    QTest::mouseClick(recipients->viewport(), Qt::LeftButton, {},
                      uiTest::placeOf(*recipients, "DeviceKey:12"));
    EXPECT_FALSE(remove->isEnabled());
    QTest::mouseClick(recipients->viewport(), Qt::LeftButton, {},
                      uiTest::placeOf(*recipients, "RecipientKey:1"));
    ASSERT_TRUE(remove->isEnabled());
    rename("dropped");
    prompts.expect(saveEventQuestion, BoxAnswer::no);
    QTest::mouseClick(remove, Qt::LeftButton);
    EXPECT_EQ(assignments(), "");
    EXPECT_EQ(title(event), "once more");
    EXPECT_EQ(recipients->count(), 0);
    EXPECT_FALSE(remove->isEnabled());
    EXPECT_EQ(tree->selectedKey(), nodeOf(event));
}

}  // namespace
