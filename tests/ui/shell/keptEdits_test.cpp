// What is shown belongs to one thing of the database, and is written to that thing or not at all, whatever a
// person clicks and whatever happens to the database behind the window.
#include <gtest/gtest.h>

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QtTest/QTest>
#include <tuple>

#include "support/mainWindowFixture.h"
#include "support/person.h"
#include "ui/widgets/eventIdBox.h"
#include "ui/widgets/limitsSign.h"

namespace {

using platform::BoxAnswer;
using platform::BoxButtons;
using platform::BoxIcon;

platform::MessageBox saveQuestion(const char* whose) {
    return {std::string(whose) + " settings have changed.\nDo you want to save changes your changes?",
            "Save Changes Confirmation", BoxIcon::question, BoxButtons::yesNoCancel};
}

class KeptEdits : public uiTest::MainWindow {
  protected:
    KeptEdits() {
        first = add("Alarm", "4", "first");
        second = add("Backup", "17", "second");
        // Keys as the events have them, so that a mixed-up kind finds a victim.
        for (const long key : {first, second})
            run("INSERT INTO Recipients VALUES(" + std::to_string(key) + ", 'Ana " + std::to_string(key) +
                "', -1); INSERT INTO Exclusions VALUES(" + std::to_string(key) + ", 'Cluster', " +
                std::to_string(key) + ");");
    }
    static std::string eventNode(long key) { return "EventKey-" + std::to_string(key); }
    static std::string recipientNode(long key) { return "RecipientKey:" + std::to_string(key); }
    void editEvent(long key, const char* notes) {
        if (!window)
            open();
        clickNode(eventNode(key));
        person::type(*find<QLineEdit>("txtEventTitle"), notes);
    }
    std::string counts() {
        return value(
            "SELECT (SELECT count(*) FROM Events) || ' ' || (SELECT count(*) FROM Recipients) || ' ' || "
            "(SELECT count(*) FROM Exclusions) || ' ' || (SELECT count(*) FROM Contents)");
    }
    std::string titles() {
        return value(
            "SELECT group_concat(EventTitle, '|') FROM (SELECT EventTitle FROM Events WHERE "
            "EventKey >= " +
            std::to_string(first) + " ORDER BY EventKey)");
    }

    long first = 0;
    long second = 0;
};

TEST_F(KeptEdits, OnlyLeftRightAndKeyboardMoveTheTree) {
    editEvent(first, "mine");
    for (const auto button : {Qt::MiddleButton, Qt::BackButton, Qt::ForwardButton}) {
        clickNode(eventNode(second), button);
        QTest::mouseDClick(tree->viewport(), button, {}, placeOf(eventNode(second)));
        EXPECT_EQ(tree->selectedKey(), eventNode(first));
    }
    press("cmdEventApply");
    EXPECT_EQ(titles(), "mine|second");
}

TEST_F(KeptEdits, APopupActsOnlyOnANodeOfItsOwnKind) {
    editEvent(first, "mine");
    const std::string before = counts();
    const std::pair<std::string, const char*> popups[] = {
        {recipientNode(first), "mnuPopupDeleteRecipient"},
        {"ExclusionKey-" + std::to_string(first), "mnuPopupExclusion_Delete"}};
    for (const auto& [node, entry] : popups) {
        prompts.expect(saveQuestion("Event"), BoxAnswer::cancel);
        script.expectMenu(entry);
        clickNode(node, Qt::RightButton);
        EXPECT_EQ(counts(), before);
        EXPECT_EQ(tree->selectedKey(), eventNode(first));
    }
    prompts.expect(saveQuestion("Event"), BoxAnswer::no);
    clickNode(recipientNode(first));
    person::type(*find<QLineEdit>("txtRecipientName"), "Bo");
    prompts.expect(saveQuestion("Recipient"), BoxAnswer::cancel);
    script.expectMenu("mnuPopupDeleteEvent");
    clickNode(eventNode(first), Qt::RightButton);
    EXPECT_EQ(counts(), before);
}

TEST_F(KeptEdits, TheTreeIsWholeBeforeANodeIsChosenInIt) {
    open();
    clickNode(recipientNode(second));
    person::type(*find<QLineEdit>("txtRecipientName"), "Bo");
    prompts.expect(saveQuestion("Recipient"), BoxAnswer::cancel);
    window->loadNavigationTree(first);
    EXPECT_EQ(tree->selectedKey(), recipientNode(second));
    EXPECT_EQ(visiblePane(), 3);
    press("cmdRecipientApply");
    EXPECT_EQ(value("SELECT RecipientName FROM Recipients WHERE RecipientKey = " + std::to_string(second)),
              "Bo");
}

TEST_F(KeptEdits, WhatIsDeletedIsForgottenWithItsEdits) {
    editEvent(first, "mine");
    prompts.expect({"Are your sure you want to delete event: Alarm (4)", "Delete Selected Event?",
                    BoxIcon::question, BoxButtons::yesNo},
                   BoxAnswer::yes);
    chooseMenu("mnuFileDelete");
    EXPECT_EQ(visiblePane(), 0);
    EXPECT_EQ(value("SELECT count(*) FROM Contents WHERE EventKey = " + std::to_string(first)), "0");
    clickNode(recipientNode(first));
    person::type(*find<QLineEdit>("txtRecipientName"), "Bo");
    prompts.expect({"Are your sure you want to delete recipient: Ana " + std::to_string(first),
                    "Delete Selected Recipient?", BoxIcon::question, BoxButtons::yesNo},
                   BoxAnswer::yes);
    chooseMenu("mnuFileDelete");
    EXPECT_EQ(visiblePane(), 2);
}

TEST_F(KeptEdits, ARebuiltTreeStandsOnWhatThePaneShows) {
    editEvent(second, "mine");
    tree->topLevelItem(1)->setExpanded(false);
    window->loadNavigationTree();
    EXPECT_EQ(tree->selectedKey(), eventNode(second));
    EXPECT_FALSE(tree->topLevelItem(1)->isExpanded());
    press("cmdEventApply");
    EXPECT_EQ(titles(), "first|mine");
    clickNode(recipientNode(first));
    tree->topLevelItem(1)->setExpanded(false);
    window->loadNavigationTree();
    EXPECT_FALSE(tree->topLevelItem(1)->isExpanded()) << "a marked node opens no category";
}

TEST_F(KeptEdits, ARowThatSomebodyElseDeletedLeavesABlankPane) {
    open();
    clickNode(eventNode(first));
    clickNode(recipientNode(first));
    clickNode("ExclusionKey-" + std::to_string(first));
    const std::tuple<std::string, const char*, const char*> nodes[] = {
        {eventNode(second), "txtEventTitle", "Events WHERE EventKey = "},
        {recipientNode(second), "txtRecipientName", "Recipients WHERE RecipientKey = "},
        {"ExclusionKey-" + std::to_string(second), "txtExclusionSource", "Exclusions WHERE ExclusionKey = "}};
    for (const auto& [node, box, row] : nodes) {
        run("DELETE FROM " + std::string(row) + std::to_string(second));
        clickNode(node);
        EXPECT_FALSE(tree->contains(node));
        EXPECT_EQ(find<QLineEdit>(box)->text(), "");
        EXPECT_FALSE(find<QLineEdit>(box)->isEnabled());
    }
    EXPECT_EQ(host.countInLog("Warning", "tvNavigation_NodeClick", "Not in the database any more: "), 3);
    clickNode(eventNode(first));
    EXPECT_EQ(find<QLineEdit>("txtEventTitle")->text(), "first");
    EXPECT_TRUE(find<QLineEdit>("txtEventTitle")->isEnabled());
}

TEST_F(KeptEdits, WhatSomebodyElseDeletedIsNotShownAfterApply) {
    open();
    clickNode(recipientNode(second));
    person::type(*find<QLineEdit>("txtRecipientName"), "Bo");
    run("DELETE FROM Recipients WHERE RecipientKey = " + std::to_string(second));
    press("cmdRecipientApply");
    clickNode("ExclusionKey-" + std::to_string(second));
    for (auto* option : find<QWidget>("vsviewportDetails_7")->findChildren<QRadioButton*>("optionEventId_0"))
        person::click(*option);
    run("DELETE FROM Exclusions WHERE ExclusionKey = " + std::to_string(second));
    press("cmdExclusionApply");
    EXPECT_EQ(host.countInLog("ERROR", "modifyRecipient", "Could not find a recipient"), 1);
    EXPECT_EQ(host.countInLog("Warning", "cmdExclusionApply_Click", "Not saved, because"), 1);
    for (const auto& [node, box] :
         {std::pair(recipientNode(second), "txtRecipientName"),
          std::pair("ExclusionKey-" + std::to_string(second), "txtExclusionSource")}) {
        EXPECT_FALSE(tree->contains(node));
        EXPECT_EQ(find<QLineEdit>(box)->text(), "");
        EXPECT_FALSE(find<QLineEdit>(box)->isEnabled());
    }
}

TEST_F(KeptEdits, WhatCannotBeReadIsNotOverwritten) {
    open();
    clickNode(eventNode(first));
    clickNode(recipientNode(first));
    run("ALTER TABLE Contents RENAME TO Elsewhere; ALTER TABLE DeviceRecipient RENAME TO Gone;");
    for (const auto& [node, box] : {std::pair(eventNode(second), "txtEventTitle"),
                                    std::pair(recipientNode(second), "txtRecipientName")}) {
        clickNode(node);
        EXPECT_TRUE(tree->contains(node));
        EXPECT_FALSE(find<QLineEdit>(box)->isEnabled()) << "an unread thing takes no edits";
    }
}

TEST_F(KeptEdits, ASourceThatThisServerDoesNotListIsKept) {
    // One that is listed begins like the stored one.
    host.setRegistry(uiTest::sourcesKey + std::string("Alarming"), "EventMessageFile", "x");
    run("UPDATE Events SET EventSource = 'Alarmin' WHERE EventKey = " + std::to_string(first));
    editEvent(first, "mine");
    EXPECT_EQ(find<QComboBox>("comboEventSource")->currentIndex(), -1);
    press("cmdEventApply");
    EXPECT_EQ(value("SELECT EventSource || EventTitle FROM Events WHERE EventKey = " + std::to_string(first)),
              "Alarminmine");
}

TEST_F(KeptEdits, AnIdThatIsNoneIsToldAndNotDropped) {
    editEvent(first, "mine");
    auto* id = find<ui::EventIdBox>("comboEventId");
    ui::LimitsSign* sign = nullptr;
    for (QWidget* each : find<QWidget>("vsviewportDetails_1")->findChildren<QWidget*>())
        if (auto* found = qobject_cast<ui::LimitsSign*>(each))
            sign = found;
    ASSERT_TRUE(sign);
    EXPECT_FALSE(sign->isVisible());
    id->setFocus();
    for (const char* typed : {"", "99999999999"}) {
        id->lineEdit()->selectAll();
        QTest::keyClick(id->lineEdit(), Qt::Key_Backspace);
        QTest::keyClicks(id->lineEdit(), typed);
        EXPECT_TRUE(sign->isVisible()) << typed;
        EXPECT_FALSE(find<QPushButton>("cmdEventApply")->isEnabled()) << typed;
    }
    prompts.expect(saveQuestion("Event"), BoxAnswer::yes);
    clickNode(eventNode(second));
    EXPECT_FALSE(sign->isVisible());
    EXPECT_EQ(value("SELECT EventId || EventTitle FROM Events WHERE EventKey = " + std::to_string(first)),
              "4mine");
}

}  // namespace
