#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTextBlock>
#include <QTextLayout>
#include <QWheelEvent>
#include <QtTest/QTest>
#include <set>

#include "support/mainWindowFixture.h"
#include "ui/parts/deviceTabs.h"
#include "ui/widgets/eventIdBox.h"
#include "ui/widgets/textList.h"
#include "ui/widgets/variableTextBox.h"

namespace {

using platform::BoxAnswer;
using platform::BoxButtons;
using platform::BoxIcon;

const platform::MessageBox saveQuestion{
    "Event settings have changed.\nDo you want to save changes your changes?", "Save Changes Confirmation",
    BoxIcon::question, BoxButtons::yesNoCancel};
const platform::MessageBox noRecipients{
    "There are no recipients assigned to this event.  Would you like to assign recipients now?",
    "No recipients for event.", BoxIcon::question, BoxButtons::yesNo};
const platform::MessageBox activateQuestion{"This event is not active, do you want to activate it?",
                                            "Activate Event Confirmation", BoxIcon::question,
                                            BoxButtons::yesNo};
const platform::MessageBox noActiveDevices{
    "This event is active but there are not active recipient devices.  No notifications will be sent for "
    "this "
    "device until you activate one or more devices.",
    "No active recipient devices", BoxIcon::exclamation, BoxButtons::ok};

class EventPane : public uiTest::MainWindow {
  protected:
    EventPane() {
        event = add("Backup", "17", "nightly");
        other = add("Alarm", "-1", "other");
    }

    // Opens the list and takes the row that is shown already.
    static void chooseShownRow(QComboBox& list) {
        list.setFocus();
        QTest::mouseClick(&list, Qt::LeftButton);
        QTest::keyClick(list.view(), Qt::Key_Return);
    }
    static std::string nodeOf(long key) { return "EventKey-" + std::to_string(key); }
    void show(long key) {
        open();
        clickNode(nodeOf(key));
        ASSERT_EQ(visiblePane(), 1);
        recipients = find<QWidget>("vsviewportDetails_1")->findChild<ui::KeyedTree*>("tvRecipients");
    }
    void makeAna(bool onEvent, bool active = true) {
        run("INSERT INTO Recipients VALUES(1, 'Ana', -1);"
            "INSERT INTO Device VALUES(11, 4, 'a@b', -1), (12, 6, 'host', -1);"
            "INSERT INTO DeviceRecipient VALUES(11, 1), (12, 1);"
            "INSERT INTO AddressDetails VALUES('a@b', 'a@b', 4, 11), ('host', 'host', 6, 12);");
        if (onEvent)
            run("INSERT INTO EventDevice VALUES(" + std::to_string(event) + ", 11, " + (active ? "-1" : "0") +
                ");");
    }
    bool applyEnabled() { return find<QPushButton>("cmdEventApply")->isEnabled(); }
    void apply() { QTest::mouseClick(find<QPushButton>("cmdEventApply"), Qt::LeftButton); }
    void rename(const char* title) { person::type(*find<QLineEdit>("txtEventTitle"), title); }
    std::string title(long key) {
        return value("SELECT EventTitle FROM Events WHERE EventKey = " + std::to_string(key));
    }
    std::string assignments() {
        std::string all;
        for (const std::string& row : rows("SELECT DeviceKey, Active FROM EventDevice ORDER BY DeviceKey"))
            all += row + " ";
        return all;
    }
    // Switches a node's box as the space bar does.
    void toggle(const std::string& key) {
        recipients->ensureVisible(key);
        recipients->select(key);
        QTest::keyClick(recipients, Qt::Key_Space);
    }

    long event = 0;
    long other = 0;
    ui::KeyedTree* recipients = nullptr;
};

TEST_F(EventPane, ShowsAnEventAndIsCleanThen) {
    makeAna(true);
    mdlDatabase::setEventActiveState(event, true);
    run("UPDATE Contents SET ContentPriority = 2, ContentNote = 'to <User>' WHERE ContentType = 3;"
        "UPDATE Contents SET ContentPriority = 0 WHERE ContentType = 1 AND EventKey = " +
        std::to_string(event) + ";DELETE FROM Contents WHERE EventKey = " + std::to_string(other));
    show(event);
    EXPECT_EQ(find<QComboBox>("comboEventSource")->currentText(), "Backup");
    EXPECT_EQ(find<ui::EventIdBox>("comboEventId")->idText(), "17");
    EXPECT_EQ(find<QComboBox>("comboEventType")->currentIndex(), 1);
    EXPECT_EQ(find<QLineEdit>("txtEventTitle")->text(), "nightly");
    EXPECT_TRUE(find<QCheckBox>("chkActive")->isChecked());
    EXPECT_EQ(find<QLineEdit>("txtVoiceMailFileName")->text(), "a.wav");
    EXPECT_EQ(find<QComboBox>("comboVoiceMailPriority")->currentIndex(), -1) << "the list lacks Low";
    EXPECT_GE(host.countInLog("ERROR", "displayEventDetails", "Err.Number"), 1);
    EXPECT_EQ(find<QComboBox>("comboEmailPriority")->currentText(), "Urgent");
    const QTextBlock body = find<ui::VariableTextBox>("rtbEmailBody")->document()->firstBlock();
    EXPECT_FALSE(body.layout()->formats().isEmpty()) << "its token is coloured";
    EXPECT_TRUE(recipients->isChecked("DeviceKey:11"));
    EXPECT_FALSE(applyEnabled());
    EXPECT_FALSE(find<QPushButton>("cmdRemoveRecipient")->isEnabled());

    // Without contents the defaults of new events stand in.
    clickNode(nodeOf(other));
    EXPECT_EQ(find<ui::EventIdBox>("comboEventId")->currentText(), "All");
    EXPECT_EQ(find<ui::EventIdBox>("comboEventId")->idText(), "-1");
    EXPECT_EQ(find<QLineEdit>("txtVoiceMailFileName")->text(), "QLN_Default_ENU.wav");
    EXPECT_EQ(find<QComboBox>("comboEmailPriority")->currentText(), "Normal");
    EXPECT_EQ(recipients->count(), 0);
    EXPECT_FALSE(applyEnabled());
}

TEST_F(EventPane, CatchAllHasOneLockedSourceAndItsExclusionsUntilAnotherEventIsShown) {
    const long catchAll = std::stol(value("SELECT EventKey FROM Events WHERE EventCollection = -1"));
    show(catchAll);
    auto* sources = find<QComboBox>("comboEventSource");
    EXPECT_FALSE(sources->isEnabled());
    EXPECT_EQ(sources->count(), 1);
    EXPECT_EQ(sources->itemText(0), "All Corvane Errors");
    auto* exclusions = find<QPushButton>("cmdExclusions");
    EXPECT_TRUE(exclusions->isVisible());
    script.expect("dlgExclusions", [](QWidget& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    QTest::mouseClick(exclusions, Qt::LeftButton);
    clickNode(nodeOf(event));
    EXPECT_TRUE(sources->isEnabled());
    EXPECT_FALSE(exclusions->isVisible());
    clickNode(nodeOf(catchAll));
    EXPECT_FALSE(exclusions->isVisible()) << "it stays hidden for the run";
}

TEST_F(EventPane, EveryControlMarksTheEventChanged) {
    makeAna(true);
    show(event);
    const std::pair<const char*, std::function<void()>> changes[] = {
        {"source", [&] { person::chooseRow(*find<QComboBox>("comboEventSource"), 0); }},
        {"id", [&] { QTest::keyClicks(find<ui::EventIdBox>("comboEventId"), "5"); }},
        {"type", [&] { QTest::keyClick(find<QComboBox>("comboEventType"), Qt::Key_Down); }},
        {"title", [&] { QTest::keyClicks(find<QLineEdit>("txtEventTitle"), "x"); }},
        {"active", [&] { person::click(*window, "chkActive"); }},
        {"file", [&] { QTest::keyClicks(find<QLineEdit>("txtVoiceMailFileName"), "x"); }},
        {"voice priority", [&] { QTest::keyClick(find<QComboBox>("comboVoiceMailPriority"), Qt::Key_Up); }},
        {"subject", [&] { QTest::keyClicks(find<QWidget>("rtbEmailSubject"), "x"); }},
        {"body", [&] { QTest::keyClicks(find<QWidget>("rtbEmailBody"), "x"); }},
        {"priority", [&] { QTest::keyClick(find<QComboBox>("comboEmailPriority"), Qt::Key_Up); }},
        {"device", [&] { toggle("DeviceKey:11"); }},
        {"recipient", [&] { toggle("RecipientKey:1"); }},
        {"same row again", [&] { chooseShownRow(*find<QComboBox>("comboEventType")); }},
    };
    for (const auto& [name, change] : changes) {
        EXPECT_FALSE(applyEnabled()) << name;
        change();
        EXPECT_TRUE(applyEnabled()) << name;
        prompts.expect(saveQuestion, BoxAnswer::no);
        clickNode(nodeOf(event));
    }
    // Captions and fonts are no change, and the wheel over a list scrolls the pane.
    window->frmMain_ControlInit();
    auto* types = find<QComboBox>("comboEventType");
    find<QLineEdit>("txtEventTitle")->setFocus();
    QWheelEvent wheel(QPointF(4, 4), types->mapToGlobal(QPointF(4, 4)), {}, {0, -120}, Qt::NoButton, {},
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(types, &wheel);
    EXPECT_FALSE(applyEnabled());
}

TEST_F(EventPane, IdTakesDigitsOnly) {
    show(other);
    auto* id = find<ui::EventIdBox>("comboEventId");
    id->setFocus();
    QTest::keyClicks(id->lineEdit(), "a-1.2x3");
    EXPECT_EQ(id->idText(), "123") << "the first digit takes the place of the row's text";
    QTest::keyClick(id->lineEdit(), Qt::Key_Backspace);
    EXPECT_EQ(id->idText(), "12");
    person::chooseRow(*id, 0);
    EXPECT_EQ(id->idText(), "-1");
    QTest::keyClick(id->lineEdit(), Qt::Key_Backspace);
    EXPECT_EQ(id->idText(), "");
    QTest::keyClicks(id->lineEdit(), "70000");
    apply();
    EXPECT_EQ(value("SELECT EventId FROM Events WHERE EventKey = " + std::to_string(other)), "70000");
}

TEST_F(EventPane, ApplyWritesWhatIsShownAndSelectsTheEventAgain) {
    makeAna(true);
    show(event);
    person::chooseRow(*find<QComboBox>("comboEventSource"), 2);
    person::chooseRow(*find<ui::EventIdBox>("comboEventId"), 0);
    person::chooseRow(*find<QComboBox>("comboEventType"), 2);
    rename("it's");
    person::type(*find<QLineEdit>("txtVoiceMailFileName"), "b.wav");
    person::chooseRow(*find<QComboBox>("comboVoiceMailPriority"), 0);
    person::type(*find<QWidget>("rtbEmailSubject"), "new <Type>");
    person::type(*find<QWidget>("rtbEmailBody"), "one\ntwo");
    toggle("DeviceKey:12");
    prompts.expect(activateQuestion, BoxAnswer::no);
    apply();
    const std::string key = std::to_string(event);
    EXPECT_EQ(
        value("SELECT EventSource, EventId, EventTitle, EventType, EventActive FROM Events WHERE EventKey "
              "= " +
              key),
        "Cluster|-1|it's|4|0");
    EXPECT_EQ(rows("SELECT ContentAttachment, ContentPriority, ContentSubject, ContentNote FROM "
                   "Contents WHERE EventKey = " +
                   key + " ORDER BY ContentType"),
              (std::vector<std::string>{"b.wav|2|new <Type>|one\r\ntwo", "NULL|1|new <Type>|one\r\ntwo"}));
    EXPECT_EQ(assignments(), "11|-1 12|-1 ");
    EXPECT_EQ(tree->selectedKey(), nodeOf(event));
    EXPECT_EQ(tree->nodeText(nodeOf(event)), "Cluster (All)");
    EXPECT_FALSE(applyEnabled());
    EXPECT_TRUE(recipients->isChecked("DeviceKey:12")) << "the pane was filled again";

    // A second Apply keeps what is ticked, although the first one used the selection up.
    rename("again");
    prompts.expect(activateQuestion, BoxAnswer::yes);
    apply();
    EXPECT_EQ(assignments(), "11|-1 12|-1 ");
    EXPECT_TRUE(mdlDatabase::isEventActive(event));
}

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

TEST_F(EventPane, LeavingAChangedEventAsks) {
    makeAna(true);
    show(event);
    rename("changed");
    toggle("DeviceKey:12");
    // Cancel: the earlier node stays, with what was typed, and the next click asks again.
    prompts.expect(saveQuestion, BoxAnswer::cancel);
    clickNode("keyExclusions");
    EXPECT_EQ(tree->selectedKey(), nodeOf(event));
    EXPECT_EQ(visiblePane(), 1);
    EXPECT_EQ(find<QLineEdit>("txtEventTitle")->text(), "changed");
    EXPECT_TRUE(applyEnabled());
    prompts.expect(saveQuestion, BoxAnswer::no);
    clickNode("keyExclusions");
    EXPECT_EQ(visiblePane(), 6);
    EXPECT_EQ(title(event), "nightly");

    // Yes saves without further questions, also an active event without devices; the tree is rebuilt inside
    // the click, and the clicked node is the selected one.
    clickNode(nodeOf(other));
    rename("saved");
    person::click(*window, "chkActive");
    prompts.expect(saveQuestion, BoxAnswer::yes);
    clickNode(nodeOf(event));
    EXPECT_EQ(title(other), "saved");
    EXPECT_EQ(tree->selectedKey(), nodeOf(event));
    EXPECT_EQ(find<QLineEdit>("txtEventTitle")->text(), "nightly");
    EXPECT_TRUE(tree->findItems("Alarm (All)", Qt::MatchExactly | Qt::MatchRecursive).at(0)->font(0).bold());
    EXPECT_FALSE(applyEnabled());
    // By keyboard, and with the right button.
    rename("by keyboard");
    prompts.expect(saveQuestion, BoxAnswer::yes);
    tree->setFocus();
    QTest::keyClick(tree, Qt::Key_Home);
    EXPECT_EQ(title(event), "by keyboard");
    EXPECT_EQ(tree->selectedKey(), "keyMonitoredEvents");
    clickNode(nodeOf(event));
    rename("right");
    prompts.expect(saveQuestion, BoxAnswer::yes);
    script.expectMenu("mnuPopupAddEvent");
    script.expect("dlgEvent", [](QWidget& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    QTest::mouseClick(tree->viewport(), Qt::RightButton, {}, placeOf("keyMonitoredEvents"));
    EXPECT_EQ(title(event), "right");
    EXPECT_EQ(host.countInLog("ERROR"), 0);
}

// The rebuild that a Yes causes runs inside the rebuild that selects the new event.
TEST_F(EventPane, ANewEventAsksForTheChangedOneAndTheTreeIsWhole) {
    run("INSERT INTO Exclusions VALUES(0, 'Cluster', -1);");
    makeAna(true);
    for (const BoxAnswer answer : {BoxAnswer::yes, BoxAnswer::cancel}) {
        show(event);
        const long nodes = tree->count();
        rename(answer == BoxAnswer::yes ? "changed" : "lost");
        prompts.expect(saveQuestion, answer);
        window->loadNavigationTree(other);
        EXPECT_EQ(tree->count(), nodes);
        EXPECT_EQ(tree->selectedKey(), nodeOf(answer == BoxAnswer::yes ? other : event));
        EXPECT_EQ(title(event), "changed");
        EXPECT_EQ(host.countInLog("ERROR"), 0);
    }
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
    prompts.expect(saveQuestion, BoxAnswer::cancel);
    QTest::mouseClick(find<QPushButton>("cmdAddRecipient"), Qt::LeftButton);
    EXPECT_TRUE(applyEnabled());
    prompts.expect(saveQuestion, BoxAnswer::yes);
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
    prompts.expect(saveQuestion, BoxAnswer::no);
    QTest::mouseClick(remove, Qt::LeftButton);
    EXPECT_EQ(assignments(), "");
    EXPECT_EQ(title(event), "once more");
    EXPECT_EQ(recipients->count(), 0);
    EXPECT_FALSE(remove->isEnabled());
    EXPECT_EQ(tree->selectedKey(), nodeOf(event));
}

TEST_F(EventPane, IsNamedAndReachableByKeyboard) {
    makeAna(true);
    show(event);
    QWidget* pane = find<QWidget>("vsviewportDetails_1");
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    std::set<QWidget*> reached;
    find<QComboBox>("comboEventSource")->setFocus(Qt::TabFocusReason);
    for (QWidget* at = QApplication::focusWidget(); at && pane->isAncestorOf(at) && !reached.count(at);
         at = QApplication::focusWidget()) {
        reached.insert(at);
        QTest::keyClick(at, Qt::Key_Tab);
    }
    for (const char* name :
         {"comboEventSource", "comboEventId", "comboEventType", "chkActive", "txtEventTitle", "tvRecipients",
          "cmdAddRecipient", "cmdRemoveRecipient", "txtVoiceMailFileName", "cmdVoiceMailBrowse",
          "comboVoiceMailPriority", "rtbEmailSubject", "rtbEmailBody", "comboEmailPriority"}) {
        auto* control = pane->findChild<QWidget*>(name);
        EXPECT_TRUE(reached.count(control)) << name;
        const auto* button = qobject_cast<QAbstractButton*>(control);
        EXPECT_FALSE(control->accessibleName().isEmpty() && (!button || button->text().isEmpty())) << name;
    }
    EXPECT_TRUE(find<QPushButton>("cmdRemoveRecipient")->isEnabled()) << "the tree offers its first node";
}

}  // namespace
