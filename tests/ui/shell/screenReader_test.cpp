// What a program for disabled people is told of the windows: as much as the eye is.

#include <gtest/gtest.h>

#include <QAccessible>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QScrollArea>

#include "support/mainWindowFixture.h"
#include "ui/dialogs/dlgAddExclusion.h"
#include "ui/dialogs/dlgEditRecipients.h"
#include "ui/dialogs/dlgEvent.h"
#include "ui/dialogs/dlgExclusions.h"
#include "ui/dialogs/dlgRecipient.h"
#include "ui/dialogs/dlgSelect.h"
#include "ui/dialogs/frmAbout.h"
#include "ui/dialogs/frmOptions.h"
#include "ui/parts/deviceTabs.h"

namespace {

using uiTest::MainWindow;

QAccessibleInterface& spoken(QObject* object) {
    return *QAccessible::queryAccessibleInterface(object);
}

// The part of that role and name, wherever it stands below another; null when there is none.
QAccessibleInterface* partOf(QAccessibleInterface& whole, QAccessible::Role role, const QString& name) {
    for (int i = 0; i < whole.childCount(); ++i) {
        QAccessibleInterface* part = whole.child(i);
        if (part && part->role() == role && part->text(QAccessible::Name) == name)
            return part;
        QAccessibleInterface* found = part ? partOf(*part, role, name) : nullptr;
        if (found)
            return found;
    }
    return nullptr;
}

std::string stateOf(QWidget* tree, const char* node) {
    const QAccessibleInterface* item = partOf(spoken(tree), QAccessible::TreeItem, node);
    return item ? item->text(QAccessible::Description).toStdString() : "no such node";
}

class ScreenReader : public MainWindow {
  protected:
    // Ana can be reached, Ben is off, and of Eve an entry of the directory is gone. Ana is on the event.
    void addRecipients(long event) {
        run("INSERT INTO Recipients VALUES(1, 'Ana', -1), (2, 'Ben', 0), (3, 'Eve', -1);"
            "INSERT INTO Device VALUES(1, 4, 'a@b', -1), (2, 4, 'b@b', -1), (3, 1, '{E}', -1);"
            "INSERT INTO DeviceRecipient VALUES(1, 1), (2, 2), (3, 3);"
            "INSERT INTO AddressDetails VALUES('a@b', 'a@b', 4, 1), ('b@b', 'b@b', 4, 2),"
            "('{E}', 'gone', 0, 3);"
            "INSERT INTO EventDevice VALUES(" +
            std::to_string(event) + ", 1, -1), (" + std::to_string(event) + ", 2, 0);");
    }
};

TEST_F(ScreenReader, NodesAndCellsSayTheirState) {
    const long event = add("Backup", "17", "nightly");
    const long lonely = add("Alarm", "5");
    for (const long each : {event, lonely})
        mdlDatabase::setEventActiveState(each, true);
    add("Cluster", "9");
    addRecipients(event);
    open();
    EXPECT_EQ(stateOf(tree, "Backup (17)"), "Event: Active");
    EXPECT_EQ(stateOf(tree, "Alarm (5)"),
              "Event: Active, Recipients: 0, No Active Recipients, No Active Devices");
    EXPECT_EQ(stateOf(tree, "Cluster (9)").substr(0, 15), "Event: Inactive");
    EXPECT_EQ(stateOf(tree, "Ana"), "Active");
    EXPECT_EQ(stateOf(tree, "Ben"), "Inactive");
    EXPECT_EQ(stateOf(tree, "Eve"), "Active, Address Not Found");
    EXPECT_EQ(stateOf(tree, "Recipients"), "");

    QAccessibleTableInterface* cells = spoken(grid).tableInterface();
    for (int row = 0; row < cells->rowCount(); ++row) {
        const QAccessibleInterface* cell = cells->cellAt(row, 0);
        EXPECT_EQ(cell->text(QAccessible::Name), "Active");
        EXPECT_TRUE(cell->state().checkable);
        EXPECT_EQ(cell->state().checked, grid->cellValue(row + 1, "EventActive").toBool());
    }

    clickNode("EventKey-" + std::to_string(event));
    auto* recipients = find<ui::KeyedTree>("tvRecipients");
    recipients->expandAll();
    EXPECT_EQ(stateOf(recipients, "Ana"), "Active");
    EXPECT_EQ(stateOf(recipients, "Ben"), "Inactive");
    EXPECT_EQ(stateOf(recipients, "b@b"), "Inactive");
    EXPECT_TRUE(partOf(spoken(recipients), QAccessible::TreeItem, "Ana")->state().checked);
    EXPECT_FALSE(partOf(spoken(recipients), QAccessible::TreeItem, "Ben")->state().checked);

    clickNode("keyRecipients");
    auto* all = find<ui::KeyedGrid>("vsflexgridAllRecipients");
    EXPECT_TRUE(partOf(spoken(all), QAccessible::Cell, "Voice mail")) << "Eve has one";
    EXPECT_TRUE(partOf(spoken(all), QAccessible::Cell, "Voice mail: 0")) << "the others have none";
}

TEST_F(ScreenReader, TheDeviceTabsAreTabs) {
    run("INSERT INTO Recipients VALUES(1, 'Ana', -1)");
    open();
    clickNode("RecipientKey:1");
    auto* tabs = find<ui::DeviceTabs>("sstabRecipientDevices");
    const auto tab = [&](const char* caption) { return partOf(spoken(tabs), QAccessible::PageTab, caption); };
    ASSERT_TRUE(tab("Voice Mail"));
    EXPECT_EQ(tab("Voice Mail")->parent()->role(), QAccessible::PageTabList);
    EXPECT_TRUE(tab("Voice Mail")->state().selected);
    EXPECT_TRUE(tab("Syslog")->state().selectable);
    tab("Syslog")->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_TRUE(tab("Syslog")->state().selected);
    EXPECT_FALSE(tab("Voice Mail")->state().selected);
    EXPECT_TRUE(tabs->chkSyslogEnabled->isVisible());
}

// Everything that can be worked with has a name, and what is said behind the name is neither the name again
// nor markup.
void expectNames(QWidget& window) {
    for (QWidget* control : window.findChildren<QWidget*>()) {
        const bool isWorkedWith = control->focusPolicy() & Qt::TabFocus && !control->focusProxy() &&
                                  !control->objectName().startsWith("qt_") &&
                                  control->window() == &window &&  // and not the list of a box
                                  control->objectName() != "txtVoiceMailDirectoryId" &&
                                  control->objectName() != "txtEmailDirectoryId";
        const auto* picture = qobject_cast<QLabel*>(control);
        const bool isPicture = picture && !picture->pixmap(Qt::ReturnByValue).isNull();
        if (!isWorkedWith && !isPicture)
            continue;
        const QAccessibleInterface& told = spoken(control);
        const QString name = told.text(QAccessible::Name);
        const QString more = told.text(QAccessible::Description);
        const auto where = [&] {
            return qPrintable(window.objectName() + ": " + control->objectName() + " (" +
                              control->metaObject()->className() + ") \"" + name + "\"");
        };
        EXPECT_FALSE(name.trimmed().isEmpty()) << where();
        EXPECT_TRUE(more.isEmpty() || more != name) << where();
        EXPECT_FALSE(more.contains('<')) << where() << qPrintable(more);
    }
}

TEST_F(ScreenReader, WhatCanBeWorkedWithHasOneName) {
    open();
    expectNames(*window);
    dlgAddExclusion exclusion(window.get());
    dlgEditRecipients recipients(window.get());
    dlgEvent event(window.get());
    dlgExclusions exclusions(window.get());
    dlgRecipient recipient(window.get());
    frmAbout about(window.get());
    frmOptions options(window.get());
    for (QDialog* dialog : std::initializer_list<QDialog*>{&exclusion, &recipients, &event, &exclusions,
                                                           &recipient, &about, &options})
        expectNames(*dialog);
    dlgSelect select(window.get());
    select.show();
    expectNames(select);
}

TEST_F(ScreenReader, TheTipComesByKeyboardToo) {
    const long event = add("Backup", "17", "nightly");
    open();
    clickNode("EventKey-" + std::to_string(event));
    QTest::keyClick(tree, Qt::Key_F1, Qt::ControlModifier);
    const auto* tip = find<QLabel>("tooltip");
    EXPECT_TRUE(tip->isVisible());
    EXPECT_EQ(tip->text().section('\n', 0, 0), "nightly");
    QTest::keyClick(tree, Qt::Key_Down);
    EXPECT_FALSE(tip->isVisible());
}

TEST_F(ScreenReader, WhatTakesTheFocusScrollsIntoSight) {
    run("INSERT INTO Recipients VALUES(1, 'Ana', -1)");
    const long event = add("Backup", "17", "nightly");
    open();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    window->resize(window->width(), 300);
    for (const auto& [node, area, last] :
         {std::tuple("EventKey-" + std::to_string(event), "VSViewPort1", "comboEmailPriority"),
          std::tuple(std::string("RecipientKey:1"), "VSViewPort2", "tvEventsMonitored")}) {
        clickNode(node);
        EXPECT_FALSE(find<QScrollArea>(area)->focusPolicy() & Qt::TabFocus);
        auto* control = find<QWidget>(last);
        EXPECT_TRUE(control->visibleRegion().isEmpty()) << "the window is not low enough to tell";
        control->setFocus();
        EXPECT_EQ(control->visibleRegion().boundingRect().height(), control->height()) << last;
    }
}

}  // namespace
