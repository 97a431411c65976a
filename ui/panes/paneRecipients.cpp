#include "ui/panes/paneRecipients.h"

#include <QLabel>
#include <QPushButton>

#include "core/modLocalize.h"
#include "core/procedure.h"
#include "core/state.h"
#include "database/devices.h"
#include "database/recipients.h"
#include "ui/base/controls.h"
#include "ui/base/text.h"
#include "ui/base/twips.h"
#include "ui/panes/listPane.h"
#include "ui/parts/rowText.h"
#include "ui/widgets/keyedGrid.h"

using modLocalize::myLoadResString;
using ui::KeyedGrid;

namespace {

constexpr char module[] = "frmMain";

std::vector<KeyedGrid::Column> gridColumns() {
    // The tick of a complete event: in a cell it says that there is a device.
    static const QIcon hasDevice(":/icons/complete.svg");
    const auto pictures = [&](const char* key, long header, bool hidden) {
        return KeyedGrid::Column{key, myLoadResString(header), hidden, false, true, false, hasDevice};
    };
    return {{"RecipientActive", myLoadResString(1022), false, true},
            {"RecipientKey", "", true},
            {"RecipientName", myLoadResString(1146), false, false, false},
            pictures("VoicemailDevice", 1147, false),
            {"PagerDevice", myLoadResString(1148), !core::gPagerSupported},
            pictures("EmailDevice", 1098, false),
            {"SMTPDevice", myLoadResString(1149)},
            pictures("SNMPTrapDevice", 1284, !core::gSnmpSupported),
            pictures("SyslogDevice", 1285, false),
            pictures("FailoverDevice", 1291, !core::gFailoverSupported)};
}

std::vector<KeyedGrid::Cell> gridRow(const platform::Recordset& recipient,
                                     const mdlDatabase::DeviceCounts& counts) {
    const long key = recipient.number("RecipientKey");
    const auto found = counts.find(key);
    const auto count = [&](long type) {
        return found == counts.end() ? 0L : found->second[static_cast<std::size_t>(type)];
    };
    const auto number = [&](long type) {
        return KeyedGrid::Cell{std::to_string(count(type)), static_cast<qlonglong>(count(type))};
    };
    const auto presence = [&](long type) { return KeyedGrid::Cell{"", count(type) > 0}; };
    return {{"", recipient.boolean("RecipientActive")},
            {std::to_string(key), static_cast<qlonglong>(key)},
            {ui::textOrEmpty(recipient, "RecipientName"), {}},
            presence(mdlDatabase::voiceMail),
            number(mdlDatabase::pager),
            presence(mdlDatabase::email),
            number(mdlDatabase::smtpAddress),
            presence(mdlDatabase::snmpTrap),
            presence(mdlDatabase::syslog),
            presence(mdlDatabase::failover)};
}

}  // namespace

paneRecipients::paneRecipients(QWidget* parent) : QWidget(parent) {
    lblAllRecipients = ui::makeControl<QLabel>(this, "lblAllRecipients");
    vsflexgridAllRecipients = ui::makeControl<KeyedGrid>(this, "vsflexgridAllRecipients");
    cmdCreateNewRecipient = ui::makeControl<QPushButton>(this, "cmdCreateNewRecipient");
    cmdDeleteSelectedRecipient = ui::makeControl<QPushButton>(this, "cmdDeleteSelectedRecipient");
    cmdDeleteSelectedRecipient->setEnabled(false);
    ui::layOutListPane(*this, *lblAllRecipients, *vsflexgridAllRecipients, *cmdCreateNewRecipient,
                       *cmdDeleteSelectedRecipient);

    connect(vsflexgridAllRecipients, &KeyedGrid::clicked, this,
            &paneRecipients::vsflexgridAllRecipients_Click);
    connect(vsflexgridAllRecipients, &KeyedGrid::doubleClicked, this,
            &paneRecipients::vsflexgridAllRecipients_DblClick);
    connect(cmdCreateNewRecipient, &QPushButton::clicked, this, &paneRecipients::newRecipientWanted);
    connect(cmdDeleteSelectedRecipient, &QPushButton::clicked, this,
            &paneRecipients::cmdDeleteSelectedRecipient_Click);
}

void paneRecipients::controlInit() {
    lblAllRecipients->setText(ui::text(1104));
    cmdCreateNewRecipient->setText(ui::text(1168));
    cmdDeleteSelectedRecipient->setText(ui::text(1169));
    ui::nameByBuddy(*this);
    if (vsflexgridAllRecipients->columnCount() == 0)
        return;
    // The headers are the grid's only words, so its rows stay as they are.
    vsflexgridAllRecipients->setHeaders(gridColumns());
    resizeAllRecipientsGrid();
}

void paneRecipients::displayAllRecipients() {
    core::procedure(module, "displayAllRecipients", [&](core::Frame& frame) {
        platform::Recordset recipients = mdlDatabase::getRecipients();
        const auto counts = mdlDatabase::countDevicesByRecipient().value_or(mdlDatabase::DeviceCounts());
        frame.step([&] { vsflexgridAllRecipients->setColumns(gridColumns()); });
        ui::addRecords(frame, *vsflexgridAllRecipients, recipients,
                       [&](const platform::Recordset& row) { return gridRow(row, counts); });
        frame.step([&] { ui::closeRecords(recipients); });
        frame.step([&] { vsflexgridAllRecipients->fitColumns(); });
        frame.step([&] { resizeAllRecipientsGrid(); });
        frame.step([&] { cmdDeleteSelectedRecipient->setEnabled(false); });
    });
}

void paneRecipients::resizeAllRecipientsGrid() {
    core::procedure(module, "resizeAllRecipientsGrid", [&](core::Frame& frame) {
        constexpr int overrun = 200;  // required: twips by which the columns are wider than the grid
        if (isVisible() && vsflexgridAllRecipients->columnCount() > 0)
            frame.step([&] { vsflexgridAllRecipients->stretchColumn("RecipientName", ui::pixels(overrun)); });
    });
}

long paneRecipients::currentRecipientKey() const {
    const KeyedGrid& grid = *vsflexgridAllRecipients;
    return static_cast<long>(grid.cellValue(grid.currentGridRow(), "RecipientKey").toLongLong());
}

void paneRecipients::vsflexgridAllRecipients_Click() {
    core::procedure(module, "vsflexgridAllRecipients_Click", [&](core::Frame& frame) {
        KeyedGrid& grid = *vsflexgridAllRecipients;
        const int row = grid.currentGridRow();
        if (grid.currentColumnKey() == "RecipientActive" && row >= 1) {
            const long key = currentRecipientKey();
            const bool active = grid.cellValue(row, "RecipientActive").toBool();
            frame.step([&] { mdlDatabase::setRecipientActiveState(key, !active); });
            emit recipientSwitched();
            // The refilled grid keeps the recipient that was clicked as its current row.
            for (int i = 1; i <= grid.gridRowCount(); ++i)
                if (grid.cellValue(i, "RecipientKey").toLongLong() == key) {
                    grid.setCurrentGridCell(i, "RecipientActive");
                    break;
                }
        }
        cmdDeleteSelectedRecipient->setEnabled(grid.currentGridRow() >= 1);
    });
}

void paneRecipients::vsflexgridAllRecipients_DblClick() {
    core::procedure(module, "vsflexgridAllRecipients_DblClick", [&](core::Frame& frame) {
        frame.step([&] {
            if (vsflexgridAllRecipients->currentGridRow() >= 1)
                emit recipientOpened(currentRecipientKey());
        });
    });
}

void paneRecipients::cmdDeleteSelectedRecipient_Click() {
    core::procedure(module, "cmdDeleteSelectedRecipient_Click", [&](core::Frame& frame) {
        frame.step([&] {
            if (mdlDatabase::deleteRecipient(currentRecipientKey()))
                emit recipientDeleted();
        });
    });
}
