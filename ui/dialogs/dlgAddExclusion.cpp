#include "ui/dialogs/dlgAddExclusion.h"

#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>
#include <cstdint>
#include <limits>

#include "core/procedure.h"
#include "database/exclusions.h"
#include "ui/base/controls.h"
#include "ui/base/formFonts.h"
#include "ui/base/text.h"
#include "ui/parts/clipboardImport.h"
#include "ui/parts/eventSourceList.h"
#include "ui/widgets/limitsSign.h"
#include "ui/widgets/numberBox.h"

namespace {

constexpr char module[] = "dlgAddExclusion";

// Told once, when it comes and when it goes.
void showWhile(bool refused, ui::LimitsSign& sign) {
    if (refused == sign.refuses())
        return;
    sign.setVisible(refused);
    sign.showRefusal(refused);
}

}  // namespace

dlgAddExclusion::dlgAddExclusion(QWidget* parent) : QDialog(parent) {
    setObjectName("dlgAddExclusion");
    createControls();
    buildLayout();
    Form_Load();
    connectControls();
}

void dlgAddExclusion::createControls() {
    lblEventSource = ui::makeControl<QLabel>(this, "lblEventSource");
    comboEventSource = ui::makeControl<QComboBox>(this, "comboEventSource");
    ui::boundWidth(*comboEventSource);
    sourceLimits = new ui::LimitsSign(1, mdlDatabase::longestExclusionSource, this);
    sourceLimits->hide();
    Frame1 = ui::makeControl<QGroupBox>(this, "Frame1");
    id = ui::makeEventIdControls(*Frame1);
    ui::layOutEventIdControls(*Frame1, id);
    using Id = std::numeric_limits<std::int16_t>;
    idLimits = new ui::LimitsSign(Id::min(), Id::max(), Frame1);
    idLimits->hide();
    static_cast<QGridLayout*>(Frame1->layout())->addWidget(idLimits, ui::specificEventId, 2);
    cmdImportFromClipboard = ui::makeControl<QPushButton>(this, "cmdImportFromClipboard");
    cmdOk = ui::makeControl<QPushButton>(this, "cmdOk");
    cmdCancel = ui::makeControl<QPushButton>(this, "cmdCancel");
}

void dlgAddExclusion::buildLayout() {
    auto* source = new QHBoxLayout;
    source->addWidget(lblEventSource);
    source->addWidget(comboEventSource, 1);
    source->addWidget(sourceLimits);
    cmdOk->setDefault(true);
    cmdImportFromClipboard->setAutoDefault(false);
    auto* whole = new QVBoxLayout(this);
    whole->addLayout(source);
    whole->addWidget(Frame1);
    whole->addStretch();
    whole->addLayout(ui::buttonRow({cmdImportFromClipboard}, {cmdOk, cmdCancel}));
    lblEventSource->setBuddy(comboEventSource);
    ui::setTabOrder({comboEventSource, id.optionEventId[ui::allEventIds],
                     id.optionEventId[ui::specificEventId], id.tdbnlSpecificEventId, cmdImportFromClipboard,
                     cmdOk, cmdCancel});
    resize(460, sizeHint().height());
}

void dlgAddExclusion::Form_Load() {
    core::procedure(module, "Form_Load", [&](core::Frame& frame) {
        frame.step([&] { dlgAddExclusion_ControlInit(); });
        frame.step([&] { ui::setFormFonts(*this); });
    });
}

void dlgAddExclusion::dlgAddExclusion_ControlInit() {
    core::procedure(module, "dlgAddExclusion_ControlInit", [&](core::Frame&) {
        setWindowTitle(ui::text(1305));
        lblEventSource->setText(ui::text(1309));
        ui::captionEventIdControls(*Frame1, id, ui::exclusionIdCaptions);
        cmdImportFromClipboard->setText(ui::text(1055));
        cmdImportFromClipboard->setToolTip(ui::text(1056));
        cmdOk->setText(ui::text(1001));
        cmdCancel->setText(ui::text(1023));
        ui::nameByBuddy(*this);
    });
}

void dlgAddExclusion::connectControls() {
    connect(comboEventSource, &QComboBox::currentIndexChanged, this,
            [this] { noteChoice("comboEventSource_Click"); });
    for (const QRadioButton* option : id.optionEventId)
        connect(option, &QRadioButton::toggled, this, [this](bool on) {
            if (on)
                noteChoice("optionEventId_Click");
        });
    connect(id.tdbnlSpecificEventId, &QLineEdit::textChanged, this,
            &dlgAddExclusion::tdbnlSpecificEventId_Change);
    connect(cmdImportFromClipboard, &QPushButton::clicked, this,
            &dlgAddExclusion::cmdImportFromClipboard_Click);
    connect(cmdOk, &QPushButton::clicked, this, &dlgAddExclusion::cmdOk_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &dlgAddExclusion::cmdCancel_Click);
}

void dlgAddExclusion::displayForm() {
    core::procedure(module, "displayForm", [&](core::Frame& frame) {
        cancelled = true;
        frame.step([&] {
            const QSignalBlocker fillingIsNoClick(comboEventSource);
            ui::fillEventSources(*comboEventSource);
        });
        // The id that was typed last stays; it counts once its option is chosen.
        id.optionEventId[ui::allEventIds]->setChecked(true);
        updateOkButton();
        comboEventSource->setFocus();
        exec();
    });
}

void dlgAddExclusion::noteChoice(const char* handler) {
    core::procedure(module, handler, [&](core::Frame&) { updateOkButton(); });
}

void dlgAddExclusion::updateOkButton() {
    core::procedure(module, "updateOkButton", [&](core::Frame&) {
        const bool refused = !ui::isStorableExclusion(eventSource());
        showWhile(refused, *sourceLimits);
        // Required: OK takes an id beyond these limits all the same, and nothing is written then. So it is
        // told before.
        showWhile(!allEventIds() && id.tdbnlSpecificEventId->hasNumber() &&
                      !id.tdbnlSpecificEventId->fits<std::int16_t>(),
                  *idLimits);
        cmdOk->setEnabled(!comboEventSource->currentText().isEmpty() && !ui::isEventIdMissing(id) &&
                          !refused);
    });
}

void dlgAddExclusion::tdbnlSpecificEventId_Change() {
    core::procedure(module, "tdbnlSpecificEventId_Change", [&](core::Frame&) {
        id.optionEventId[ui::specificEventId]->setChecked(true);
        updateOkButton();
    });
}

void dlgAddExclusion::cmdImportFromClipboard_Click() {
    core::procedure(module, "cmdImportFromClipboard_Click", [&](core::Frame&) {
        const std::optional<ui::CopiedEvent> event =
            ui::takeCopiedEvent(*comboEventSource, *id.tdbnlSpecificEventId);
        if (!event) {
            ui::warnNoEventData();
            return;
        }
        id.optionEventId[ui::specificEventId]->setChecked(true);
        id.tdbnlSpecificEventId->setText(event->id);
    });
}

void dlgAddExclusion::cmdOk_Click() {
    core::procedure(module, "cmdOk_Click", [&](core::Frame&) {
        cancelled = false;
        accept();
    });
}

void dlgAddExclusion::cmdCancel_Click() {
    core::procedure(module, "cmdCancel_Click", [&](core::Frame&) {
        cancelled = true;
        reject();
    });
}

std::string dlgAddExclusion::eventSource() const {
    return ui::toUtf8(comboEventSource->currentText());
}

bool dlgAddExclusion::allEventIds() const {
    return id.optionEventId[ui::allEventIds]->isChecked();
}
