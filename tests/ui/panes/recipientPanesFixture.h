// Three recipients in the console's window, and a person's hands on their panes.
#pragma once

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

namespace uiTest {

using platform::BoxAnswer;
using platform::BoxButtons;
using platform::BoxIcon;
using Lines = std::vector<std::string>;

inline const platform::MessageBox saveRecipientQuestion{
    "Recipient settings have changed.\nDo you want to save changes your changes?",
    "Save Changes Confirmation", BoxIcon::question, BoxButtons::yesNoCancel};
inline const platform::MessageBox testQuestion{
    "This will create an informational event log message and attempt notification for all of this recipients "
    "devices.\nDo you want to perform the test?",
    "Test notification for this recipient", BoxIcon::question, BoxButtons::yesNo};

inline platform::MessageBox deleteQuestion(const std::string& name) {
    return {"Are your sure you want to delete recipient: " + name, "Delete Selected Recipient?",
            BoxIcon::question, BoxButtons::yesNo};
}

// Ana has a device of every kind but the pager, two of SMTP; Ben has none; Cy is switched off and has pagers
// and a distribution list for e-mail.
class RecipientPanes : public MainWindow {
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

}  // namespace uiTest
