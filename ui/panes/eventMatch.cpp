#include "ui/panes/eventMatch.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <cstdint>
#include <limits>

#include "ui/base/controls.h"
#include "ui/base/text.h"
#include "ui/parts/eventSourceList.h"
#include "ui/parts/rowText.h"
#include "ui/widgets/eventIdBox.h"
#include "ui/widgets/limitsSign.h"

namespace {

constexpr int betweenRows = 6;  // pixels
constexpr int widestId = 110;

// Nothing can be chosen, but what is shown stays as easy to read as before.
void lockList(QComboBox& list) {
    QPalette look = list.palette();
    for (const auto role : {QPalette::Text, QPalette::ButtonText})
        look.setColor(QPalette::Disabled, role, look.color(QPalette::Active, role));
    list.setPalette(look);
    list.setEnabled(false);
}

}  // namespace

EventMatch::EventMatch(QWidget* parent) : QWidget(parent) {
    createControls();
    buildLayout();
}

void EventMatch::createControls() {
    lblEventSource = ui::makeControl<QLabel>(this, "lblEventSource");
    comboEventSource = ui::makeControl<QComboBox>(this, "comboEventSource");
    ui::boundWidth(*comboEventSource);
    lblEventId = ui::makeControl<QLabel>(this, "lblEventId");
    comboEventId = ui::makeControl<ui::EventIdBox>(this, "comboEventId");
    idLimits = new ui::LimitsSign(0, std::numeric_limits<std::int32_t>::max(), this);
    idLimits->hide();
    lblEventType = ui::makeControl<QLabel>(this, "lblEventType");
    comboEventType = ui::makeControl<QComboBox>(this, "comboEventType");
    chkActive = ui::makeControl<QCheckBox>(this, "chkActive");
    lblEventNotes = ui::makeControl<QLabel>(this, "lblEventNotes");
    txtEventTitle = ui::makeControl<QLineEdit>(this, "txtEventTitle");
}

void EventMatch::buildLayout() {
    auto* match = new QGridLayout(this);
    match->setContentsMargins(0, 0, 0, 0);
    match->setColumnStretch(1, 1);
    match->setVerticalSpacing(betweenRows);
    match->addWidget(lblEventSource, 0, 0);
    match->addWidget(comboEventSource, 0, 1);
    match->addWidget(lblEventId, 0, 2);
    match->addWidget(comboEventId, 0, 3);
    match->addWidget(idLimits, 1, 1, 1, 3, Qt::AlignRight);  // takes no room while it is hidden
    match->addWidget(lblEventType, 2, 0);
    match->addWidget(comboEventType, 2, 1);
    match->addWidget(chkActive, 2, 2, 1, 2);
    match->addWidget(lblEventNotes, 3, 0);
    match->addWidget(txtEventTitle, 3, 1, 1, 3);
    comboEventId->setMaximumWidth(widestId);
    lblEventSource->setBuddy(comboEventSource);
    lblEventId->setBuddy(comboEventId);
    lblEventType->setBuddy(comboEventType);
    lblEventNotes->setBuddy(txtEventTitle);
}

void EventMatch::controlInit() {
    lblEventSource->setText(ui::text(1053));
    lblEventId->setText(ui::text(1051));
    comboEventId->setAllText(ui::text(1108));
    lblEventType->setText(ui::text(1111));
    ui::fillCombo(*comboEventType, {1027, 1028, 1029});
    chkActive->setText(ui::text(1022));
    lblEventNotes->setText(ui::text(1151));
    if (isCatchAll())
        comboEventSource->setItemText(0, ui::text(1049));
}

bool EventMatch::isCatchAll() const {
    return !comboEventSource->isEnabledTo(this) && comboEventSource->count() == 1;
}

void EventMatch::showWhetherIdFits() {
    const bool refused = !comboEventId->hasId();
    if (refused != idLimits->refuses()) {
        idLimits->setVisible(refused);
        idLimits->showRefusal(refused);
    }
}

void EventMatch::blank() {
    txtEventTitle->clear();
    chkActive->setChecked(false);
    comboEventSource->setCurrentIndex(-1);
    comboEventId->showAll();
}

void EventMatch::show(core::Frame& frame, const platform::Recordset& event) {
    frame.step([&] { storedSource_ = ui::textOrEmpty(event, "EventSource"); });
    frame.step([&] { txtEventTitle->setText(ui::fromUtf8(ui::textOrEmpty(event, "EventTitle"))); });
    frame.step([&] { chkActive->setChecked(event.boolean("EventActive")); });
    frame.step([&] { fillSources(frame, event.boolean("EventCollection")); });
    frame.step([&] {
        storedId_ = ui::textOrEmpty(event, "EventID");
        if (storedId_ == std::to_string(mdlDatabase::nodeAllEventIds))
            comboEventId->showAll();
        else
            comboEventId->showId(ui::fromUtf8(storedId_));
    });
    showWhetherIdFits();
    frame.step([&] {
        comboEventType->setCurrentIndex(
            static_cast<int>(mdlDatabase::mapEventType(event.number("EventType"), true)));
    });
}

void EventMatch::fillSources(core::Frame& frame, bool catchAll) {
    comboEventSource->clear();
    if (catchAll) {
        comboEventSource->addItem(ui::text(1049));  // selected, whatever language the stored one is in
        lockList(*comboEventSource);
        return;
    }
    frame.step([&] { ui::fillEventSources(*comboEventSource); });
    comboEventSource->setEnabled(true);
    // Only the stored source itself, and not one that begins like it: a save would write that one.
    comboEventSource->setCurrentIndex(
        comboEventSource->findText(ui::fromUtf8(storedSource_), Qt::MatchFixedString));
}

void EventMatch::collect(mdlDatabase::ModifiedEvent& event) const {
    // A source that this server does not list is chosen in no row, and stays as it is stored.
    event.eventSource =
        comboEventSource->currentIndex() < 0 ? storedSource_ : ui::toUtf8(comboEventSource->currentText());
    // Apply is off without an id; the question before the pane is left may still save all the rest.
    event.eventId = comboEventId->hasId() ? comboEventId->idText() : storedId_;
    event.eventTitle = ui::toUtf8(txtEventTitle->text());
    event.eventType = static_cast<short>(mdlDatabase::mapEventType(comboEventType->currentIndex(), false));
    event.eventActive = chkActive->isChecked();
}
