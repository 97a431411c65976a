// The list of all recipients and the pane of one of them, driven as a person does.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QCheckBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

#include "database/devices.h"
#include "database/recipients.h"
#include "host/directory.h"
#include "platform/machine/eventLog.h"
#include "platform/machine/host.h"
#include "server/mdlCorvaneDatabase.h"
#include "support/mainWindowFixture.h"
#include "ui/base/twips.h"
#include "ui/panes/paneRecipientDetails.h"
#include "ui/parts/deviceTabs.h"
#include "ui/widgets/entryList.h"

namespace {

using platform::BoxAnswer;
using platform::BoxButtons;
using platform::BoxIcon;
using Lines = std::vector<std::string>;

const platform::MessageBox saveQuestion{
    "Recipient settings have changed.\nDo you want to save changes your changes?",
    "Save Changes Confirmation", BoxIcon::question, BoxButtons::yesNoCancel};
const platform::MessageBox testQuestion{
    "This will create an informational event log message and attempt notification for all of this recipients "
    "devices.\nDo you want to perform the test?",
    "Test notification for this recipient", BoxIcon::question, BoxButtons::yesNo};

platform::MessageBox deleteQuestion(const std::string& name) {
    return {"Are your sure you want to delete recipient: " + name, "Delete Selected Recipient?",
            BoxIcon::question, BoxButtons::yesNo};
}

// Ana has a device of every kind but the pager, two of SMTP; Ben has none; Cy is switched off and has pagers
// and a distribution list for e-mail.
class RecipientPanes : public uiTest::MainWindow {
  protected:
    RecipientPanes() {
        core::gSnmpSupported = true;
        core::gIgnoreEventKey = mdlDatabase::getIgnoreEventKey();
        run("INSERT INTO Recipients VALUES(1, 'Ana', -1), (2, 'Ben', -1), (3, 'Cy', 0);"
            "INSERT INTO Device VALUES(11, 1, 'id1', -1), (12, 3, 'id2', -1), (13, 4, 'a@b', -1),"
            "(14, 4, 'c@d', -1), (15, 5, 'SNMP TRAP', -1), (16, 6, 'host', -1), (17, 7, 'Failover', -1),"
            "(31, 2, '555', -1), (32, 2, '556', -1), (33, 3, 'id3', -1);"
            "INSERT INTO DeviceRecipient VALUES(11, 1), (12, 1), (13, 1), (14, 1), (15, 1), (16, 1), (17, 1),"
            "(31, 3), (32, 3), (33, 3);"
            "INSERT INTO AddressDetails VALUES('id1', 'Ana A', 1, 11), ('id2', 'Ana E', 1, 12),"
            "('a@b', 'a@b', 4, 13), ('c@d', 'c@d', 4, 14), ('SNMP TRAP', 'SNMP', 5, 15),"
            "('host', 'host', 6, 16), ('Failover', 'Failover', 7, 17), ('555', '555', 3, 31),"
            "('556', '556', 3, 32), ('id3', 'Everybody', 2, 33);");
    }

    void showList() {
        open();
        clickNode("keyRecipients");
        ASSERT_EQ(visiblePane(), 2);
        grid = find<ui::KeyedGrid>("vsflexgridAllRecipients");
    }
    void show(long key) {
        if (!window)
            open();
        clickNode("RecipientKey:" + std::to_string(key));
        ASSERT_EQ(visiblePane(), 3);
        pane = find<paneRecipientDetails>("vsviewportDetails_3");
        tabs = find<ui::DeviceTabs>("sstabRecipientDevices");
    }
    // A control of pane 3; some have namesakes in other panes.
    template <class Control>
    Control* in(const char* name) {
        return pane->findChild<Control*>(name);
    }
    bool enabled(const char* name) { return in<QWidget>(name)->isEnabled(); }
    std::string textOf(const char* name) { return ui::toUtf8(in<QLineEdit>(name)->text()); }
    // A control of a page stands behind its tab.
    template <class Control>
    Control& reach(const char* name) {
        auto* control = in<Control>(name);
        for (int i = 0; i < tabs->count() && !control->isVisible(); ++i)
            if (tabs->isTabVisible(i))
                person::showPage(*tabs, i);
        return *control;
    }
    void type(const char* name, const char* text) { person::type(reach<QLineEdit>(name), text); }
    void push(const char* name) { person::click(reach<QAbstractButton>(name)); }
    void clickEntry(const char* name, int index) {
        auto* list = in<ui::EntryList>(name);
        person::showPage(*tabs, std::string(name) == "tvPagerNumbers" ? 1 : 3);
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                          list->visualItemRect(list->item(index)).center());
    }
    void clickCell(int row, const char* column) {
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, grid->cellRectangle(row, column).center());
    }
    Lines linesOf(const char* name) {
        auto* shown = in<ui::KeyedTree>(name);
        Lines lines;
        for (long i = 1; i <= shown->count(); ++i)
            lines.push_back((shown->parentKey(shown->keyAt(i)).empty() ? "" : " ") +
                            shown->nodeText(shown->keyAt(i)));
        return lines;
    }
    std::string active(int key) {
        return value("SELECT RecipientActive FROM Recipients WHERE RecipientKey = " + std::to_string(key));
    }
    void openDirectory() {
        host::createDirectory(
            platform::host::directoryDatabase(), host::DirectoryLayout::tables,
            [](host::DirectoryWriter& writer) { host::fillDemonstrationDirectory(writer, 40, 24); });
        mdlCorvaneDatabase::openCorvaneDB(core::gCorvaneDb);
    }

    paneRecipientDetails* pane = nullptr;
    ui::DeviceTabs* tabs = nullptr;
};

TEST_F(RecipientPanes, ListShowsTheCountsOfTheKindsThatAreOffered) {
    showList();
    const std::vector<std::pair<const char*, long>> columns = {
        {"VoicemailDevice", 1}, {"PagerDevice", 2},  {"EmailDevice", 3},   {"SMTPDevice", 4},
        {"SNMPTrapDevice", 5},  {"SyslogDevice", 6}, {"FailoverDevice", 7}};
    ASSERT_EQ(grid->gridRowCount(), 3);
    int others = 0;
    for (int row = 1; row <= 3; ++row) {
        const long key = static_cast<long>(grid->cellValue(row, "RecipientKey").toLongLong());
        EXPECT_EQ(grid->cellValue(row, "RecipientActive").toBool(), key != 3);
        for (const auto& [column, type] : columns) {
            const long count = mdlDatabase::countDevices(type, key);
            const int place = static_cast<int>(type) + 2;
            const bool listKind = type == 2 || type == 4;
            EXPECT_EQ(grid->cellText(row, column), listKind ? std::to_string(count) : "") << column;
            EXPECT_EQ(grid->item(row - 1, place)->icon().isNull(), listKind || count == 0) << column;
            EXPECT_EQ(grid->isColumnHidden(place), type == 2 || type == 7);
            others += row == 1 ? grid->columnWidth(place) : 0;
        }
    }
    EXPECT_EQ(grid->cellText(3, "RecipientName"), "Cy");
    EXPECT_EQ(grid->columnWidth(2), grid->width() - others - grid->columnWidth(0) + ui::pixels(200));
    EXPECT_FALSE(find<QPushButton>("cmdDeleteSelectedRecipient")->isEnabled());
    window->resize(1200, 700);
    EXPECT_EQ(grid->columnWidth(2), grid->width() - others - grid->columnWidth(0) + ui::pixels(200));

    run("DELETE FROM Recipients");
    clickNode("keyRecipients");
    EXPECT_EQ(grid->gridRowCount(), 0);
    EXPECT_FALSE(find<QPushButton>("cmdDeleteSelectedRecipient")->isEnabled());
}

TEST_F(RecipientPanes, ActiveColumnWritesAtOnceAndOthersDoNot) {
    showList();
    clickCell(1, "RecipientActive");
    EXPECT_EQ(active(1), "0");
    EXPECT_FALSE(grid->cellValue(1, "RecipientActive").toBool());
    EXPECT_EQ(tree->selectedKey(), "keyRecipients");
    EXPECT_TRUE(find<QPushButton>("cmdDeleteSelectedRecipient")->isEnabled());
    clickCell(3, "RecipientActive");
    EXPECT_EQ(active(3), "-1");
    clickCell(1, "RecipientName");
    QTest::mouseClick(grid->horizontalHeader()->viewport(), Qt::LeftButton, {}, QPoint(5, 5));
    EXPECT_EQ(active(1), "0");
    grid->setCurrentGridCell(1, "RecipientActive");
    const int before = grid->cellValue(1, "RecipientActive").toBool();
    QTest::keyClick(grid, Qt::Key_Space);
    EXPECT_NE(grid->cellValue(1, "RecipientActive").toBool(), before) << "by keyboard";

    clickNode("keyRecipients");
    QTest::mouseDClick(grid->viewport(), Qt::LeftButton, {},
                       grid->cellRectangle(3, "RecipientName").center());
    EXPECT_EQ(tree->selectedKey(), "RecipientKey:3");
    EXPECT_EQ(visiblePane(), 3);
}

TEST_F(RecipientPanes, ShowsEveryKindAndWhatTheNextOneLeavesStanding) {
    core::gFailoverSupported = core::gPagerSupported = true;
    show(1);
    EXPECT_EQ(textOf("txtRecipientName"), "Ana");
    EXPECT_TRUE(in<QCheckBox>("chkRecipientActive")->isChecked());
    EXPECT_TRUE(in<QRadioButton>("optionVoiceMailType_0")->isChecked());
    EXPECT_EQ(textOf("txtVoiceMail") + textOf("txtVoiceMailDirectoryId"), "Ana Aid1");
    EXPECT_EQ(textOf("txtEmail") + textOf("txtEmailDirectoryId"), "Ana Eid2");
    EXPECT_EQ(in<ui::EntryList>("tvSMTPAddresses")->count(), 2);
    EXPECT_EQ(in<ui::EntryList>("tvSMTPAddresses")->entryKey(1), "DeviceKey:14");
    for (const char* box : {"chkSNMPTrapEnabled", "chkSyslogEnabled", "chkFailoverEnabled"})
        EXPECT_TRUE(in<QCheckBox>(box)->isChecked()) << box;
    EXPECT_EQ(textOf("txtSyslogHostAddress"), "host");
    EXPECT_EQ(linesOf("tvRecipientDevices"),
              (Lines{"Voice mail", " Ana A", "E-mail", " Ana E", "SMTP Address", " a@b", " c@d", "SNMP Trap",
                     " SNMP TRAP", "Syslog", " host", "Failover", " Failover"}));
    EXPECT_FALSE(pane->isChanged());
    EXPECT_FALSE(enabled("cmdRecipientApply"));
    auto* devices = in<ui::KeyedTree>("tvRecipientDevices");
    QTest::mouseClick(devices->viewport(), Qt::LeftButton, {}, uiTest::placeOf(*devices, "DeviceKey:16"));
    EXPECT_EQ(tabs->currentIndex(), 5);

    show(3);
    EXPECT_EQ(tabs->currentIndex(), 0);
    EXPECT_FALSE(in<QCheckBox>("chkRecipientActive")->isChecked());
    EXPECT_EQ(textOf("txtVoiceMail") + textOf("txtVoiceMailDirectoryId"), "");
    EXPECT_TRUE(enabled("cmdClearVoiceMail")) << "stays although there is nothing to clear";
    EXPECT_TRUE(in<QRadioButton>("optionEmailType_1")->isChecked());
    EXPECT_EQ(textOf("txtEmail"), "Everybody");
    EXPECT_EQ(in<ui::EntryList>("tvPagerNumbers")->count(), 2);
    EXPECT_EQ(in<ui::EntryList>("tvSMTPAddresses")->count(), 0);
    EXPECT_FALSE(in<QCheckBox>("chkSyslogEnabled")->isChecked());
    EXPECT_EQ(textOf("txtSyslogHostAddress"), "host") << "of the recipient before";
    EXPECT_FALSE(pane->isChanged());

    show(1);
    show(2);
    EXPECT_EQ(textOf("txtRecipientName"), "Ben");
    EXPECT_TRUE(in<QCheckBox>("chkRecipientActive")->isChecked());
    for (const char* box : {"chkSNMPTrapEnabled", "chkSyslogEnabled", "chkFailoverEnabled"})
        EXPECT_FALSE(in<QCheckBox>(box)->isChecked()) << box;
    EXPECT_EQ(textOf("txtEmail"), "");
    EXPECT_EQ(linesOf("tvRecipientDevices"), Lines{});
    EXPECT_FALSE(pane->isChanged());
    EXPECT_EQ(host.countInLog("ERROR"), 0);
}

TEST_F(RecipientPanes, KindsThatAreNotOfferedAreLeftOutOfTheDevices) {
    core::gSnmpSupported = false;
    show(1);
    EXPECT_EQ(linesOf("tvRecipientDevices"), (Lines{"Voice mail", " Ana A", "E-mail", " Ana E",
                                                    "SMTP Address", " a@b", " c@d", "Syslog", " host"}));
    for (int tab = 0; tab < tabs->count(); ++tab)
        EXPECT_EQ(tabs->isTabVisible(tab), tab != 1 && tab != 4 && tab != 6) << tab;
    EXPECT_EQ(host.countInLog("ERROR"), 0);

    run("DELETE FROM AddressDetails WHERE DeviceKey < 15; DELETE FROM Device WHERE DeviceKey < 15");
    show(1);
    EXPECT_EQ(linesOf("tvRecipientDevices"), (Lines{"Syslog", " host"}));
    EXPECT_EQ(host.countInLog("ERROR", "displayDevicesForRecipient", "Err.Number = 424"), 1);
}

TEST_F(RecipientPanes, EveryEditCountsAsAChange) {
    core::gFailoverSupported = core::gPagerSupported = true;
    show(3);
    const std::pair<const char*, std::function<void()>> edits[] = {
        {"name", [&] { type("txtRecipientName", "Cyr"); }},
        {"active", [&] { push("chkRecipientActive"); }},
        {"pager", [&] { type("txtPagerNumber", "1"); }},
        {"pager added", [&] { push("cmdAddToPagerList"); }},
        {"smtp", [&] { type("txtSMTPAddress", "x"); }},
        {"snmp", [&] { push("chkSNMPTrapEnabled"); }},
        {"syslog", [&] { push("chkSyslogEnabled"); }},
        {"syslog host", [&] { type("txtSyslogHostAddress", "h"); }},
        {"failover", [&] { push("chkFailoverEnabled"); }},
        {"cleared", [&] { push("cmdClearEmail"); }},
        {"kind", [&] { push("optionVoiceMailType_1"); }},
    };
    for (const auto& [what, edit] : edits) {
        pane->discard();
        in<QWidget>("cmdRecipientApply")->setEnabled(false);
        edit();
        EXPECT_TRUE(pane->isChanged()) << what;
        EXPECT_TRUE(enabled("cmdRecipientApply")) << what;
    }
    EXPECT_TRUE(enabled("cmdSelectVoiceMail"));
    EXPECT_TRUE(enabled("cmdSelectEmail"));
    EXPECT_FALSE(enabled("cmdClearEmail"));

    type("txtRecipientName", "");
    EXPECT_FALSE(enabled("cmdRecipientApply"));
    push("chkRecipientActive");
    EXPECT_TRUE(enabled("cmdRecipientApply")) << "nobody else looks at the name";
}

TEST_F(RecipientPanes, ApplyStoresTheEditsAndKeepsTheDevicesThatStay) {
    core::gPagerSupported = true;
    openDirectory();
    show(3);
    clickEntry("tvPagerNumbers", 0);
    EXPECT_EQ(textOf("txtPagerNumber"), "555");
    type("txtPagerNumber", "777");
    push("cmdAddToPagerList");
    clickEntry("tvPagerNumbers", 1);
    push("cmdDeletePager");
    EXPECT_FALSE(enabled("cmdDeletePager"));
    EXPECT_EQ(textOf("txtPagerNumber"), "556") << "the box keeps its text";
    push("cmdAddToPagerList");
    type("txtRecipientName", "Cyrus");
    push("chkRecipientActive");
    push("chkSyslogEnabled");
    push("cmdRecipientApply");
    EXPECT_FALSE(pane->isChanged());
    EXPECT_FALSE(enabled("cmdRecipientApply"));
    EXPECT_EQ(tree->selectedKey(), "RecipientKey:3");
    EXPECT_EQ(tree->nodeText("RecipientKey:3"), "Cyrus");
    EXPECT_EQ(active(3), "-1");
    const std::string devices = "SELECT DeviceType, DeviceAddress FROM Device WHERE DeviceKey";
    EXPECT_EQ(value(devices + " = 31"), "2|777");
    EXPECT_EQ(rows(devices + " > 31 ORDER BY 1, 2"), (Lines{"2|556", "3|id3", "6|"}))
        << "a syslog device without a host may be stored";
    EXPECT_EQ(value("SELECT Count(*) FROM AddressDetails WHERE DisplayName LIKE '777%'"), "1");
    EXPECT_EQ(linesOf("tvRecipientDevices").at(0), "Pager");
    EXPECT_EQ(linesOf("tvRecipientDevices").at(1), " 777") << "the pane shows what is stored";
}

TEST_F(RecipientPanes, LeavingAsksWhatBecomesOfTheEdits) {
    openDirectory();
    const auto name = [&] { return value("SELECT RecipientName FROM Recipients WHERE RecipientKey = 1"); };
    show(1);
    clickNode("RecipientKey:1");
    type("txtRecipientName", "Anna");
    prompts.expect(saveQuestion, BoxAnswer::cancel);
    clickNode("keyRecipients");
    EXPECT_EQ(visiblePane(), 3);
    EXPECT_EQ(tree->selectedKey(), "RecipientKey:1");
    EXPECT_EQ(textOf("txtRecipientName"), "Anna");
    prompts.expect(saveQuestion, BoxAnswer::no);
    clickNode("keyRecipients");
    EXPECT_EQ(visiblePane(), 2);
    EXPECT_EQ(name(), "Ana");
    clickNode("RecipientKey:1");
    EXPECT_EQ(textOf("txtRecipientName"), "Ana");
    type("txtRecipientName", "Anna");
    prompts.expect(saveQuestion, BoxAnswer::yes);
    clickNode("RecipientKey:2");
    EXPECT_EQ(name(), "Anna");
    EXPECT_EQ(textOf("txtRecipientName"), "Ben");
    EXPECT_FALSE(enabled("cmdRecipientApply"));
    EXPECT_TRUE(prompts.finished());
}

TEST_F(RecipientPanes, CancelledSearchIsAChangeAndSearchAfterClearIsForLists) {
    openDirectory();
    show(3);
    push("optionEmailType_0");
    push("optionEmailType_1");
    pane->discard();
    in<QWidget>("cmdRecipientApply")->setEnabled(false);
    script.expect("dlgSelect", [](QWidget& search) { search.close(); });
    push("cmdSelectEmail");
    EXPECT_TRUE(pane->isChanged());
    EXPECT_TRUE(enabled("cmdRecipientApply"));
    EXPECT_EQ(textOf("txtEmail"), "") << "the other kind took the entry";
    EXPECT_TRUE(script.finished());
}

TEST_F(RecipientPanes, EventsOfARecipientLeadToTheEvent) {
    const std::string all = std::to_string(add("Backup", "-1", "nightly"));
    const std::string one = std::to_string(add("Alarm", "17", "other"));
    run("INSERT INTO EventDevice VALUES(" + all + ", 11, -1), (" + all + ", 12, -1), (" + one +
        ", 13, 0), (" + std::to_string(core::gIgnoreEventKey) + ", 11, -1)");
    show(1);
    Lines events = linesOf("tvEventsMonitored");
    std::sort(events.begin(), events.end());
    EXPECT_EQ(events, (Lines{"Alarm (17)", "Backup (All)"}));
    auto* monitored = in<ui::KeyedTree>("tvEventsMonitored");
    monitored->select(monitored->keyAt(1));
    QTest::keyClick(monitored, Qt::Key_Down);
    EXPECT_EQ(visiblePane(), 3) << "keys only move";
    QTest::keyClick(monitored, Qt::Key_Return);
    EXPECT_EQ(tree->selectedKey(), "EventKey-" + std::string(monitored->keyAt(2)).substr(9));
    show(1);
    const QPoint place = uiTest::placeOf(*monitored, "EventKey:" + all);
    QTest::mouseMove(monitored->viewport(), place);
    EXPECT_EQ(monitored->toolTip(), "nightly");
    QTest::mouseClick(monitored->viewport(), Qt::LeftButton, {}, place);
    EXPECT_EQ(tree->selectedKey(), "EventKey-" + all);
    EXPECT_EQ(visiblePane(), 1);
}

TEST_F(RecipientPanes, TestUsesWhatIsStoredAfterItsQuestion) {
    support::ManualClock clock;
    const std::string hidden =
        "SELECT Count(*) FROM EventDevice WHERE EventKey = " + std::to_string(core::gIgnoreEventKey);
    run("DELETE FROM DeviceRecipient WHERE DeviceKey = 17");  // failover has a question of its own
    show(1);
    type("txtRecipientName", "");
    prompts.expect(testQuestion, BoxAnswer::no);
    push("cmdTestNotification");
    EXPECT_EQ(value(hidden), "0");
    prompts.expect(testQuestion, BoxAnswer::yes);
    push("cmdTestNotification");
    EXPECT_EQ(value(hidden), "6");
    EXPECT_EQ(platform::readEvents("Application").size(), 1U);
    EXPECT_TRUE(pane->isChanged());
    EXPECT_EQ(value("SELECT RecipientName FROM Recipients WHERE RecipientKey = 1"), "Ana");
    pane->discard();
    core::gIgnoreEventKey = -1;
    show(2);
    EXPECT_FALSE(enabled("cmdTestNotification"));
    show(1);
    EXPECT_FALSE(enabled("cmdTestNotification"));
}

TEST_F(RecipientPanes, RecipientsAreCreatedAndDeletedFromEveryPlace) {
    openDirectory();
    showList();
    script.expect("dlgRecipient", [](QWidget& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    press("cmdCreateNewRecipient");
    EXPECT_EQ(value("SELECT Count(*) FROM Recipients"), "3");
    script.expect("dlgRecipient", [](QWidget& dialog) {
        person::type(*dialog.findChild<QLineEdit*>("txtRecipientName"), "Dan");
        person::showPage(*dialog.findChild<ui::DeviceTabs*>(), 4);
        person::click(dialog, "chkSNMPTrapEnabled");
        person::click(dialog, "cmdOk");
    });
    chooseMenu("mnuFileNewRecipient");
    EXPECT_EQ(tree->selectedKey(), "RecipientKey:4");
    EXPECT_EQ(visiblePane(), 3);
    EXPECT_EQ(value("SELECT Count(*) FROM AddressDetails WHERE AddressType = 5"), "2") << "rebuilt";

    EXPECT_TRUE(find<QAction>("mnuFileDelete")->isEnabled());
    prompts.expect(deleteQuestion("Dan"), BoxAnswer::no);
    chooseMenu("mnuFileDelete");
    EXPECT_EQ(tree->selectedKey(), "RecipientKey:4");
    prompts.expect(deleteQuestion("Dan"), BoxAnswer::yes);
    chooseMenu("mnuFileDelete");
    EXPECT_EQ(tree->selectedKey(), "keyRecipients");
    EXPECT_FALSE(tree->contains("RecipientKey:4"));
    prompts.expect(deleteQuestion("Cy"), BoxAnswer::yes);
    script.expectMenu("mnuPopupDeleteRecipient");
    QTest::mouseClick(tree->viewport(), Qt::RightButton, {}, placeOf("RecipientKey:3"));
    EXPECT_EQ(grid->gridRowCount(), 2);
    clickCell(2, "RecipientName");
    prompts.expect(deleteQuestion("Ben"), BoxAnswer::yes);
    QTest::mouseClick(find<QPushButton>("cmdDeleteSelectedRecipient"), Qt::LeftButton);
    EXPECT_EQ(value("SELECT RecipientName FROM Recipients"), "Ana");
    EXPECT_EQ(grid->gridRowCount(), 1);
    script.expectMenu("mnuPopupNewRecipient");
    script.expect("dlgRecipient", [](QWidget& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    QTest::mouseClick(tree->viewport(), Qt::RightButton, {}, placeOf("keyRecipients"));
    EXPECT_TRUE(script.finished());
    EXPECT_TRUE(prompts.finished());
    EXPECT_EQ(host.countInLog("ERROR"), 0);
}

}  // namespace
