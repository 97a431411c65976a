#include "ui/panes/paneExclusionDetails.h"

#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <cstdint>
#include <limits>

#include "core/classLog.h"
#include "core/procedure.h"
#include "core/state.h"
#include "database/exclusions.h"
#include "platform/ado/ado.h"
#include "ui/base/controls.h"
#include "ui/base/text.h"
#include "ui/parts/rowText.h"
#include "ui/widgets/numberBox.h"

namespace {

constexpr char module[] = "frmMain";

// Required: the button of another pane, which every pane of one thing switches.
void switchTestButton(const QWidget& pane) {
    if (auto* button = pane.window()->findChild<QPushButton*>("cmdTestNotification"))
        button->setEnabled(core::gIgnoreEventKey != -1);
}

}  // namespace

paneExclusionDetails::paneExclusionDetails(QWidget* parent) : QWidget(parent) {
    Label4 = ui::makeControl<QLabel>(this, "Label4");
    // Required: what is typed here is not saved.
    txtExclusionSource = ui::makeControl<QLineEdit>(this, "txtExclusionSource");
    Frame2 = ui::makeControl<QGroupBox>(this, "Frame2");
    // The box takes what Apply reads, and no more.
    using Id = std::numeric_limits<std::int32_t>;
    id_ = ui::makeEventIdControls(*Frame2, Id::min(), Id::max());
    ui::layOutEventIdControls(*Frame2, id_);
    cmdExclusionApply = ui::makeControl<QPushButton>(this, "cmdExclusionApply");
    cmdExclusionApply->setEnabled(false);
    buildLayout();
    connectControls();
}

void paneExclusionDetails::buildLayout() {
    auto* source = new QHBoxLayout;
    source->addWidget(Label4);
    source->addWidget(txtExclusionSource, 1);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 4, 6, 6);
    layout->setSpacing(10);
    layout->addLayout(source);
    layout->addWidget(Frame2);
    layout->addStretch();
    layout->addLayout(ui::buttonRow({}, {cmdExclusionApply}));
    Label4->setBuddy(txtExclusionSource);
    ui::setTabOrder({txtExclusionSource, id_.optionEventId[ui::allEventIds],
                     id_.optionEventId[ui::specificEventId], id_.tdbnlSpecificEventId, cmdExclusionApply});
}

void paneExclusionDetails::connectControls() {
    for (const int i : {ui::allEventIds, ui::specificEventId})
        connect(id_.optionEventId[static_cast<std::size_t>(i)], &QRadioButton::toggled, this,
                [this, i](bool on) {
            if (on)
                optionEventId_Click(i);
        });
    connect(id_.tdbnlSpecificEventId, &QLineEdit::textChanged, this,
            &paneExclusionDetails::tdbnlSpecificEventId_Change);
    connect(cmdExclusionApply, &QPushButton::clicked, this, &paneExclusionDetails::cmdExclusionApply_Click);
}

void paneExclusionDetails::controlInit() {
    Label4->setText(ui::text(1309));
    ui::captionEventIdControls(*Frame2, id_, ui::exclusionIdCaptions);
    cmdExclusionApply->setText(ui::text(1046));
    ui::nameByBuddy(*this);
}

Filled paneExclusionDetails::displayExclusion(long exclusionKey) {
    return core::procedure(module, "displayExclusion", Filled::unreadable,
                           [&](core::Frame& frame, Filled& filled) {
        blank();
        setEnabled(true);
        switchTestButton(*this);
        const platform::Recordset row = mdlDatabase::getExclusion(exclusionKey);
        frame.step([&] { filled = row.EOF_() ? Filled::gone : Filled::whole; });
        if (filled != Filled::whole || !frame.step([&] { fillExclusion(row); })) {
            blank();
            return;
        }
        shownKey_ = exclusionKey;
        // Last, because the filling has set them.
        exclusionChanged_ = false;
        cmdExclusionApply->setEnabled(false);
    });
}

void paneExclusionDetails::blank() {
    shownKey_.reset();
    txtExclusionSource->clear();
    id_.tdbnlSpecificEventId->clear();
    id_.tdbnlSpecificEventId->hide();
    exclusionChanged_ = false;
    cmdExclusionApply->setEnabled(false);
    setEnabled(false);
}

void paneExclusionDetails::fillExclusion(const platform::Recordset& row) {
    if (!row.isNull("EventSource"))
        txtExclusionSource->setText(ui::fromUtf8(row.text("EventSource")));
    const long eventId = row.number("EventId");
    if (eventId == mdlDatabase::allExclusionIds) {
        id_.optionEventId[ui::allEventIds]->setChecked(true);
        return;
    }
    id_.optionEventId[ui::specificEventId]->setChecked(true);
    id_.tdbnlSpecificEventId->show();
    id_.tdbnlSpecificEventId->setText(QString::number(eventId));
}

void paneExclusionDetails::optionEventId_Click(int index) {
    core::procedure(module, "optionEventId_Click", [&](core::Frame&) {
        exclusionChanged_ = true;
        const bool specific = index == ui::specificEventId;
        id_.tdbnlSpecificEventId->setVisible(specific);
        if (!specific || !id_.tdbnlSpecificEventId->isEmpty())
            cmdExclusionApply->setEnabled(true);
    });
}

void paneExclusionDetails::tdbnlSpecificEventId_Change() {
    core::procedure(module, "tdbnlSpecificEventId_Change", [&](core::Frame&) {
        exclusionChanged_ = true;
        // Required: an empty box does not switch the button off; its Apply then fails and writes nothing.
        if (!id_.tdbnlSpecificEventId->isEmpty())
            cmdExclusionApply->setEnabled(true);
    });
}

void paneExclusionDetails::cmdExclusionApply_Click() {
    core::procedure(module, "cmdExclusionApply_Click", [&](core::Frame& frame) {
        if (!shownKey_)
            return;
        long eventId = mdlDatabase::allExclusionIds;
        // Required: 32 bits here, where a new exclusion's id is read as 16.
        const bool read = frame.step([&] {
            if (!id_.optionEventId[ui::allEventIds]->isChecked())
                eventId = id_.tdbnlSpecificEventId->numberAs<std::int32_t>();
        });
        if (!read)
            return;
        const long key = *shownKey_;
        exclusionChanged_ = false;
        if (ui::isGone(mdlDatabase::getExclusion(key))) {
            core::gLog().log("Not saved, because it is not in the database any more: " +
                                 ui::toUtf8(txtExclusionSource->text()) + " Key: " + std::to_string(key),
                             core::logWarning, frame.tag());
            blank();
        } else {
            frame.step([&] { mdlDatabase::modifyExclusion(key, eventId); });
        }
        frame.step([&] { emit exclusionSaved(key); });
    });
}
