#include "ui/frmOptions.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTabBar>
#include <QTabWidget>

#include "core/procedure.h"
#include "database/settings.h"
#include "ui/RTBHelpers.h"
#include "ui/controls.h"
#include "ui/formFonts.h"
#include "ui/insertionVariables.h"
#include "ui/text.h"
#include "ui/voiceFileBrowse.h"
#include "ui/widgets/limitedNumberBox.h"
#include "ui/widgets/variableTextBox.h"

using mdlDatabase::getConfigurationSetting;
using mdlDatabase::setConfigurationSetting;

namespace {

constexpr char module[] = "frmOptions";

enum Tab { tabGeneral = 0, tabDefaultContent = 1 };

constexpr char checkedText[] = "-1";
constexpr char clearText[] = "0";

std::string storedText(const QCheckBox& box) {
    return box.isChecked() ? checkedText : clearText;
}

// A tip that breaks its lines.
QString tip(long id) {
    return "<p>" + ui::text(id).toHtmlEscaped() + "</p>";
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
    createContentControls();
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

void frmOptions::createContentControls() {
    using Lines = ui::VariableTextBox::Lines;
    lblVoiceMailFilename = ui::makeControl<QLabel>(this, "lblVoiceMailFilename");
    txtVoiceMailFileName = ui::makeControl<QLineEdit>(this, "txtVoiceMailFileName");
    cmdVoiceMailBrowse = ui::makeControl<QPushButton>(this, "cmdVoiceMailBrowse");
    lblVoiceMailPriority = ui::makeControl<QLabel>(this, "lblVoiceMailPriority");
    comboVoiceMailPriority = ui::makeControl<QComboBox>(this, "comboVoiceMailPriority");
    lblEmailSubject = ui::makeControl<QLabel>(this, "lblEmailSubject");
    rtbEmailSubject = new ui::VariableTextBox(Lines::one, this);
    rtbEmailSubject->setObjectName("rtbEmailSubject");
    lblEmailBody = ui::makeControl<QLabel>(this, "lblEmailBody");
    rtbEmailBody = new ui::VariableTextBox(Lines::many, this);
    rtbEmailBody->setObjectName("rtbEmailBody");
    lblEmailPriority = ui::makeControl<QLabel>(this, "lblEmailPriority");
    comboEmailPriority = ui::makeControl<QComboBox>(this, "comboEmailPriority");
    lblRightClick = ui::makeControl<QLabel>(this, "lblRightClick");
    lblRightClick->setWordWrap(true);
    variables = new ui::InsertionVariables(module, *this, *rtbEmailSubject, *rtbEmailBody);
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

void frmOptions::layOutContent(QWidget& page) {
    auto* rows = new QGridLayout(&page);
    rows->setColumnStretch(1, 1);
    rows->addWidget(lblVoiceMailFilename, 0, 0);
    rows->addWidget(txtVoiceMailFileName, 0, 1);
    rows->addWidget(cmdVoiceMailBrowse, 0, 2);
    cmdVoiceMailBrowse->setMaximumWidth(48);
    rows->addWidget(lblVoiceMailPriority, 1, 0);
    rows->addWidget(comboVoiceMailPriority, 1, 1, 1, 2, Qt::AlignLeft);
    rows->addWidget(lblEmailSubject, 2, 0);
    rows->addWidget(rtbEmailSubject, 2, 1, 1, 2);
    rows->addWidget(lblEmailBody, 3, 0, Qt::AlignTop);
    rows->addWidget(rtbEmailBody, 3, 1, 1, 2);
    rows->addWidget(lblRightClick, 4, 1, 1, 2);
    rows->addWidget(lblEmailPriority, 5, 0);
    rows->addWidget(comboEmailPriority, 5, 1, 1, 2, Qt::AlignLeft);
    rows->setRowStretch(3, 1);
    lblVoiceMailFilename->setBuddy(txtVoiceMailFileName);
    lblVoiceMailPriority->setBuddy(comboVoiceMailPriority);
    lblEmailSubject->setBuddy(rtbEmailSubject);
    lblEmailBody->setBuddy(rtbEmailBody);
    lblEmailPriority->setBuddy(comboEmailPriority);
}

void frmOptions::buildLayout() {
    // A press on a tab takes the focus and so is asked about a blank subject.
    sstabOptions->tabBar()->setFocusPolicy(Qt::StrongFocus);
    for (auto layOut : {&frmOptions::layOutGeneral, &frmOptions::layOutContent}) {
        auto* page = new QWidget(sstabOptions);
        (this->*layOut)(*page);
        sstabOptions->addTab(page, QString());
    }
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    for (QPushButton* button : {cmdOk, cmdCancel, cmdApply})
        buttons->addWidget(button);
    cmdOk->setDefault(true);
    cmdVoiceMailBrowse->setAutoDefault(false);
    auto* whole = new QVBoxLayout(this);
    whole->addWidget(sstabOptions, 1);
    whole->addLayout(buttons);
    ui::setTabOrder({sstabOptions->tabBar(), tdbnumliteNoficationInterval, tdbnumliteEventlogPollingInterval,
                     tdbnumliteReportDataAging, chkWarnOnDuplicateMonitoredEvents, chkMaxDiagnostics,
                     txtVoiceMailFileName, cmdVoiceMailBrowse, comboVoiceMailPriority, rtbEmailSubject,
                     rtbEmailBody, comboEmailPriority, cmdOk, cmdCancel, cmdApply});
    resize(620, 520);
}

void frmOptions::connectControls() {
    const auto keepPriority = [this](QComboBox* combo, const char* handler, long& priority) {
        connect(combo, &QComboBox::currentIndexChanged, this, [handler, &priority](int row) {
            core::procedure(module, handler, [&](core::Frame&) { priority = mdlDatabase::mapPriority(row); });
        });
    };
    keepPriority(comboVoiceMailPriority, "comboVoiceMailPriority_Click", voiceMailPriority_);
    keepPriority(comboEmailPriority, "comboEmailPriority_Click", emailPriority_);
    connect(sstabOptions, &QTabWidget::currentChanged, this, &frmOptions::sstabOptions_Click);
    connect(cmdVoiceMailBrowse, &QPushButton::clicked, this, &frmOptions::cmdVoiceMailBrowse_Click);
    connect(cmdOk, &QPushButton::clicked, this, &frmOptions::cmdOk_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &frmOptions::cmdCancel_Click);
    connect(cmdApply, &QPushButton::clicked, this, &frmOptions::cmdApply_Click);
}

void frmOptions::Form_Load() {
    core::procedure(module, "Form_Load", [&](core::Frame& frame) {
        frmOptions_ControlInit();
        frame.step([&] { ui::setFormFonts(*this); });
        frame.step([&] { variables->controlInit(); });
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
        chkWarnOnDuplicateMonitoredEvents->setToolTip(tip(1161));
        chkMaxDiagnostics->setText(ui::text(1315));
        chkMaxDiagnostics->setToolTip(tip(1316));
        lblVoiceMailFilename->setText(ui::text(1038));
        cmdVoiceMailBrowse->setText("...");
        cmdVoiceMailBrowse->setToolTip(ui::text(1044));
        cmdVoiceMailBrowse->setAccessibleName(ui::text(1044));
        lblVoiceMailPriority->setText(ui::text(1042));
        ui::fillCombo(*comboVoiceMailPriority, {1035, 1036});
        lblEmailSubject->setText(ui::text(1039));
        lblEmailBody->setText(ui::text(1040));
        lblEmailPriority->setText(ui::text(1043));
        ui::fillCombo(*comboEmailPriority, {1035, 1036});
        lblRightClick->setText(ui::text(1152));
        cmdOk->setText(ui::text(1001));
        cmdCancel->setText(ui::text(1023));
        cmdApply->setText(ui::text(1046));
        ui::nameByBuddy(*this);
        tdbnumliteNoficationInterval->setValue(30);
        tdbnumliteEventlogPollingInterval->setValue(2);
        tdbnumliteReportDataAging->setValue(14);
    });
}

void frmOptions::loadOptions() {
    core::procedure(module, "loadOptions", [&](core::Frame& frame) {
        const auto number = [](ui::LimitedNumberBox* box, const char* setting) {
            box->setStoredNumber(getConfigurationSetting(setting));
        };
        const auto priority = [](QComboBox* combo, const char* setting) {
            ui::showPriority(*combo, ui::priorityRow(getConfigurationSetting(setting)));
        };
        const auto check = [](QCheckBox* box, const char* setting) {
            box->setChecked(getConfigurationSetting(setting) == checkedText);
        };
        frame.step([&] { number(tdbnumliteNoficationInterval, "EventNotificationInterval"); });
        frame.step([&] { number(tdbnumliteEventlogPollingInterval, "PollingInterval"); });
        frame.step([&] { number(tdbnumliteReportDataAging, "ReportDataAging"); });
        frame.step(
            [&] { txtVoiceMailFileName->setText(ui::fromUtf8(mdlDatabase::getDefaultContent(1).text)); });
        frame.step([&] {
            const auto content = mdlDatabase::getDefaultContent(3).parts;
            rtbEmailSubject->setStoredText(content.at("Subject"));
            rtbEmailBody->setStoredText(content.at("Body"));
            for (ui::VariableTextBox* box : {rtbEmailSubject, rtbEmailBody})
                RTBHelpers::colorInsertionTokens(*box, RTBHelpers::insertionTokens);
        });
        frame.step([&] { priority(comboVoiceMailPriority, "DefaultVoiceMailPriority"); });
        frame.step([&] { priority(comboEmailPriority, "DefaultEmailPriority"); });
        frame.step([&] { check(chkWarnOnDuplicateMonitoredEvents, "WarnOnDuplicateMonitoredEvents"); });
        frame.step([&] { check(chkMaxDiagnostics, "MaxDiag"); });
    });
}

void frmOptions::saveOptions() {
    core::procedure(module, "saveOptions", [&](core::Frame& frame) {
        const auto number = [](const ui::LimitedNumberBox* box) { return std::to_string(box->value()); };
        const std::pair<const char*, std::string> settings[] = {
            {"EventNotificationInterval", number(tdbnumliteNoficationInterval)},
            {"PollingInterval", number(tdbnumliteEventlogPollingInterval)},
            {"ReportDataAging", number(tdbnumliteReportDataAging)},
            {"DefaultWavAttachment", ui::toUtf8(txtVoiceMailFileName->text())},
            {"DefaultEmailSubject", rtbEmailSubject->storedText()},
            {"DefaultEmailBody", rtbEmailBody->storedText()},
            {"WarnOnDuplicateMonitoredEvents", storedText(*chkWarnOnDuplicateMonitoredEvents)},
            {"MaxDiag", storedText(*chkMaxDiagnostics)},
            {"DefaultEmailPriority", std::to_string(emailPriority_)},
            {"DefaultVoiceMailPriority", std::to_string(voiceMailPriority_)}};
        for (const auto& [setting, value] : settings)
            frame.step([&, name = setting, text = &value] { setConfigurationSetting(name, *text); });
    });
}

// Asks about a blank subject when something is done that would leave it; true when it is not blank by then.
bool frmOptions::leaveSubject(QWidget& next) {
    if (rtbEmailSubject->toPlainText().isEmpty())
        sstabOptions->setCurrentIndex(tabDefaultContent);
    return variables->leaveSubject(next);
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
        comboEmailPriority->update();
        comboVoiceMailPriority->update();
        cmdOk->update();
    });
}

void frmOptions::cmdVoiceMailBrowse_Click() {
    core::procedure(module, "cmdVoiceMailBrowse_Click", [&](core::Frame& frame) {
        frame.step([&] { ui::browseVoiceFile(*txtVoiceMailFileName); });
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
