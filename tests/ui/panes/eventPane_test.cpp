// The pane of one event, driven as a person does.
#include "eventPaneFixture.h"

namespace {

using namespace uiTest;

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
        prompts.expect(saveEventQuestion, BoxAnswer::no);
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

TEST_F(EventPane, LeavingAChangedEventAsks) {
    makeAna(true);
    show(event);
    rename("changed");
    toggle("DeviceKey:12");
    // Cancel: the earlier node stays, with what was typed, and the next click asks again.
    prompts.expect(saveEventQuestion, BoxAnswer::cancel);
    clickNode("keyExclusions");
    EXPECT_EQ(tree->selectedKey(), nodeOf(event));
    EXPECT_EQ(visiblePane(), 1);
    EXPECT_EQ(find<QLineEdit>("txtEventTitle")->text(), "changed");
    EXPECT_TRUE(applyEnabled());
    prompts.expect(saveEventQuestion, BoxAnswer::no);
    clickNode("keyExclusions");
    EXPECT_EQ(visiblePane(), 6);
    EXPECT_EQ(title(event), "nightly");

    // Yes saves without further questions, also an active event without devices; the tree is rebuilt inside
    // the click, and the clicked node is the selected one.
    clickNode(nodeOf(other));
    rename("saved");
    person::click(*window, "chkActive");
    prompts.expect(saveEventQuestion, BoxAnswer::yes);
    clickNode(nodeOf(event));
    EXPECT_EQ(title(other), "saved");
    EXPECT_EQ(tree->selectedKey(), nodeOf(event));
    EXPECT_EQ(find<QLineEdit>("txtEventTitle")->text(), "nightly");
    EXPECT_TRUE(tree->findItems("Alarm (All)", Qt::MatchExactly | Qt::MatchRecursive).at(0)->font(0).bold());
    EXPECT_FALSE(applyEnabled());
    // By keyboard, and with the right button.
    rename("by keyboard");
    prompts.expect(saveEventQuestion, BoxAnswer::yes);
    tree->setFocus();
    QTest::keyClick(tree, Qt::Key_Home);
    EXPECT_EQ(title(event), "by keyboard");
    EXPECT_EQ(tree->selectedKey(), "keyMonitoredEvents");
    clickNode(nodeOf(event));
    rename("right");
    prompts.expect(saveEventQuestion, BoxAnswer::yes);
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
        prompts.expect(saveEventQuestion, answer);
        window->loadNavigationTree(other);
        EXPECT_EQ(tree->count(), nodes);
        EXPECT_EQ(tree->selectedKey(), nodeOf(answer == BoxAnswer::yes ? other : event));
        EXPECT_EQ(title(event), "changed");
        EXPECT_EQ(host.countInLog("ERROR"), 0);
    }
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
