#include <gtest/gtest.h>

#include <QLabel>
#include <QPushButton>

#include "database/assignment.h"
#include "support/failingRead.h"
#include "support/mainWindowFixture.h"
#include "ui/dialogs/dlgEditRecipients.h"
#include "ui/parts/mdlRecDevices.h"

namespace {

using mdlDatabase::DeviceSelection;
using mdlRecDevices::populateRecipientsList;

// Ana has three devices, of which the event uses the first and silently the third; Ben's one device is on no
// event; Cy is switched off and has one on the event; Dan has none.
class RecipientTree : public uiTest::MainWindow {
  protected:
    RecipientTree() {
        event = add("Backup", "17");
        const std::string key = std::to_string(event);
        run("INSERT INTO Recipients VALUES(1, 'Ana', -1), (2, 'Ben', -1), (3, 'Cy', 0), (4, 'Dan', -1);"
            "INSERT INTO Device VALUES(11, 1, 'd1', -1), (12, 3, 'd2', -1), (13, 4, 'a@b', 0),"
            "(21, 2, '555', -1), (31, 6, 'host', -1);"
            "INSERT INTO DeviceRecipient VALUES(11, 1), (12, 1), (13, 1), (21, 2), (31, 3);"
            "INSERT INTO AddressDetails VALUES('d1', 'Ana A', 1, 11), ('d2', 'Ana A', 1, 12),"
            "('a@b', 'a@b (SMTP Address)', 4, 13), ('555', '555 (Pager)', 3, 21),"
            "('host', 'host (SYSLOG)', 6, 31);"
            "INSERT INTO EventDevice VALUES(" +
            key + ", 11, -1), (" + key + ", 13, 0), (" + key + ", 31, -1);");
    }

    // Nodes as "text", with '*' when ticked and '-' when grey.
    static std::vector<std::string> linesOf(const ui::KeyedTree& list) {
        std::vector<std::string> lines;
        for (long i = 1; i <= list.count(); ++i) {
            const std::string& key = list.keyAt(i);
            lines.push_back(std::string(list.isChecked(key) ? "*" : "") + (list.isGreyed(key) ? "-" : "") +
                            list.nodeText(key));
        }
        return lines;
    }

    long event = 0;
    ui::KeyedTree list;
    DeviceSelection selection;
};

using Lines = std::vector<std::string>;

TEST_F(RecipientTree, ShowsWhoIsOnTheEventWithAllHisDevices) {
    populateRecipientsList(list, event, selection, true);
    EXPECT_EQ(linesOf(list), (Lines{"*Ana", "*Ana A (VoiceMail)", "Ana A (E-mail)", "-a@b (SMTP Address)",
                                    "*-Cy", "*-host (SYSLOG)"}));
    EXPECT_EQ(selection.keys(), (Lines{"DeviceKey:11", "DeviceKey:31"}));
    EXPECT_EQ(list.info("RecipientKey:3").nodeType, nodeTypeEventRecipient);
    EXPECT_EQ(list.info("DeviceKey:31").nodeType, nodeTypeEventRecipientDevice);
    EXPECT_EQ(list.info("DeviceKey:31").key, 31);

    // Everybody with a device; grey of a device is a matter of its assignment.
    selection.clear();
    populateRecipientsList(list, event, selection, false);
    EXPECT_EQ(linesOf(list), (Lines{"*Ana", "*Ana A (VoiceMail)", "Ana A (E-mail)", "-a@b (SMTP Address)",
                                    "Ben", "555 (Pager)", "*-Cy", "*-host (SYSLOG)"}));

    const long other = add("Alarm", "1");
    selection.clear();
    populateRecipientsList(list, other, selection, true);
    EXPECT_EQ(list.count(), 0);
    populateRecipientsList(list, other, selection, false);
    EXPECT_EQ(linesOf(list), (Lines{"Ana", "Ana A (VoiceMail)", "Ana A (E-mail)", "a@b (SMTP Address)", "Ben",
                                    "555 (Pager)", "-Cy", "host (SYSLOG)"}));
    EXPECT_TRUE(selection.empty());
    EXPECT_EQ(host.countInLog("ERROR"), 0);

    // A device that two recipients share has one node; the other devices and recipients are there all the
    // same.
    run("INSERT INTO DeviceRecipient VALUES (11, 2)");
    EXPECT_TRUE(populateRecipientsList(list, event, selection, false));
    EXPECT_EQ(linesOf(list).size(), 8u);
    EXPECT_TRUE(list.contains("DeviceKey:21"));
    EXPECT_GE(host.countInLog("ERROR"), 1);
}

TEST_F(RecipientTree, BoxesAndSelectionStayInStep) {
    populateRecipientsList(list, event, selection, false);
    list.show();
    const auto check = [&](const std::string& key, bool state) {
        list.setChecked(key, state);
        mdlRecDevices::followCheck(list, key, selection);
    };
    check("RecipientKey:1", false);
    EXPECT_EQ(selection.keys(), Lines{"DeviceKey:31"});
    check("DeviceKey:12", true);
    EXPECT_TRUE(list.isChecked("RecipientKey:1"));
    EXPECT_FALSE(list.isChecked("DeviceKey:11"));
    check("DeviceKey:12", false);
    EXPECT_FALSE(list.isChecked("RecipientKey:1")) << "the last ticked device takes the recipient along";
    check("RecipientKey:1", true);
    EXPECT_EQ(selection.keys(), (Lines{"DeviceKey:31", "DeviceKey:11", "DeviceKey:12", "DeviceKey:13"}));
    check("DeviceKey:21", true);
    EXPECT_TRUE(list.isChecked("RecipientKey:2"));
    check("RecipientKey:2", false);
    EXPECT_FALSE(selection.contains("DeviceKey:21"));
    EXPECT_FALSE(selection.contains("RecipientKey:2"));
}

TEST_F(RecipientTree, DialogCollectsWithMouseAndKeyboardAndWritesNothing) {
    dlgEditRecipients dialog(nullptr);
    script.expect("Edit Recipients For Event: Backup (17)", [&](QWidget& shownDialog) {
        auto& tv = *shownDialog.findChild<ui::KeyedTree*>("tvRecipients");
        EXPECT_EQ(shownDialog.findChild<QLabel*>("lblSelectRecipients")->text(), "Select Recipients");
        EXPECT_EQ(tv.accessibleName(), "Select Recipients");
        EXPECT_EQ(tv.selectedKey(), "RecipientKey:1") << "the keyboard finds a node to work on";
        QTest::keyClick(&tv, Qt::Key_Down);
        QTest::keyClick(&tv, Qt::Key_Space);
        EXPECT_FALSE(tv.isChecked("RecipientKey:1"));
        // The box of Ben: left of his text.
        const QPoint place = uiTest::placeOf(tv, "RecipientKey:2");
        const QRect row = tv.visualItemRect(tv.findItems("Ben", Qt::MatchExactly).at(0));
        QTest::mouseClick(tv.viewport(), Qt::LeftButton, {}, QPoint(row.left() + 10, place.y()));
        EXPECT_TRUE(tv.isChecked("DeviceKey:21"));
        QTest::mouseClick(shownDialog.findChild<QPushButton*>("cmdOk"), Qt::LeftButton);
    });
    dialog.displayForm(event, "Backup (17)");
    EXPECT_FALSE(dialog.cancelled);
    EXPECT_EQ(dialog.selectedDevices.keys(), (Lines{"DeviceKey:31", "DeviceKey:21"}));

    script.expect("dlgEditRecipients", [](QWidget& shownDialog) {
        EXPECT_TRUE(shownDialog.findChild<ui::KeyedTree*>("tvRecipients")->isChecked("DeviceKey:11"))
            << "the shared dialog starts fresh";
        QTest::keyClick(&shownDialog, Qt::Key_Escape);
    });
    dialog.displayForm(event, "Backup (17)");
    EXPECT_TRUE(dialog.cancelled);
    EXPECT_EQ(value("SELECT Count(*) FROM EventDevice"), "3");
}

// OK replaces what the event has, so it is off as soon as one of the list's reads has failed.
TEST_F(RecipientTree, DialogTakesNothingFromAListThatWasNotRead) {
    dlgEditRecipients dialog(nullptr);
    bool cameToIt = true;
    int number = 1;
    for (; cameToIt; ++number) {
        const support::FailingRead read(number);
        script.expect("dlgEditRecipients", [&](QWidget& shownDialog) {
            cameToIt = read.cameToIt();
            auto& ok = *shownDialog.findChild<QPushButton*>("cmdOk");
            EXPECT_EQ(ok.isEnabled(), !cameToIt) << number;
            QTest::mouseClick(&ok, Qt::LeftButton);
            QTest::keyClick(&shownDialog, Qt::Key_Escape);
        });
        dialog.displayForm(event, "Backup (17)");
        EXPECT_EQ(dialog.cancelled, cameToIt) << number;
    }
    EXPECT_GT(number, 4);
}

}  // namespace
