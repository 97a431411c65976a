#include "ui/dialogs/dlgExclusions.h"

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/state.h"
#include "database/events.h"
#include "database/exclusions.h"
#include "server/eventSources.h"
#include "ui/base/controls.h"
#include "ui/base/formFonts.h"
#include "ui/base/text.h"
#include "ui/parts/eventSourceList.h"
#include "ui/widgets/listFinder.h"
#include "ui/widgets/textList.h"

namespace {

constexpr char module[] = "dlgExclusions";

enum ExclusionButton { addAll, addSelected, removeSelected, removeAll, buttonCount };

std::vector<int> allRows(const ui::TextList& list) {
    std::vector<int> rows;
    for (int row = 0; row < list.count(); ++row)
        if (!list.isLocked(row))
            rows.push_back(row);
    return rows;
}

}  // namespace

dlgExclusions::dlgExclusions(QWidget* parent) : QDialog(parent) {
    setObjectName("dlgExclusions");
    lblAvailableSources = ui::makeControl<QLabel>(this, "lblAvailableSources");
    lstAvailableSources = ui::makeControl<ui::TextList>(this, "lstAvailableSources");
    lblExcludedSources = ui::makeControl<QLabel>(this, "lblExcludedSources");
    lstExcludedSources = ui::makeControl<ui::TextList>(this, "lstExcludedSources");
    for (int i = 0; i < buttonCount; ++i) {
        auto* button = ui::makeControl<QPushButton>(this, "cmdExclusionButtons_" + std::to_string(i));
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, [this, i] { cmdExclusionButtons_Click(i); });
        cmdExclusionButtons.push_back(button);
    }
    cmdOk = ui::makeControl<QPushButton>(this, "cmdOk");
    cmdCancel = ui::makeControl<QPushButton>(this, "cmdCancel");
    buildLayout();
    ui::addFinder(*this);
    Form_Load();
    connect(lstAvailableSources, &ui::TextList::rowDoubleClicked, this,
            &dlgExclusions::lstAvailableSources_DblClick);
    connect(lstExcludedSources, &ui::TextList::rowDoubleClicked, this,
            &dlgExclusions::lstExcludedSources_DblClick);
    connect(cmdOk, &QPushButton::clicked, this, &dlgExclusions::cmdOk_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &dlgExclusions::cmdCancel_Click);
}

void dlgExclusions::buildLayout() {
    auto* moves = new QVBoxLayout;
    moves->addStretch();
    for (QPushButton* button : cmdExclusionButtons)
        moves->addWidget(button);
    moves->addStretch();
    auto* lists = new QGridLayout;
    lists->addWidget(lblAvailableSources, 0, 0);
    lists->addWidget(lblExcludedSources, 0, 2);
    lists->addWidget(lstAvailableSources, 1, 0);
    lists->addLayout(moves, 1, 1);
    lists->addWidget(lstExcludedSources, 1, 2);
    lists->setColumnStretch(0, 1);
    lists->setColumnStretch(2, 1);
    cmdOk->setDefault(true);
    auto* whole = new QVBoxLayout(this);
    whole->addLayout(lists, 1);
    whole->addLayout(ui::buttonRow({}, {cmdOk, cmdCancel}));

    lblAvailableSources->setBuddy(lstAvailableSources);
    lblExcludedSources->setBuddy(lstExcludedSources);
    ui::setTabOrder({lstAvailableSources, cmdExclusionButtons[addAll], cmdExclusionButtons[addSelected],
                     cmdExclusionButtons[removeSelected], cmdExclusionButtons[removeAll], lstExcludedSources,
                     cmdOk, cmdCancel});
    resize(640, 420);
}

void dlgExclusions::Form_Load() {
    core::procedure(module, "Form_Load", [&](core::Frame& frame) {
        frame.step([&] { dlgExclusions_ControlInit(); });
        frame.step([&] { ui::setFormFonts(*this); });
    });
}

void dlgExclusions::dlgExclusions_ControlInit() {
    core::procedure(module, "dlgExclusions_ControlInit", [&](core::Frame&) {
        setWindowTitle(ui::text(1067));
        lblAvailableSources->setText(ui::text(1066));
        lblExcludedSources->setText(ui::text(1065));
        constexpr std::pair<const char*, long> buttons[] = {
            {">>", 1062}, {">", 1061}, {"<", 1060}, {"<<", 1059}};
        for (std::size_t i = 0; i < cmdExclusionButtons.size(); ++i) {
            QPushButton& button = *cmdExclusionButtons[i];
            ui::captionSign(button, buttons[i].first, ui::text(buttons[i].second),
                            lblExcludedSources->text());
        }
        cmdOk->setText(ui::text(1064));
        cmdCancel->setText(ui::text(1063));
        ui::nameByBuddy(*this);
    });
}

void dlgExclusions::displayForm() {
    core::procedure(module, "displayForm", [&](core::Frame& frame) {
        setWindowTitle(ui::text(1067));
        fillLists(frame);
        lstAvailableSources->setFocus();
        exec();
    });
}

void dlgExclusions::fillLists(core::Frame& frame) {
    platform::Recordset exclusions = mdlDatabase::getExclusions();
    // OK writes the table anew, so it takes lists that hold what is stored.
    cmdOk->setEnabled(exclusions.state() == platform::ObjectState::open);
    const std::vector<std::string> sources =
        mdlUtility::getEventSources(core::gCorvaneFourOrLater, true, false);
    lstAvailableSources->clear();
    lstExcludedSources->clear();
    for (const std::string& source : sources) {
        bool excluded = false;
        // An apostrophe in a source breaks the search; such a source counts as not excluded.
        frame.step([&] {
            if (exclusions.recordCount() < 1)
                return;
            exclusions.moveFirst();
            exclusions.find("EventSource = '" + source + "'");
            excluded = !exclusions.EOF_();
        });
        frame.step([&] {
            if (ui::isStorableExclusion(source))
                (excluded ? lstExcludedSources : lstAvailableSources)->addText(source);
            else
                lstAvailableSources->addLockedText(source, ui::tooLongForAnExclusion(source));
        });
    }
    frame.step([&] { exclusions.close(); });
}

void dlgExclusions::cmdExclusionButtons_Click(int index) {
    core::procedure(module, "cmdExclusionButtons_Click", [&](core::Frame& frame) {
        const bool adding = index == addAll || index == addSelected;
        ui::TextList& from = adding ? *lstAvailableSources : *lstExcludedSources;
        ui::TextList& to = adding ? *lstExcludedSources : *lstAvailableSources;
        const bool all = index == addAll || index == removeAll;
        frame.step([&] { from.moveTo(to, all ? allRows(from) : from.selectedRows()); });
    });
}

void dlgExclusions::lstAvailableSources_DblClick(int row) {
    core::procedure(module, "lstAvailableSources_DblClick", [&](core::Frame& frame) {
        frame.step([&] { lstAvailableSources->moveTo(*lstExcludedSources, {row}); });
    });
}

void dlgExclusions::lstExcludedSources_DblClick(int row) {
    core::procedure(module, "lstExcludedSources_DblClick", [&](core::Frame& frame) {
        frame.step([&] { lstExcludedSources->moveTo(*lstAvailableSources, {row}); });
    });
}

void dlgExclusions::cmdOk_Click() {
    core::procedure(module, "cmdOk_Click", [&](core::Frame& frame) {
        core::Dictionary<long> exclusions;
        // Required: whole sources only, so an exclusion of one id comes back as one of all ids.
        for (const std::string& source : lstExcludedSources->texts())
            exclusions.set(source, mdlDatabase::nodeAllEventIds);
        frame.step([&] { mdlDatabase::replaceExclusions(exclusions); });
        frame.step([&] { accept(); });
    });
}

void dlgExclusions::cmdCancel_Click() {
    core::procedure(module, "cmdCancel_Click", [&](core::Frame&) { reject(); });
}
