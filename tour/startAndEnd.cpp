// How a run of the console begins and how its service ends, and the panes that this version keeps in
// reserve.

#include <QAbstractButton>
#include <QtTest/QTest>
#include <chrono>
#include <tuple>

#include "core/state.h"
#include "host/provision.h"
#include "platform/ado/ado.h"
#include "platform/machine/clock.h"
#include "tour/chapters.h"
#include "tour/hands.h"
#include "tour/keyboard.h"
#include "tour/stage.h"
#include "ui/base/text.h"
#include "ui/widgets/rowGrid.h"

namespace tour {

namespace {

void givePassword(support::WindowScript& script, const QString& password, const QString& picture) {
    script.expect("dlgServicePassword", [password, picture](QWidget& dialog) {
        type(control<QWidget>(dialog, "txtPassword"), password);
        walkByKeyboard(dialog);
        takePicture(picture);
        press(dialog, "cmdOk");
    });
}

// What the service would have written into the log of notifications in the last minutes, besides what it has
// written of the tour's own tests. Gives the number of all of it.
long notifySomebody() {
    constexpr int firstKey = 1000;  // far from the service's
    const std::pair<const char*, const char*> written[] = {
        {"MeridaneCorvane_MessageStore", "night.desk@example.net"},
        {"MeridaneCorvane_MessageStore", "Day Shift"},
        {"MeridaneCorvane_Telephony", "night.desk@example.net"}};
    auto moment = platform::clock().now() - std::chrono::minutes(50);
    int key = firstKey;
    for (const auto& [source, address] : written) {
        const std::string time = platform::storedForm(platform::localTime(moment));
        platform::Recordset row;
        row.open(
            "INSERT INTO NotificationLog(LogKey, LogTime, EventSource, EventID, DeviceAddress, "
            "Success) VALUES(" +
                std::to_string(++key) + ", '" + time + "', '" + source + "', 4711, '" + address +
                "', 'True')",
            core::gDatabase);
        moment += std::chrono::minutes(17);
    }
    platform::Recordset all;
    all.open("SELECT Count(*) AS Written FROM NotificationLog", core::gDatabase);
    return all.number("Written");
}

}  // namespace

void expectInstallation(support::WindowScript& script) {
    givePassword(script, "harbour", "password");
    expectBox(script, 1228, QMessageBox::Ok, "password-refused");
    const std::string_view password = host::demonstrationPassword;
    givePassword(script, QString::fromUtf8(password.data(), static_cast<qsizetype>(password.size())),
                 "password-again");
    takePictureWhenShown("frmSplash", "splash");
}

void expectUpgrade(support::WindowScript& script) {
    script.expect("messageBox", [](QWidget& box) {
        takePicture("upgrade");
        // No release offers pagers; the windows that come from here on show them all the same.
        core::gPagerSupported = true;
        QTest::mouseClick(dynamic_cast<QMessageBox&>(box).button(QMessageBox::Ok), Qt::LeftButton);
    });
    expectBox(script, 1224, QMessageBox::Ok, "service-warning");
}

void playDormant(const Play& play) {
    play.script.expect("dlgRecipient", [](QWidget& dialog) {
        auto& tabs = control<ui::DeviceTabs>(dialog, "sstabDevices");
        for (int tab = 0; tab < tabs.count(); ++tab) {
            showTab(tabs, tab);
            walkByKeyboard(dialog);
            takePicture("all-devices-" + QString::number(tab + 1));
        }
        // From one tab to the next the arrow keys lead.
        const auto buttons = tabs.findChild<QWidget*>("tabStrip")->findChildren<QAbstractButton*>();
        buttons.last()->setFocus();
        QTest::keyClick(buttons.last(), Qt::Key_Left);
        insist(tabs.currentIndex() == tabs.count() - 2, "the arrow keys do not turn the tabs");
        press(dialog, "cmdCancel");
    });
    chooseMenu(play.window, {"mnuFile", "mnuFileNew", "mnuFileNewRecipient"});

    // Nothing makes nodes of these types; with one in the tree the panes come alive.
    const long notifications = notifySomebody();
    for (const auto& [key, text, type] : {std::tuple("reports", 1032, nodeTypeCategoryReports),
                                          std::tuple("history", 1127, nodeTypeReport)}) {
        ui::KeyedTree::NewNode node;
        node.key = key;
        node.text = ui::toUtf8(ui::text(text));
        node.info.nodeType = type;
        play.tree().addNode(node);
        clickNode(play.tree(), key);
        walkByKeyboard(play.window);
        takePicture(key);
    }
    press(play.window, "cmdFilterByDate");
    insist(control<ui::RowGrid>(play.window, "vsflexgridReportData").gridRowCount() == notifications,
           "the report does not show the last hour's notifications");
    takePicture("history-filtered");
}

void playRemoval(const Play& play) {
    expectBox(play.script, 1232, QMessageBox::Yes, "remove-question");
    takePictureWhenShown("frmSplash", "service-removed");
    chooseMenu(play.window, {"mnuFile", "mnuRemoveService"}, "file-menu-remove");
}

}  // namespace tour
