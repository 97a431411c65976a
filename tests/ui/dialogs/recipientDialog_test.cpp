// The new-recipient dialog with its seven tabs, driven as a person does.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QCheckBox>
#include <QLineEdit>
#include <QMainWindow>
#include <QPushButton>
#include <QRadioButton>
#include <QtTest/QTest>

#include "core/state.h"
#include "database/recipients.h"
#include "host/directory.h"
#include "platform/machine/host.h"
#include "server/mdlCorvaneDatabase.h"
#include "support/person.h"
#include "support/temporaryHost.h"
#include "support/windowScript.h"
#include "ui/dialogs/dlgRecipient.h"
#include "ui/dialogs/dlgSelect.h"
#include "ui/parts/deviceTabs.h"
#include "ui/widgets/boundGrid.h"
#include "ui/widgets/entryList.h"

namespace {

class RecipientDialog : public ::testing::Test {
  protected:
    RecipientDialog() : script([](const QString& message) { ADD_FAILURE() << qPrintable(message); }) {
        host::createDirectory(
            platform::host::directoryDatabase(), host::DirectoryLayout::tables,
            [](host::DirectoryWriter& writer) { host::fillDemonstrationDirectory(writer, 40, 24); });
        mdlCorvaneDatabase::openCorvaneDB(core::gCorvaneDb);
        core::gPagerSupported = core::gSnmpSupported = core::gFailoverSupported = true;
        make();
        top.show();
    }

    void make() {
        dialog = std::make_unique<dlgRecipient>(&top);
        tabs = find<ui::DeviceTabs>("sstabDevices");
    }
    template <class Control>
    Control* find(const char* name) {
        return dialog->findChild<Control*>(name);
    }
    void show(const std::function<void()>& action) {
        script.expect("dlgRecipient", [&](QWidget&) {
            action();
            if (dialog->isVisible())
                click("cmdCancel");
        });
        dialog->displayForm();
        EXPECT_TRUE(script.finished());
    }
    void click(const char* name) { person::click(*dialog, name); }
    void type(const char* name, const char* text) { person::type(*find<QLineEdit>(name), text); }
    void expectEnabled(std::initializer_list<const char*> names, bool enabled) {
        for (const char* name : names)
            EXPECT_EQ(find<QWidget>(name)->isEnabled(), enabled) << name;
    }
    bool okEnabled() { return find<QPushButton>("cmdOk")->isEnabled(); }
    void clickEntry(ui::EntryList* list, int index) {
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                          list->visualItemRect(list->item(index)).center());
    }
    // Presses a Select button and takes the first row that the search window finds.
    void select(const char* button, const QString& title, std::string& types) {
        script.expect(title, [&](QWidget& window) {
            auto& search = dynamic_cast<dlgSelect&>(window);
            types = search.subscriberTypes;
            person::click(search, "cmdSearch");
            auto* grid = search.findChild<ui::BoundGrid*>("myGrid");
            grid->setFocus();
            QTest::keyClick(grid, Qt::Key_Down);
            QTest::keyClick(grid, Qt::Key_Return);
        });
        click(button);
    }

    support::TemporaryHost host;
    support::WindowScript script;
    QMainWindow top;
    std::unique_ptr<dlgRecipient> dialog;
    ui::DeviceTabs* tabs = nullptr;
};

TEST_F(RecipientDialog, NeedsANameAndADevice) {
    show([&] {
        EXPECT_EQ(dialog->windowTitle(), "Create New Recipient");
        EXPECT_FALSE(okEnabled());
        expectEnabled({"cmdSelectVoiceMail", "cmdClearVoiceMail", "cmdSelectEmail", "cmdClearEmail",
                       "cmdAddToPagerList", "cmdDeletePager", "cmdAddToSMTPList", "cmdDeleteSMTPAddress",
                       "txtSyslogHostAddress"},
                      false);
        EXPECT_FALSE(find<QRadioButton>("optionVoiceMailType_0")->isChecked());
        type("txtRecipientName", "Ana");
        EXPECT_FALSE(okEnabled());
        for (const auto& [tab, box] :
             {std::pair(4, "chkSNMPTrapEnabled"), {5, "chkSyslogEnabled"}, {6, "chkFailoverEnabled"}}) {
            person::showPage(*tabs, tab);
            click(box);
            EXPECT_TRUE(okEnabled()) << box;
            EXPECT_EQ(find<QWidget>("txtSyslogHostAddress")->isEnabled(), tab == 5);
            click(box);
            EXPECT_FALSE(okEnabled()) << box;
        }
        person::showPage(*tabs, 5);
        click("chkSyslogEnabled");
        type("txtRecipientName", "");
        EXPECT_FALSE(okEnabled());
        type("txtRecipientName", " ");
        click("cmdOk");
    });
    EXPECT_FALSE(dialog->cancelled);
    const auto record = dialog->newRecipient();
    EXPECT_EQ(record.name, " ");
    EXPECT_TRUE(record.syslogEnabled);
    EXPECT_EQ(record.syslogHostAddress, "");
    EXPECT_FALSE(record.snmpTrapEnabled || record.failoverEnabled);

    show([&] {
        EXPECT_FALSE(okEnabled());
        EXPECT_EQ(tabs->currentIndex(), 0);
        QTest::keyClick(dialog.get(), Qt::Key_Escape);
    });
    EXPECT_TRUE(dialog->cancelled);
    EXPECT_EQ(host.countInLog("Err.Number"), 0);
}

TEST_F(RecipientDialog, ListsAreEditedByTheirBoxes) {
    show([&] {
        type("txtRecipientName", "Ana");
        person::showPage(*tabs, 3);
        ui::EntryList* list = tabs->smtp->list;
        for (const auto& [text, accepted] : {std::pair("a@b", true),
                                             {"@b", false},
                                             {"a@", false},
                                             {"ab", false},
                                             {"", false},
                                             {"@a@b", false}}) {
            type("txtSMTPAddress", text);
            EXPECT_EQ(find<QWidget>("cmdAddToSMTPList")->isEnabled(), accepted) << text;
        }
        for (const char* address : {"one@example.org", "two@example.org"}) {
            type("txtSMTPAddress", address);
            click("cmdAddToSMTPList");
            EXPECT_EQ(find<QLineEdit>("txtSMTPAddress")->text(), "");
        }
        EXPECT_TRUE(okEnabled());
        EXPECT_FALSE(find<QWidget>("cmdDeleteSMTPAddress")->isEnabled());
        clickEntry(list, 1);
        EXPECT_EQ(find<QLineEdit>("txtSMTPAddress")->text(), "two@example.org");
        type("txtSMTPAddress", "2@example.org");
        click("cmdAddToSMTPList");
        EXPECT_EQ(list->count(), 2);
        EXPECT_EQ(list->entryText(1), "2@example.org");
        // Deleting ends the editing: the next addition is a new entry.
        list->setFocus();
        QTest::keyClick(list, Qt::Key_Up);
        EXPECT_EQ(find<QLineEdit>("txtSMTPAddress")->text(), "one@example.org");
        click("cmdDeleteSMTPAddress");
        EXPECT_FALSE(find<QWidget>("cmdDeleteSMTPAddress")->isEnabled());
        EXPECT_EQ(find<QLineEdit>("txtSMTPAddress")->text(), "one@example.org");
        click("cmdAddToSMTPList");
        EXPECT_EQ(list->count(), 2);
        for (int left = 2; left > 0; --left) {
            EXPECT_TRUE(okEnabled());
            clickEntry(list, 0);
            click("cmdDeleteSMTPAddress");
        }
        EXPECT_FALSE(okEnabled());

        person::showPage(*tabs, 1);
        type("txtPagerNumber", "x");
        click("cmdAddToPagerList");
        clickEntry(tabs->pagers->list, 0);
        EXPECT_TRUE(okEnabled());
        click("cmdOk");
    });
    const auto record = dialog->newRecipient();
    ASSERT_EQ(record.pagerNumbers.size(), 1u);
    EXPECT_EQ(record.pagerNumbers[0].address, "x");
    EXPECT_EQ(record.pagerNumbers[0].nodeKey, "");
    show([&] {
        EXPECT_EQ(tabs->pagers->list->count(), 0);
        EXPECT_EQ(find<QLineEdit>("txtPagerNumber")->text(), "");
        // The delete button is not reset; on the empty list it does nothing but leave a line in the log.
        person::showPage(*tabs, 1);
        EXPECT_TRUE(find<QWidget>("cmdDeletePager")->isEnabled());
        EXPECT_EQ(host.countInLog("Err.Number"), 0);
        click("cmdDeletePager");
        EXPECT_EQ(host.countInLog("Err.Number = 5 "), 1);
        EXPECT_FALSE(find<QWidget>("cmdDeletePager")->isEnabled());
    });
}

TEST_F(RecipientDialog, DirectoryEntriesAreSearchedForByKind) {
    host.openConfiguration();
    std::string types;
    show([&] {
        type("txtRecipientName", "Ana");
        click("optionVoiceMailType_0");
        EXPECT_TRUE(find<QWidget>("cmdSelectVoiceMail")->isEnabled());
        select("cmdSelectVoiceMail", "Subscriber Search", types);
        EXPECT_EQ(types, "(1,2,3,5,7,8)");
        EXPECT_NE(find<QLineEdit>("txtVoiceMail")->text(), "");
        EXPECT_TRUE(find<QLineEdit>("txtVoiceMail")->isReadOnly());
        EXPECT_TRUE(okEnabled());
        // Another kind drops the entry; the same one again does not.
        click("optionVoiceMailType_1");
        EXPECT_EQ(find<QLineEdit>("txtVoiceMailDirectoryId")->text(), "");
        expectEnabled({"cmdClearVoiceMail", "cmdOk"}, false);
        click("optionVoiceMailType_0");
        select("cmdSelectVoiceMail", "Subscriber Search", types);
        click("optionVoiceMailType_0");
        EXPECT_NE(find<QLineEdit>("txtVoiceMailDirectoryId")->text(), "");

        person::showPage(*tabs, 2);
        click("optionEmailType_0");
        select("cmdSelectEmail", "Subscriber Search", types);
        EXPECT_EQ(types, "(1,2,3)");
        const QString kept = find<QLineEdit>("txtEmail")->text();
        script.expect("dlgSelect", [](QWidget& window) { window.close(); });
        click("cmdSelectEmail");
        EXPECT_EQ(find<QLineEdit>("txtEmail")->text(), kept);
        click("cmdClearEmail");
        EXPECT_EQ(find<QLineEdit>("txtEmail")->text(), "");
        for (const char* option : {"optionEmailType_0", "optionEmailType_1"})
            EXPECT_FALSE(find<QRadioButton>(option)->isChecked());
        EXPECT_FALSE(find<QWidget>("cmdClearEmail")->isEnabled());
        // Without an option it is the lists that are searched.
        select("cmdSelectEmail", "Distribution List Search", types);
        click("cmdOk");
    });
    const auto record = dialog->newRecipient();
    EXPECT_NE(record.voiceMailDirectoryId, "");
    const long key = mdlDatabase::addNewRecipient(record);
    EXPECT_EQ(support::query(host.databaseFile(), "SELECT DeviceType, DeviceAddress FROM Device ORDER BY 1"),
              (std::vector<std::string>{"1|" + record.voiceMailDirectoryId, "3|" + record.emailDirectoryId}));
    EXPECT_GT(key, 0);
    // Options and Clear buttons stay as they were left.
    show([&] {
        EXPECT_TRUE(find<QRadioButton>("optionVoiceMailType_0")->isChecked());
        EXPECT_TRUE(find<QWidget>("cmdClearVoiceMail")->isEnabled());
        EXPECT_EQ(find<QLineEdit>("txtVoiceMail")->text(), "");
        EXPECT_FALSE(okEnabled());
    });
    EXPECT_EQ(host.countInLog("Err.Number"), 0);
}

TEST_F(RecipientDialog, UnsupportedKindsAreOutOfSightAndTabsStandInRowsOfFour) {
    const auto place = [&](const char* caption) {
        for (const QAbstractButton* tab : tabs->findChildren<QAbstractButton*>())
            if (tab->text() == caption && tab->parentWidget()->objectName() == "tabStrip")
                return tab->isVisible() ? tab->geometry() : QRect();
        return QRect();
    };
    show([&] {
        EXPECT_EQ(place("SMTP").top(), place("Voice Mail").top());
        EXPECT_GT(place("SNMP Trap").top(), place("SMTP").top());
        EXPECT_EQ(place("SNMP Trap").left(), place("Voice Mail").left());
        EXPECT_EQ(place("Failover").width(), place("Pager").width());
        // Along the tabs and into a page by keyboard.
        for (QAbstractButton* tab : tabs->findChildren<QAbstractButton*>())
            if (tab->text() == "Voice Mail")
                tab->setFocus();
        QTest::keyClick(dialog->focusWidget(), Qt::Key_Right);
        EXPECT_EQ(tabs->currentIndex(), 1);
        QTest::keyClick(dialog->focusWidget(), Qt::Key_Tab);
        EXPECT_EQ(dialog->focusWidget()->objectName().toStdString(), "txtPagerNumber");
        for (const char* next : {"lstPagerNumbers", "cmdCancel", "txtRecipientName"}) {
            QTest::keyClick(dialog->focusWidget(), Qt::Key_Tab);
            EXPECT_EQ(dialog->focusWidget()->objectName().toStdString(), next);
        }
    });
    core::gPagerSupported = core::gSnmpSupported = core::gFailoverSupported = false;
    make();
    show([&] {
        for (const char* hidden : {"Pager", "SNMP Trap", "Failover"})
            EXPECT_TRUE(place(hidden).isNull()) << hidden;
        EXPECT_EQ(place("Syslog").top(), place("Voice Mail").top());
        person::showPage(*tabs, 5);
        EXPECT_TRUE(find<QCheckBox>("chkSyslogEnabled")->isVisible());
    });
}

}  // namespace
