#include "ui/parts/contentGroup.h"

#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QVBoxLayout>
#include <utility>

#include "core/modLocalize.h"
#include "core/procedure.h"
#include "database/settings.h"
#include "platform/prompts.h"
#include "server/voiceFiles.h"
#include "ui/base/controls.h"
#include "ui/base/text.h"
#include "ui/parts/RTBHelpers.h"
#include "ui/parts/insertionVariables.h"
#include "ui/parts/rowText.h"
#include "ui/widgets/variableTextBox.h"

namespace ui {

namespace {

VariableTextBox* makeTextBox(VariableTextBox::Lines lines, QWidget& area, const char* name) {
    auto* box = new VariableTextBox(lines, &area);
    box->setObjectName(name);
    return box;
}

constexpr char voicePrioritySetting[] = "DefaultVoiceMailPriority";
constexpr char emailPrioritySetting[] = "DefaultEmailPriority";

long priorityFrom(const std::string& text) {
    bool isNumber = false;
    const int stored = fromUtf8(text).toInt(&isNumber);
    return isNumber ? stored : 2;
}

long defaultPriority(const char* setting) {
    return priorityFrom(mdlDatabase::getConfigurationSetting(setting));
}

// A priority that is no number is none of this event, and the one of the event before is not either.
void showStoredPriority(core::Frame& frame, QComboBox& list, const platform::Recordset& contents,
                        const char* setting) {
    long stored = 0;
    if (!frame.step([&] { stored = contents.number("ContentPriority"); }))
        stored = defaultPriority(setting);
    frame.step([&] { ContentGroup::showPriority(list, stored); });
}

}  // namespace

ContentGroup::ContentGroup(std::string module, QWidget& window, QWidget& area, const Names& names,
                           Handlers handlers)
    : QObject(&window), module_(std::move(module)), priorityClicked_(std::move(handlers.priorityClicked)) {
    lblVoiceMailFilename = makeControl<QLabel>(&area, "lblVoiceMailFilename");
    txtVoiceMailFileName = makeControl<QLineEdit>(&area, "txtVoiceMailFileName");
    cmdVoiceMailBrowse = makeControl<QPushButton>(&area, "cmdVoiceMailBrowse");
    cmdVoiceMailBrowse->setAutoDefault(false);
    lblVoiceMailPriority = makeControl<QLabel>(&area, "lblVoiceMailPriority");
    comboVoiceMailPriority = makeControl<QComboBox>(&area, "comboVoiceMailPriority");
    lblEmailSubject = makeControl<QLabel>(&area, "lblEmailSubject");
    rtbEmailSubject = makeTextBox(VariableTextBox::Lines::one, area, "rtbEmailSubject");
    lblEmailBody = makeControl<QLabel>(&area, names.bodyLabel);
    rtbEmailBody = makeTextBox(VariableTextBox::Lines::many, area, "rtbEmailBody");
    lblRightClick = makeControl<QLabel>(&area, names.hintLabel);
    lblRightClick->setWordWrap(true);
    lblEmailPriority = makeControl<QLabel>(&area, "lblEmailPriority");
    comboEmailPriority = makeControl<QComboBox>(&area, "comboEmailPriority");
    variables = new InsertionVariables(module_, window, *rtbEmailSubject, *rtbEmailBody,
                                       std::move(handlers.textChanged));
    layOut(area);
    keepPriority(*comboVoiceMailPriority, "comboVoiceMailPriority_Click", voiceMailPriority_);
    keepPriority(*comboEmailPriority, "comboEmailPriority_Click", emailPriority_);
    connect(cmdVoiceMailBrowse, &QPushButton::clicked, this, &ContentGroup::cmdVoiceMailBrowse_Click);
}

void ContentGroup::keepPriority(QComboBox& list, const char* handler, long& priority) {
    connect(&list, &QComboBox::currentIndexChanged, this, [this, handler, &priority](int row) {
        core::procedure(module_, handler, [&](core::Frame& frame) {
            priority = mdlDatabase::mapPriority(row);
            if (priorityClicked_)
                frame.step([&] { priorityClicked_(); });
        });
    });
}

void ContentGroup::layOut(QWidget& area) {
    auto* rows = new QGridLayout(&area);
    rows->setColumnStretch(1, 1);
    rows->addWidget(lblVoiceMailFilename, 0, 0);
    rows->addWidget(txtVoiceMailFileName, 0, 1);
    rows->addWidget(cmdVoiceMailBrowse, 0, 2);
    cmdVoiceMailBrowse->setMaximumWidth(48);
    rows->addWidget(lblVoiceMailPriority, 1, 0);
    rows->addWidget(comboVoiceMailPriority, 1, 1, 1, 2, Qt::AlignLeft);
    rows->addWidget(lblEmailSubject, 2, 0);
    rows->addWidget(rtbEmailSubject, 2, 1, 1, 2);
    // The hint stands beside the body and not below it, where it would cost the body a line.
    auto* captions = new QVBoxLayout;
    captions->addWidget(lblEmailBody);
    captions->addWidget(lblRightClick);
    captions->addStretch();
    lblRightClick->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    rows->addLayout(captions, 3, 0);
    rows->addWidget(rtbEmailBody, 3, 1, 1, 2);
    rows->addWidget(lblEmailPriority, 4, 0);
    rows->addWidget(comboEmailPriority, 4, 1, 1, 2, Qt::AlignLeft);
    rows->setRowStretch(3, 1);
    lblVoiceMailFilename->setBuddy(txtVoiceMailFileName);
    lblVoiceMailPriority->setBuddy(comboVoiceMailPriority);
    lblEmailSubject->setBuddy(rtbEmailSubject);
    lblEmailBody->setBuddy(rtbEmailBody);
    lblEmailPriority->setBuddy(comboEmailPriority);
}

void ContentGroup::followInTabOrder(QWidget& before) {
    setTabOrder({&before, txtVoiceMailFileName, cmdVoiceMailBrowse, comboVoiceMailPriority, rtbEmailSubject,
                 rtbEmailBody, comboEmailPriority});
}

void ContentGroup::controlInit() {
    lblVoiceMailFilename->setText(text(1038));
    captionSign(*cmdVoiceMailBrowse, "...", text(1044), lblVoiceMailFilename->text());
    lblVoiceMailPriority->setText(text(1042));
    fillCombo(*comboVoiceMailPriority, {1035, 1036});
    lblEmailSubject->setText(text(1039));
    lblEmailBody->setText(text(1040));
    lblRightClick->setText(text(1152));
    lblEmailPriority->setText(text(1043));
    fillCombo(*comboEmailPriority, {1035, 1036});
    // The menu's entries come later in some windows.
    variables->mnuVariables->setTitle(text(1058));
    if (variables->mnuInsert.size() > 1)
        variables->controlInit();
}

std::string ContentGroup::setting(const char* name) {
    const std::optional<std::string> value = mdlDatabase::readConfigurationSetting(name);
    defaultsWereRead_ = defaultsWereRead_ && value;
    return value.value_or(std::string());
}

// The built-in texts stand in for settings without a text only.
void ContentGroup::showDefaultVoiceFile() {
    const std::string stored = setting("DefaultWavAttachment");
    txtVoiceMailFileName->setText(fromUtf8(
        stored.empty() ? mdlDatabase::getDefaultContent(mdlDatabase::voiceContent).voiceFile : stored));
}

void ContentGroup::showDefaultMail() {
    const std::string subject = setting("DefaultEmailSubject");
    const std::string body = setting("DefaultEmailBody");
    mdlDatabase::DefaultContent builtIn;
    if (subject.empty() || body.empty())
        builtIn = mdlDatabase::getDefaultContent(mdlDatabase::emailContent);
    rtbEmailSubject->setStoredText(subject.empty() ? builtIn.subject : subject);
    rtbEmailBody->setStoredText(body.empty() ? builtIn.body : body);
}

void ContentGroup::showDefaultVoiceMailPriority() {
    showPriority(*comboVoiceMailPriority, priorityFrom(setting(voicePrioritySetting)));
}

void ContentGroup::showDefaultEmailPriority() {
    showPriority(*comboEmailPriority, priorityFrom(setting(emailPrioritySetting)));
}

void ContentGroup::showPriority(QComboBox& list, long stored) {
    const int row = static_cast<int>(mdlDatabase::mapPriority(stored));
    list.setCurrentIndex(row < list.count() ? row : -1);
    if (row >= list.count())
        throw platform::makeFailure(platform::invalidProcedureCall, toUtf8(list.objectName()));
}

void ContentGroup::colorTexts() {
    for (VariableTextBox* box : {rtbEmailSubject, rtbEmailBody})
        RTBHelpers::colorInsertionTokens(*box, RTBHelpers::insertionTokens);
}

void ContentGroup::showDefaults(core::Frame& frame) {
    forgetLeftOver();
    frame.step([&] { showDefaultVoiceFile(); });
    frame.step([&] { showDefaultVoiceMailPriority(); });
    frame.step([&] { showDefaultMail(); });
    frame.step([&] { showDefaultEmailPriority(); });
    colorTexts();
}

void ContentGroup::forgetLeftOver() {
    leftOverVoice_.reset();
    leftOverMail_.reset();
}

void ContentGroup::showStored(core::Frame& frame, platform::Recordset& contents) {
    forgetLeftOver();
    const auto find = [&](int type) {
        contents.moveFirst();
        contents.find("ContentType = " + std::to_string(type));
        return !contents.EOF_();
    };
    frame.step([&] {
        if (!find(1)) {
            leftOverVoice_ = inControls();
            return;
        }
        frame.step(
            [&] { txtVoiceMailFileName->setText(fromUtf8(textOrEmpty(contents, "ContentAttachment"))); });
        showStoredPriority(frame, *comboVoiceMailPriority, contents, voicePrioritySetting);
    });
    frame.step([&] {
        if (!find(3)) {
            leftOverMail_ = inControls();
            return;
        }
        frame.step([&] { rtbEmailSubject->setStoredText(textOrEmpty(contents, "ContentSubject")); });
        frame.step([&] { rtbEmailBody->setStoredText(textOrEmpty(contents, "ContentNote")); });
        showStoredPriority(frame, *comboEmailPriority, contents, emailPrioritySetting);
        frame.step([&] { colorTexts(); });
    });
}

void ContentGroup::blank() {
    forgetLeftOver();
    txtVoiceMailFileName->clear();
    rtbEmailSubject->setStoredText("");
    rtbEmailBody->setStoredText("");
}

mdlDatabase::EventContent ContentGroup::shown() const {
    mdlDatabase::EventContent content = inControls();
    if (leftOverVoice_ && content.contentAttachment == leftOverVoice_->contentAttachment &&
        content.voicePriority == leftOverVoice_->voicePriority) {
        content.contentAttachment = mdlDatabase::getDefaultContent(mdlDatabase::voiceContent).voiceFile;
        content.voicePriority = defaultPriority(voicePrioritySetting);
    }
    if (leftOverMail_ && content.contentSubject == leftOverMail_->contentSubject &&
        content.contentNote == leftOverMail_->contentNote &&
        content.emailPriority == leftOverMail_->emailPriority) {
        const mdlDatabase::DefaultContent mail = mdlDatabase::getDefaultContent(mdlDatabase::emailContent);
        content.contentSubject = mail.subject;
        content.contentNote = mail.body;
        content.emailPriority = defaultPriority(emailPrioritySetting);
    }
    return content;
}

mdlDatabase::EventContent ContentGroup::inControls() const {
    return {toUtf8(txtVoiceMailFileName->text()), voiceMailPriority_, rtbEmailSubject->storedText(),
            rtbEmailBody->storedText(), emailPriority_};
}

// The recording chosen is brought into the Database folder and shown by its bare name; without a result the
// box keeps its text.
void ContentGroup::cmdVoiceMailBrowse_Click() {
    using modLocalize::myLoadResString;
    core::procedure(module_, "cmdVoiceMailBrowse_Click", [&](core::Frame& frame) {
        frame.step([&] {
            const QString kept = txtVoiceMailFileName->text();
            const std::optional<std::string> chosen =
                platform::prompts().openFile({myLoadResString(1044), myLoadResString(1045), ".wav",
                                              mdlUtility::databaseFolder().string()});
            if (!chosen || chosen->empty())
                return;
            txtVoiceMailFileName->setText(fromUtf8(mdlUtility::copyFileToDatabaseDirectory(*chosen)));
            if (txtVoiceMailFileName->text().isEmpty())
                txtVoiceMailFileName->setText(kept);
        });
    });
}

}  // namespace ui
