// Two events in the console's window, and a person's hands on their pane.
#pragma once

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

namespace uiTest {

using platform::BoxAnswer;
using platform::BoxButtons;
using platform::BoxIcon;

inline const platform::MessageBox saveEventQuestion{
    "Event settings have changed.\nDo you want to save changes your changes?", "Save Changes Confirmation",
    BoxIcon::question, BoxButtons::yesNoCancel};
inline const platform::MessageBox noRecipients{
    "There are no recipients assigned to this event.  Would you like to assign recipients now?",
    "No recipients for event.", BoxIcon::question, BoxButtons::yesNo};
inline const platform::MessageBox activateQuestion{"This event is not active, do you want to activate it?",
                                                   "Activate Event Confirmation", BoxIcon::question,
                                                   BoxButtons::yesNo};
inline const platform::MessageBox noActiveDevices{
    "This event is active but there are not active recipient devices.  No notifications will be sent for "
    "this "
    "device until you activate one or more devices.",
    "No active recipient devices", BoxIcon::exclamation, BoxButtons::ok};

class EventPane : public MainWindow {
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

}  // namespace uiTest
