#include "ui/panes/paneMonitoredEvents.h"

#include <QLabel>
#include <QLocale>
#include <QPushButton>

#include "core/modLocalize.h"
#include "core/procedure.h"
#include "database/events.h"
#include "platform/machine/clock.h"
#include "ui/base/controls.h"
#include "ui/base/text.h"
#include "ui/panes/listPane.h"
#include "ui/parts/rowText.h"
#include "ui/widgets/keyedGrid.h"

using modLocalize::myLoadResString;
using ui::KeyedGrid;
using ui::textOrEmpty;

namespace {

constexpr char module[] = "frmMain";

const std::vector<KeyedGrid::Column>& gridColumns() {
    static std::vector<KeyedGrid::Column> columns;
    columns = {{"EventActive", myLoadResString(1022), false, true},
               {"EventKey", "", true},
               {"EventSource", myLoadResString(1142), false, false, true, true},
               {"EventID", myLoadResString(1143)},
               {"EventTitle", myLoadResString(1144)},
               {"EventType", myLoadResString(1072)},
               {"EventCollection", "", true},
               {"EventLastNotification", myLoadResString(1145)}};
    return columns;
}

// The text that stands for a stored type; an unknown one shows as it is stored.
std::string typeText(long type) {
    switch (type) {
        case 1:
            return myLoadResString(1027);
        case 2:
            return myLoadResString(1028);
        case 4:
            return myLoadResString(1029);
        default:
            return std::to_string(type);
    }
}

std::string momentText(const std::string& stored) {
    platform::LocalTime moment{};
    return platform::parseMoment(stored, moment) ? platform::defaultForm(moment) : stored;
}

// A number's cell; one without a value is empty, and its row still shows.
KeyedGrid::Cell numberCell(const platform::Recordset& row, std::string_view field,
                           std::string (*shown)(long)) {
    if (row.isNull(field))
        return {};
    const long number = row.number(field);
    return {shown(number), static_cast<qlonglong>(number)};
}

std::string idText(long id) {
    return id == mdlDatabase::nodeAllEventIds ? myLoadResString(1108) : std::to_string(id);
}

std::vector<KeyedGrid::Cell> gridRow(const platform::Recordset& row) {
    const bool catchAll = row.boolean("EventCollection");
    const std::string last = textOrEmpty(row, "EventLastNotification");
    return {{"", row.boolean("EventActive")},
            {row.text("EventKey"), static_cast<qlonglong>(row.number("EventKey"))},
            {catchAll ? myLoadResString(1049) : textOrEmpty(row, "EventSource"), {}},
            numberCell(row, "EventID", idText),
            {catchAll ? myLoadResString(1050) : textOrEmpty(row, "EventTitle"), {}},
            numberCell(row, "EventType", typeText),
            {"", catchAll},
            {momentText(last), ui::fromUtf8(last)}};
}

}  // namespace

paneMonitoredEvents::paneMonitoredEvents(QWidget* parent) : QWidget(parent) {
    lblAllMonitoredEvents = ui::makeControl<QLabel>(this, "lblAllMonitoredEvents");
    vsflexgridMonitoredEvents = ui::makeControl<KeyedGrid>(this, "vsflexgridMonitoredEvents");
    cmdCreateNewEvent = ui::makeControl<QPushButton>(this, "cmdCreateNewEvent");
    cmdDeleteSelectedEvent = ui::makeControl<QPushButton>(this, "cmdDeleteSelectedEvent");
    ui::layOutListPane(*this, *lblAllMonitoredEvents, *vsflexgridMonitoredEvents, *cmdCreateNewEvent,
                       *cmdDeleteSelectedEvent);

    connect(vsflexgridMonitoredEvents, &KeyedGrid::clicked, this,
            &paneMonitoredEvents::vsflexgridMonitoredEvents_Click);
    connect(vsflexgridMonitoredEvents, &KeyedGrid::doubleClicked, this,
            &paneMonitoredEvents::vsflexgridMonitoredEvents_DblClick);
    connect(cmdCreateNewEvent, &QPushButton::clicked, this, &paneMonitoredEvents::newEventWanted);
    connect(cmdDeleteSelectedEvent, &QPushButton::clicked, this,
            &paneMonitoredEvents::cmdDeleteSelectedEvent_Click);
}

void paneMonitoredEvents::controlInit() {
    lblAllMonitoredEvents->setText(ui::text(1113));
    cmdCreateNewEvent->setText(ui::text(1171));
    cmdDeleteSelectedEvent->setText(ui::text(1170));
    ui::nameByBuddy(*this);
    if (vsflexgridMonitoredEvents->columnCount() > 0)
        refillInPresentLanguage();
}

// Headers and cells hold translated words; the current row stays the same event's.
void paneMonitoredEvents::refillInPresentLanguage() {
    KeyedGrid& grid = *vsflexgridMonitoredEvents;
    const int row = grid.currentGridRow();
    const long current = row >= 1 ? currentEventKey() : 0;
    const std::string column = grid.currentColumnKey();
    displayEvents();
    for (int i = 1; row >= 1 && i <= grid.gridRowCount(); ++i)
        if (grid.cellValue(i, "EventKey").toLongLong() == current) {
            grid.setCurrentGridCell(i, column);
            cmdDeleteSelectedEvent->setEnabled(true);
        }
}

void paneMonitoredEvents::displayEvents() {
    core::procedure(module, "displayEvents", [&](core::Frame& frame) {
        platform::Recordset events = mdlDatabase::getEvents();
        frame.step([&] { vsflexgridMonitoredEvents->setColumns(gridColumns()); });
        ui::addRecords(frame, *vsflexgridMonitoredEvents, events, gridRow);
        frame.step([&] { vsflexgridMonitoredEvents->fitColumns(); });
        frame.step([&] { cmdDeleteSelectedEvent->setEnabled(false); });
        frame.step([&] { ui::closeRecords(events); });
    });
}

long paneMonitoredEvents::currentEventKey() const {
    return static_cast<long>(
        vsflexgridMonitoredEvents->cellValue(vsflexgridMonitoredEvents->currentGridRow(), "EventKey")
            .toLongLong());
}

void paneMonitoredEvents::vsflexgridMonitoredEvents_Click() {
    core::procedure(module, "vsflexgridMonitoredEvents_Click", [&](core::Frame& frame) {
        KeyedGrid& grid = *vsflexgridMonitoredEvents;
        const int row = grid.currentGridRow();
        if (grid.currentColumnKey() == "EventActive" && row >= 1) {
            const long key = currentEventKey();
            const bool active = grid.cellValue(row, "EventActive").toBool();
            frame.step([&] { mdlDatabase::setEventActiveState(key, !active); });
            emit eventsChanged();
            // The refilled grid keeps the event that was clicked as its current row.
            for (int i = 1; i <= grid.gridRowCount(); ++i)
                if (grid.cellValue(i, "EventKey").toLongLong() == key)
                    grid.setCurrentGridCell(i, "EventActive");
        }
        cmdDeleteSelectedEvent->setEnabled(grid.currentGridRow() >= 1);
    });
}

void paneMonitoredEvents::vsflexgridMonitoredEvents_DblClick() {
    core::procedure(module, "vsflexgridMonitoredEvents_DblClick",
                    [&](core::Frame& frame) { frame.step([&] { emit eventOpened(currentEventKey()); }); });
}

void paneMonitoredEvents::cmdDeleteSelectedEvent_Click() {
    core::procedure(module, "cmdDeleteSelectedEvent_Click", [&](core::Frame& frame) {
        frame.step([&] {
            const int row = vsflexgridMonitoredEvents->currentGridRow();
            if (mdlDatabase::deleteEvent(currentEventKey(),
                                         vsflexgridMonitoredEvents->cellText(row, "EventSource")))
                emit eventsChanged();
        });
    });
}
