// Recipients with their devices, the directory, a test, and the way of an event to those whom it notifies.

#include <QLineEdit>
#include <QPushButton>
#include <QtTest/QTest>

#include "database/events.h"
#include "database/exclusions.h"
#include "tour/chapters.h"
#include "tour/hands.h"
#include "tour/keyboard.h"
#include "tour/stage.h"
#include "ui/base/text.h"
#include "ui/widgets/boundGrid.h"

namespace tour {

namespace {

enum DeviceTab { voiceMailTab, pagerTab, emailTab, smtpTab, snmpTab, syslogTab, failoverTab };

// Searches the directory and takes the third entry that it finds.
void chooseFromDirectory(const Play& play, QWidget& dialog, const char* option, const char* button,
                         const QString& picture) {
    tick(dialog, option);
    play.script.expect("dlgSelect", [picture](QWidget& search) {
        auto& grid = control<ui::BoundGrid>(search, "myGrid");
        press(search, "cmdSearch");
        const QModelIndex third = grid.model()->index(2, 2);
        insist(third.isValid(), "the directory does not answer");
        QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, grid.visualRect(third).center());
        walkByKeyboard(search);
        takePicture(picture);
        press(search, "cmdOk");
    });
    press(dialog, button);
}

void addAddress(QWidget& dialog, const QString& address) {
    typeOver(dialog, "txtSMTPAddress", address);
    press(dialog, "cmdAddToSMTPList");
}

// Fills every tab of the dialog.
void fillDevices(const Play& play, QWidget& dialog) {
    auto& tabs = control<ui::DeviceTabs>(dialog, "sstabDevices");
    insist(!tabs.isTabVisible(pagerTab), "pagers are offered");
    chooseFromDirectory(play, dialog, "optionVoiceMailType_0", "cmdSelectVoiceMail", "directory-subscribers");
    takePicture("new-recipient-voice-mail");
    showTab(tabs, emailTab);
    chooseFromDirectory(play, dialog, "optionEmailType_1", "cmdSelectEmail", "directory-lists");
    takePicture("new-recipient-e-mail");
    showTab(tabs, smtpTab);
    addAddress(dialog, "night.desk@example.net");
    addAddress(dialog, "duty.manager@example.net");
    takePicture("new-recipient-smtp");
    showTab(tabs, snmpTab);
    tick(dialog, "chkSNMPTrapEnabled");
    takePicture("new-recipient-snmp");
    showTab(tabs, syslogTab);
    tick(dialog, "chkSyslogEnabled");
    typeOver(dialog, "txtSyslogHostAddress", "loghost.example.net");
    takePicture("new-recipient-syslog");
    showTab(tabs, failoverTab);
    tick(dialog, "chkFailoverEnabled");
    takePicture("new-recipient-failover");
}

// The recipient of the tree with that name.
std::string recipientNode(const Play& play, const std::string& name) {
    for (const std::string& key : play.tree().childKeys("keyRecipients"))
        if (play.tree().nodeText(key) == name)
            return key;
    insist(false, "no recipient " + ui::fromUtf8(name));
    return {};
}

}  // namespace

void playRecipients(const Play& play) {
    ui::KeyedTree& tree = play.tree();
    play.script.expect("dlgRecipient", [&play](QWidget& dialog) {
        insist(!control<QPushButton>(dialog, "cmdOk").isEnabled(), "OK is enabled before anything is given");
        typeOver(dialog, "txtRecipientName", "Night desk");
        fillDevices(play, dialog);
        press(dialog, "cmdOk");
    });
    chooseMenu(play.window, {"mnuFile", "mnuFileNew", "mnuFileNewRecipient"});
    insist(tree.nodeText(tree.selectedKey()) == "Night desk", "the new recipient is not selected");
    auto& tabs = control<ui::DeviceTabs>(play.window, "sstabRecipientDevices");
    for (const int tab : {voiceMailTab, emailTab, smtpTab, snmpTab, syslogTab, failoverTab}) {
        showTab(tabs, tab);
        walkByKeyboard(play.window);
        takePicture("recipient-" + QString::number(tab + 1));
    }
    expectBox(play.script, 1240, QMessageBox::Yes, "test-notification");
    expectBox(play.script, 1298, QMessageBox::No);
    press(play.window, "cmdTestNotification");

    clickNode(tree, "keyRecipients");
    play.script.expect("dlgRecipient", [](QWidget& dialog) {
        typeOver(dialog, "txtRecipientName", "Day shift");
        showTab(control<ui::DeviceTabs>(dialog, "sstabDevices"), smtpTab);
        addAddress(dialog, "day.shift@example.net");
        press(dialog, "cmdOk");
    });
    press(play.window, "cmdCreateNewRecipient");
    typeOver(play.window, "txtRecipientName", "Day shift, weekdays");
    expectBox(play.script, 1136, QMessageBox::Yes, "save-recipient");
    clickNode(tree, "keyRecipients");
    insist(control<ui::KeyedGrid>(play.window, "vsflexgridAllRecipients").gridRowCount() == 2,
           "the list does not show both recipients");
    walkByKeyboard(play.window);
    takePicture("recipients");
    ui::KeyedGrid& list = control<ui::KeyedGrid>(play.window, "vsflexgridAllRecipients");
    list.setFocus();
    QTest::keyClick(&list, Qt::Key_F, Qt::ControlModifier);
    type(control<QLineEdit>(play.window, "txtFind"), "weekdays");
    tick(play.window, "chkOnlyMatches");
    insist(list.isRowHidden(0) != list.isRowHidden(1), "the filter does not leave one recipient");
    walkByKeyboard(play.window);
    takePicture("find-bar");
    QTest::keyClick(&control<QLineEdit>(play.window, "txtFind"), Qt::Key_Escape);
    insist(!list.isRowHidden(0) && !list.isRowHidden(1), "a closed filter hides a recipient");
}

void playAssignment(const Play& play) {
    ui::KeyedTree& tree = play.tree();
    constexpr long key = 3;  // of the first event that a fresh configuration gets
    clickNode(tree, nodeOf(play.window, nodeTypeEvent, key));
    auto& pane = control<QWidget>(play.window, "vsviewportDetails_1");
    auto& apply = control<QPushButton>(pane, "cmdEventApply");

    // An active event without recipients asks for some.
    auto& notes = control<QLineEdit>(pane, "txtEventTitle");
    notes.setFocus();
    QTest::keyClick(&notes, Qt::Key_End);
    type(notes, "!");
    insist(apply.isEnabled(), "the typing is no change");
    expectBox(play.script, 1159, QMessageBox::Yes, "no-recipients");
    play.script.expect("dlgEditRecipients", [](QWidget& dialog) {
        auto& recipients = control<ui::KeyedTree>(dialog, "tvRecipients");
        // By keyboard: the second recipient's box takes his devices along.
        recipients.setFocus();
        QTest::keyClick(&recipients, Qt::Key_End);
        while (!recipients.parentKey(recipients.selectedKey()).empty())
            QTest::keyClick(&recipients, Qt::Key_Up);
        QTest::keyClick(&recipients, Qt::Key_Space);
        walkByKeyboard(dialog);
        takePicture("edit-recipients");
        press(dialog, "cmdOk");
    });
    expectBox(play.script, 1298, QMessageBox::Yes, "failover-question");
    press(pane, "cmdEventApply");
    insist(mdlDatabase::isEventActive(key) && mdlDatabase::getEventState(key) == 0,
           "the event is not complete");
    walkByKeyboard(play.window);
    takePicture("event-active");

    // Leaving the changed event asks; Cancel stays.
    tick(pane, "chkActive");
    expectBox(play.script, 1136, QMessageBox::Cancel, "save-event");
    clickNode(tree, tree.keyAt(1));
    insist(tree.info(tree.selectedKey()).key == key && apply.isEnabled(), "Cancel did not stay");
    expectBox(play.script, 1136, QMessageBox::No);
    clickNode(tree, recipientNode(play, "Night desk"));
    takePicture("recipient-with-event");
}

}  // namespace tour
