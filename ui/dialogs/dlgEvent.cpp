#include "ui/dialogs/dlgEvent.h"

#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <cstdint>
#include <limits>

#include "core/procedure.h"
#include "platform/machine/process.h"
#include "ui/base/controls.h"
#include "ui/base/formFonts.h"
#include "ui/base/text.h"
#include "ui/parts/clipboardImport.h"
#include "ui/parts/contentGroup.h"
#include "ui/parts/eventSourceList.h"
#include "ui/parts/insertionVariables.h"
#include "ui/widgets/limitsSign.h"
#include "ui/widgets/numberBox.h"

namespace {

constexpr char module[] = "dlgEvent";
constexpr ui::EventIdCaptions idCaptions{1019, 1021, 1020};

}  // namespace

dlgEvent::dlgEvent(QWidget* parent) : QDialog(parent) {
    setObjectName("dlgEvent");
    createControls();
    buildLayout();
    Form_Load();
    connectControls();
}

void dlgEvent::createControls() {
    lblEventSource = ui::makeControl<QLabel>(this, "lblEventSource");
    comboEventSource = ui::makeControl<QComboBox>(this, "comboEventSource");
    ui::boundWidth(*comboEventSource);
    frameEventId = ui::makeControl<QGroupBox>(this, "frameEventId");
    id = ui::makeEventIdControls(*frameEventId);
    // An event's id has 32 bits.
    using Id = std::numeric_limits<std::int32_t>;
    idLimits = new ui::LimitsSign(Id::min(), Id::max(), frameEventId);
    idLimits->hide();
    lblEventType = ui::makeControl<QLabel>(this, "lblEventType");
    comboEventType = ui::makeControl<QComboBox>(this, "comboEventType");
    lblEventTitle = ui::makeControl<QLabel>(this, "lblEventTitle");
    txtEventTitle = ui::makeControl<QLineEdit>(this, "txtEventTitle");
    frameContent = ui::makeControl<QGroupBox>(this, "frameContent");
    content = new ui::ContentGroup(module, *this, *frameContent, {"Label1", "Label2"});
    cmdImportFromClipboard = ui::makeControl<QPushButton>(this, "cmdImportFromClipboard");
    cmdOpenEventViewer = ui::makeControl<QPushButton>(this, "cmdOpenEventViewer");
    cmdOk = ui::makeControl<QPushButton>(this, "cmdOk");
    cmdCancel = ui::makeControl<QPushButton>(this, "cmdCancel");
}

QLayout* dlgEvent::matchLayout() {
    auto* idRow = new QHBoxLayout(frameEventId);
    idRow->addWidget(id.optionEventId[ui::allEventIds]);
    idRow->addSpacing(12);
    idRow->addWidget(id.optionEventId[ui::specificEventId]);
    idRow->addWidget(id.tdbnlSpecificEventId);
    idRow->addWidget(idLimits);
    idRow->addStretch();

    auto* match = new QGridLayout;
    match->setColumnStretch(1, 1);
    match->addWidget(lblEventSource, 0, 0);
    match->addWidget(comboEventSource, 0, 1);
    match->addWidget(frameEventId, 1, 1);
    match->addWidget(lblEventType, 2, 0);
    match->addWidget(comboEventType, 2, 1);
    match->addWidget(lblEventTitle, 3, 0);
    match->addWidget(txtEventTitle, 3, 1);
    return match;
}

void dlgEvent::buildLayout() {
    auto* whole = new QVBoxLayout(this);
    whole->addLayout(matchLayout());
    whole->addWidget(frameContent, 1);
    whole->addLayout(ui::buttonRow({cmdImportFromClipboard, cmdOpenEventViewer}, {cmdOk, cmdCancel}));
    cmdOk->setDefault(true);
    for (QPushButton* helper : {cmdImportFromClipboard, cmdOpenEventViewer})
        helper->setAutoDefault(false);

    lblEventSource->setBuddy(comboEventSource);
    lblEventType->setBuddy(comboEventType);
    lblEventTitle->setBuddy(txtEventTitle);
    ui::setTabOrder({comboEventSource, id.optionEventId[ui::allEventIds],
                     id.optionEventId[ui::specificEventId], id.tdbnlSpecificEventId, comboEventType,
                     txtEventTitle});
    content->followInTabOrder(*txtEventTitle);
    ui::setTabOrder(
        {content->comboEmailPriority, cmdImportFromClipboard, cmdOpenEventViewer, cmdOk, cmdCancel});
    resize(680, 640);
}

void dlgEvent::Form_Load() {
    core::procedure(module, "Form_Load", [&](core::Frame& frame) {
        frame.step([&] { dlgEvent_ControlInit(); });
        frame.step([&] { ui::setFormFonts(*this); });
        frame.step([&] { content->variables->controlInit(); });
    });
}

void dlgEvent::dlgEvent_ControlInit() {
    core::procedure(module, "dlgEvent_ControlInit", [&](core::Frame&) {
        setWindowTitle(ui::text(1018));
        lblEventSource->setText(ui::text(1053));
        ui::captionEventIdControls(*frameEventId, id, idCaptions);
        lblEventType->setText(ui::text(1052));
        ui::fillCombo(*comboEventType, {1027, 1028, 1029});
        lblEventTitle->setText(ui::text(1151));
        frameContent->setTitle(ui::text(1054));
        content->controlInit();
        cmdImportFromClipboard->setText(ui::text(1055));
        cmdImportFromClipboard->setToolTip(ui::text(1056));
        cmdOpenEventViewer->setText(ui::text(1057));
        cmdOk->setText(ui::text(1001));
        cmdCancel->setText(ui::text(1023));
        ui::nameByBuddy(*this);
    });
}

void dlgEvent::connectControls() {
    connect(comboEventSource, &QComboBox::currentIndexChanged, this, &dlgEvent::comboEventSource_Click);
    for (int i : {ui::allEventIds, ui::specificEventId})
        connect(id.optionEventId[static_cast<std::size_t>(i)], &QRadioButton::clicked, this,
                [this, i] { optionEventId_Click(i); });
    connect(id.tdbnlSpecificEventId, &QLineEdit::textChanged, this, &dlgEvent::tdbnlSpecificEventId_Change);
    connect(cmdImportFromClipboard, &QPushButton::clicked, this, &dlgEvent::cmdImportFromClipboard_Click);
    connect(cmdOpenEventViewer, &QPushButton::clicked, this, &dlgEvent::cmdOpenEventViewer_Click);
    connect(cmdOk, &QPushButton::clicked, this, &dlgEvent::cmdOk_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &dlgEvent::cmdCancel_Click);
}

void dlgEvent::displayForm() {
    core::procedure(module, "displayForm", [&](core::Frame& frame) {
        frame.step([&] {
            const QSignalBlocker fillingIsNoClick(comboEventSource);
            ui::fillEventSources(*comboEventSource);
        });
        id.optionEventId[ui::allEventIds]->setChecked(true);
        id.tdbnlSpecificEventId->hide();
        comboEventType->setCurrentIndex(0);
        id.tdbnlSpecificEventId->setText("-1");
        txtEventTitle->clear();
        content->comboVoiceMailPriority->setCurrentIndex(1);
        content->comboEmailPriority->setCurrentIndex(1);
        updateOkButton();
        cancelled = true;
        frame.step([&] {
            content->showDefaultVoiceFile();
            content->showDefaultMail();
            content->colorTexts();
        });
        frame.step([&] { content->showDefaultVoiceMailPriority(); });
        frame.step([&] { content->showDefaultEmailPriority(); });
        comboEventSource->setFocus();
        exec();
    });
}

void dlgEvent::updateOkButton() {
    core::procedure(module, "updateOkButton", [&](core::Frame&) {
        showWhetherIdFits();
        cmdOk->setEnabled(!comboEventSource->currentText().isEmpty() && !ui::isEventIdMissing(id) &&
                          !idLimits->refuses());
    });
}

// The box takes longer numbers than an event can have; one of them is answered here, not first when the event
// is written.
void dlgEvent::showWhetherIdFits() {
    const bool refused =
        id.tdbnlSpecificEventId->hasNumber() && !id.tdbnlSpecificEventId->fits<std::int32_t>();
    if (refused == idLimits->refuses())
        return;
    idLimits->setVisible(refused);
    idLimits->showRefusal(refused);
}

void dlgEvent::comboEventSource_Click() {
    core::procedure(module, "comboEventSource_Click", [&](core::Frame&) { updateOkButton(); });
}

void dlgEvent::tdbnlSpecificEventId_Change() {
    core::procedure(module, "tdbnlSpecificEventId_Change", [&](core::Frame&) { updateOkButton(); });
}

void dlgEvent::optionEventId_Click(int index) {
    core::procedure(module, "optionEventId_Click", [&](core::Frame&) {
        id.tdbnlSpecificEventId->setVisible(index == ui::specificEventId);
        if (index == ui::allEventIds) {
            id.tdbnlSpecificEventId->setText("-1");
        } else {
            id.tdbnlSpecificEventId->clear();
            id.tdbnlSpecificEventId->setFocus();
        }
        updateOkButton();
    });
}

void dlgEvent::cmdOk_Click() {
    core::procedure(module, "cmdOk_Click", [&](core::Frame&) {
        if (!content->variables->leaveSubject(*cmdOk))
            return;
        cancelled = false;
        accept();
    });
}

void dlgEvent::cmdCancel_Click() {
    core::procedure(module, "cmdCancel_Click", [&](core::Frame&) {
        cancelled = true;
        reject();
    });
}

void dlgEvent::cmdImportFromClipboard_Click() {
    core::procedure(module, "cmdImportFromClipboard_Click", [&](core::Frame&) {
        const std::optional<ui::CopiedEvent> event =
            ui::takeCopiedEvent(*comboEventSource, *id.tdbnlSpecificEventId);
        if (!event) {
            ui::warnNoEventData();
            return;
        }
        id.optionEventId[ui::specificEventId]->click();
        id.tdbnlSpecificEventId->setText(event->id);
        comboEventType->setCurrentIndex(event->type);
    });
}

void dlgEvent::cmdOpenEventViewer_Click() {
    core::procedure(module, "cmdOpenEventViewer_Click", [&](core::Frame& frame) {
        frame.step([&] { platform::startDetached("EventVwr", platform::ProgramWindow::maximized); });
    });
}

mdlDatabase::NewEvent dlgEvent::newEvent() const {
    mdlDatabase::NewEvent event;
    event.eventSource = ui::toUtf8(comboEventSource->currentText());
    event.eventId = ui::toUtf8(id.tdbnlSpecificEventId->text());
    event.eventTitle = ui::toUtf8(txtEventTitle->text());
    event.eventType = static_cast<short>(mdlDatabase::mapEventType(comboEventType->currentIndex(), false));
    event.content = content->shown();
    return event;
}
