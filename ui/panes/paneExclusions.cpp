#include "ui/panes/paneExclusions.h"

#include <QLabel>
#include <QPushButton>

#include "core/modLocalize.h"
#include "core/procedure.h"
#include "database/exclusions.h"
#include "ui/base/controls.h"
#include "ui/base/text.h"
#include "ui/base/twips.h"
#include "ui/panes/listPane.h"
#include "ui/parts/rowText.h"
#include "ui/widgets/keyedGrid.h"

using modLocalize::myLoadResString;
using ui::KeyedGrid;
using ui::textOrEmpty;

namespace {

constexpr char module[] = "frmMain";

std::vector<KeyedGrid::Column> gridColumns() {
    return {{"EventSource", myLoadResString(1302), false, false, false, true},
            {"ExclusionKey", "", true},
            {"EventId", myLoadResString(1019)}};
}

KeyedGrid::Cell idCell(const platform::Recordset& row) {
    const std::string id = textOrEmpty(row, "EventID");
    // Required: "All" is the same in every language here.
    return {id == "-1" ? "All" : id, id.empty() ? QVariant() : static_cast<qlonglong>(row.number("EventID"))};
}

std::vector<KeyedGrid::Cell> gridRow(const platform::Recordset& row) {
    return {{textOrEmpty(row, "EventSource"), {}},
            {row.text("ExclusionKey"), static_cast<qlonglong>(row.number("ExclusionKey"))},
            idCell(row)};
}

}  // namespace

paneExclusions::paneExclusions(QWidget* parent) : QWidget(parent) {
    lblAllExclusions = ui::makeControl<QLabel>(this, "lblAllExclusions");
    vsflexgridAllExclusions = ui::makeControl<KeyedGrid>(this, "vsflexgridAllExclusions");
    cmdCreateNewExclusion = ui::makeControl<QPushButton>(this, "cmdCreateNewExclusion");
    cmdDeleteSelectedExclusion = ui::makeControl<QPushButton>(this, "cmdDeleteSelectedExclusion");
    ui::layOutListPane(*this, *lblAllExclusions, *vsflexgridAllExclusions, *cmdCreateNewExclusion,
                       *cmdDeleteSelectedExclusion);

    connect(vsflexgridAllExclusions, &KeyedGrid::clicked, this,
            &paneExclusions::vsflexgridAllExclusions_Click);
    connect(cmdCreateNewExclusion, &QPushButton::clicked, this, &paneExclusions::newExclusionWanted);
    connect(cmdDeleteSelectedExclusion, &QPushButton::clicked, this,
            &paneExclusions::cmdDeleteSelectedExclusion_Click);
}

void paneExclusions::controlInit() {
    lblAllExclusions->setText(ui::text(1314));
    cmdCreateNewExclusion->setText(ui::text(1312));
    cmdDeleteSelectedExclusion->setText(ui::text(1313));
    ui::nameByBuddy(*this);
    // The headers are the grid's only words, so its rows stay as they are.
    vsflexgridAllExclusions->setHeaders(gridColumns());
}

void paneExclusions::displayAllExclusions() {
    core::procedure(module, "displayAllExclusions", [&](core::Frame& frame) {
        platform::Recordset exclusions = mdlDatabase::getExclusions();
        frame.step([&] { vsflexgridAllExclusions->setColumns(gridColumns()); });
        ui::addRecords(frame, *vsflexgridAllExclusions, exclusions, gridRow);
        frame.step([&] { vsflexgridAllExclusions->fitColumns(); });
        frame.step([&] { resizeAllExclusionsGrid(); });
        frame.step([&] { cmdDeleteSelectedExclusion->setEnabled(false); });
        frame.step([&] { ui::closeRecords(exclusions); });
    });
}

// Required: a second copy of the resizing of the recipients' grid, with its name in the log. It widens that
// grid, and only while that pane is shown, which it is not here; so this grid keeps the widths of its
// content.
void paneExclusions::resizeAllExclusionsGrid() {
    core::procedure(module, "resizeAllRecipientsGrid", [&](core::Frame& frame) {
        constexpr int slack = 200;  // twips
        const auto* pane = window()->findChild<QWidget*>("vsviewportDetails_2");
        auto* grid = window()->findChild<KeyedGrid*>("vsflexgridAllRecipients");
        if (pane && pane->isVisible() && grid)
            frame.step([&] { grid->stretchColumn("RecipientName", ui::pixels(slack)); });
    });
}

void paneExclusions::vsflexgridAllExclusions_Click() {
    core::procedure(module, "vsflexgridAllExclusions_Click", [&](core::Frame&) {
        cmdDeleteSelectedExclusion->setEnabled(vsflexgridAllExclusions->currentGridRow() >= 1);
    });
}

void paneExclusions::cmdDeleteSelectedExclusion_Click() {
    core::procedure(module, "cmdDeleteSelectedExclusion_Click", [&](core::Frame& frame) {
        frame.step([&] {
            const KeyedGrid& grid = *vsflexgridAllExclusions;
            const long key =
                static_cast<long>(grid.cellValue(grid.currentGridRow(), "ExclusionKey").toLongLong());
            if (mdlDatabase::deleteExclusion(key))
                emit exclusionDeleted();
        });
    });
}
