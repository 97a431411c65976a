#include "ui/dialogs/frmOptions.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTabBar>
#include <QTabWidget>

#include "core/procedure.h"
#include "database/settings.h"
#include "ui/base/controls.h"
#include "ui/base/formFonts.h"
#include "ui/base/text.h"
#include "ui/parts/contentGroup.h"
#include "ui/parts/insertionVariables.h"
#include "ui/widgets/limitedNumberBox.h"
#include "ui/widgets/variableTextBox.h"

using mdlDatabase::readConfigurationSetting;
using mdlDatabase::setConfigurationSetting;

namespace {

constexpr char module[] = "frmOptions";

enum Tab { tabGeneral = 0, tabDefaultContent = 1 };

constexpr char checkedText[] = "-1";
constexpr char clearText[] = "0";

std::string storedText(const QCheckBox& box) {
    return box.isChecked() ? checkedText : clearText;
}

// A tip that breaks its lines; a program for disabled people says its words and not its markup.
void setTip(QWidget& control, long id) {
    control.setToolTip("<p>" + ui::text(id).toHtmlEscaped() + "</p>");
    control.setAccessibleDescription(ui::text(id));
}

ui::LimitedNumberBox* makeNumberBox(QWidget* parent, const char* name, int lowest, int highest) {
    auto* box = new ui::LimitedNumberBox(lowest, highest, parent);
    box->setObjectName(name);
    return box;
}

}  // namespace

frmOptions::frmOptions(QWidget* parent) : QDialog(parent) {
    setObjectName("frmOptions");
    sstabOptions = ui::makeControl<QTabWidget>(this, "sstabOptions");
    createGeneralControls();
    cmdOk = ui::makeControl<QPushButton>(this, "cmdOk");
    cmdCancel = ui::makeControl<QPushButton>(this, "cmdCancel");
    cmdApply = ui::makeControl<QPushButton>(this, "cmdApply");
    buildLayout();
    connectControls();
    Form_Load();
}

void frmOptions::createGeneralControls() {
    lblNotificationInterval = ui::makeControl<QLabel>(this, "lblNotificationInterval");
    tdbnumliteNoficationInterval = makeNumberBox(this, "tdbnumliteNoficationInterval", 1, 120);
    lblEventlogPollingInterval = ui::makeControl<QLabel>(this, "lblEventlogPollingInterval");
    tdbnumliteEventlogPollingInterval = makeNumberBox(this, "tdbnumliteEventlogPollingInterval", 2, 60);
    lblReportDataAging = ui::makeControl<QLabel>(this, "lblReportDataAging");
    tdbnumliteReportDataAging = makeNumberBox(this, "tdbnumliteReportDataAging", 1, 31);
    chkWarnOnDuplicateMonitoredEvents = ui::makeControl<QCheckBox>(this, "chkWarnOnDuplicateMonitoredEvents");
    chkMaxDiagnostics = ui::makeControl<QCheckBox>(this, "chkMaxDiagnostics");
}

void frmOptions::layOutGeneral(QWidget& page) {
    auto* rows = new QGridLayout(&page);
    rows->setVerticalSpacing(10);
    rows->setColumnStretch(3, 1);
    int row = 0;
    const auto addNumber = [&](QLabel* label, ui::LimitedNumberBox* box) {
        label->setBuddy(box);
        box->setMinimumWidth(80);
        rows->addWidget(label, row, 0);
        rows->addWidget(box, row, 1);
        rows->addWidget(box->limits(), row++, 2);
    };
    addNumber(lblNotificationInterval, tdbnumliteNoficationInterval);
    addNumber(lblEventlogPollingInterval, tdbnumliteEventlogPollingInterval);
    addNumber(lblReportDataAging, tdbnumliteReportDataAging);
    rows->addWidget(chkWarnOnDuplicateMonitoredEvents, row++, 0, 1, 4);
    rows->addWidget(chkMaxDiagnostics, row++, 0, 1, 4);
    rows->setRowStretch(row, 1);
}

void frmOptions::buildLayout() {
    // A press on a tab takes the focus and so is asked about a blank subject.
    sstabOptions->tabBar()->setFocusPolicy(Qt::StrongFocus);
    auto* general = new QWidget(sstabOptions);
    layOutGeneral(*general);
    sstabOptions->addTab(general, QString());
    auto* defaults = new QWidget(sstabOptions);
    content = new ui::ContentGroup(module, *this, *defaults, {"lblEmailBody", "lblRightClick"});
    sstabOptions->addTab(defaults, QString());
    cmdOk->setDefault(true);
    auto* whole = new QVBoxLayout(this);
    whole->addWidget(sstabOptions, 1);
    whole->addLayout(ui::buttonRow({}, {cmdOk, cmdCancel, cmdApply}));
    ui::setTabOrder({sstabOptions->tabBar(), tdbnumliteNoficationInterval, tdbnumliteEventlogPollingInterval,
                     tdbnumliteReportDataAging, chkWarnOnDuplicateMonitoredEvents, chkMaxDiagnostics});
    content->followInTabOrder(*chkMaxDiagnostics);
    ui::setTabOrder({content->comboEmailPriority, cmdOk, cmdCancel, cmdApply});
    resize(620, 520);
}

void frmOptions::connectControls() {
    connect(sstabOptions, &QTabWidget::currentChanged, this, &frmOptions::sstabOptions_Click);
    connect(cmdOk, &QPushButton::clicked, this, &frmOptions::cmdOk_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &frmOptions::cmdCancel_Click);
    connect(cmdApply, &QPushButton::clicked, this, &frmOptions::cmdApply_Click);
}

void frmOptions::Form_Load() {
    core::procedure(module, "Form_Load", [&](core::Frame& frame) {
        frmOptions_ControlInit();
        frame.step([&] { ui::setFormFonts(*this); });
        frame.step([&] { content->variables->controlInit(); });
        loadOptions();
        sstabOptions->setCurrentIndex(tabGeneral);
    });
}

void frmOptions::frmOptions_ControlInit() {
    core::procedure(module, "frmOptions_ControlInit", [&](core::Frame&) {
        setWindowTitle(ui::plainCaption(ui::text(1118)));
        sstabOptions->setTabText(tabGeneral, ui::text(1094));
        sstabOptions->setTabText(tabDefaultContent, ui::text(1034));
        lblNotificationInterval->setText(ui::text(1047));
        lblEventlogPollingInterval->setText(ui::text(1096));
        lblReportDataAging->setText(ui::text(1095));
        chkWarnOnDuplicateMonitoredEvents->setText(ui::text(1160));
        setTip(*chkWarnOnDuplicateMonitoredEvents, 1161);
        chkMaxDiagnostics->setText(ui::text(1315));
        setTip(*chkMaxDiagnostics, 1316);
        content->controlInit();
        cmdOk->setText(ui::text(1001));
        cmdCancel->setText(ui::text(1023));
        cmdApply->setText(ui::text(1046));
        ui::nameByBuddy(*this);
        tdbnumliteNoficationInterval->setValue(30);
        tdbnumliteEventlogPollingInterval->setValue(2);
        tdbnumliteReportDataAging->setValue(14);
    });
}

// What could not be read shows as something else, which must not be written over it: OK and Apply wait for a
// window that was read whole. The log tells what was in the way.
void frmOptions::loadOptions() {
    core::procedure(module, "loadOptions", [&](core::Frame& frame) {
        bool whole = true;
        for (QPushButton* button : {cmdOk, cmdApply})
            button->setEnabled(false);
        const auto stored = [&](const char* setting) {
            const std::optional<std::string> value = readConfigurationSetting(setting);
            whole = whole && value;
            return value.value_or(std::string());
        };
        const auto number = [&](ui::LimitedNumberBox* box, const char* setting) {
            box->setStoredNumber(stored(setting));
        };
        const auto check = [&](QCheckBox* box, const char* setting) {
            box->setChecked(stored(setting) == checkedText);
        };
        frame.step([&] { number(tdbnumliteNoficationInterval, "EventNotificationInterval"); });
        frame.step([&] { number(tdbnumliteEventlogPollingInterval, "PollingInterval"); });
        frame.step([&] { number(tdbnumliteReportDataAging, "ReportDataAging"); });
        frame.step([&] { content->showDefaultVoiceFile(); });
        frame.step([&] {
            content->showDefaultMail();
            content->colorTexts();
        });
        frame.step([&] { content->showDefaultVoiceMailPriority(); });
        frame.step([&] { content->showDefaultEmailPriority(); });
        frame.step([&] { check(chkWarnOnDuplicateMonitoredEvents, "WarnOnDuplicateMonitoredEvents"); });
        frame.step([&] { check(chkMaxDiagnostics, "MaxDiag"); });
        whole = whole && content->defaultsWereRead();
        for (QPushButton* button : {cmdOk, cmdApply})
            button->setEnabled(whole);
    });
}

void frmOptions::saveOptions() {
    core::procedure(module, "saveOptions", [&](core::Frame& frame) {
        const mdlDatabase::EventContent shown = content->shown();
        const auto number = [](const ui::LimitedNumberBox* box) { return std::to_string(box->value()); };
        const std::pair<const char*, std::string> settings[] = {
            {"EventNotificationInterval", number(tdbnumliteNoficationInterval)},
            {"PollingInterval", number(tdbnumliteEventlogPollingInterval)},
            {"ReportDataAging", number(tdbnumliteReportDataAging)},
            {"DefaultWavAttachment", shown.contentAttachment},
            {"DefaultEmailSubject", shown.contentSubject},
            {"DefaultEmailBody", shown.contentNote},
            {"WarnOnDuplicateMonitoredEvents", storedText(*chkWarnOnDuplicateMonitoredEvents)},
            {"MaxDiag", storedText(*chkMaxDiagnostics)},
            {"DefaultEmailPriority", std::to_string(shown.emailPriority)},
            {"DefaultVoiceMailPriority", std::to_string(shown.voicePriority)}};
        for (const auto& [setting, value] : settings)
            frame.step([&, name = setting, text = &value] { setConfigurationSetting(name, *text); });
    });
}

// Asks about a blank subject when something is done that would leave it; true when it is not blank by then.
bool frmOptions::leaveSubject(QWidget& next) {
    if (content->rtbEmailSubject->toPlainText().isEmpty())
        sstabOptions->setCurrentIndex(tabDefaultContent);
    return content->variables->leaveSubject(next);
}

void frmOptions::sstabOptions_Click(int tab) {
    core::procedure(module, "sstabOptions_Click", [&](core::Frame&) {
        if (tab == tabGeneral) {
            // The keyboard turned the page under a blank subject.
            const QSignalBlocker isNoClick(sstabOptions);
            if (leaveSubject(*sstabOptions->tabBar()))
                sstabOptions->setCurrentIndex(tabGeneral);
            return;
        }
        // Nothing of the page before is to stay on these.
        content->comboEmailPriority->update();
        content->comboVoiceMailPriority->update();
        cmdOk->update();
    });
}

void frmOptions::cmdOk_Click() {
    core::procedure(module, "cmdOk_Click", [&](core::Frame&) {
        if (!leaveSubject(*cmdOk))
            return;
        saveOptions();
        accept();
    });
}

void frmOptions::cmdApply_Click() {
    core::procedure(module, "cmdApply_Click", [&](core::Frame&) {
        if (leaveSubject(*cmdApply))
            saveOptions();
    });
}

void frmOptions::cmdCancel_Click() {
    core::procedure(module, "cmdCancel_Click", [&](core::Frame&) { reject(); });
}
