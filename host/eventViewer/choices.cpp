#include "host/eventViewer/choices.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>

#include "platform/machine/caseFold.h"
#include "ui/base/controls.h"

namespace viewer {

namespace {

constexpr int notificationsIndex = 2;
constexpr int journalIndex = 3;  // where the host watches one

// The first row lets all pass.
std::optional<std::size_t> chosen(const QComboBox& combo) {
    return combo.currentIndex() > 0 ? std::optional(static_cast<std::size_t>(combo.currentIndex() - 1))
                                    : std::nullopt;
}

}  // namespace

Choices::Choices(const Texts& texts, QWidget* parent) : QWidget(parent), texts_(texts) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(createFilters());
    layout->addWidget(createButtons());
    fitToLog();
    connect(comboLog_, &QComboBox::currentIndexChanged, this, [this] {
        fitToLog();
        emit logChosen();
    });
    for (QComboBox* combo : {comboType_, comboOutcome_, comboSource_})
        connect(combo, &QComboBox::currentIndexChanged, this, &Choices::filterChosen);
    connect(chkFollow_, &QCheckBox::toggled, this, &Choices::followChosen);
}

QLabel* Choices::addChoice(QHBoxLayout& row, QComboBox*& combo, const char* name, const char* caption) {
    constexpr int gap = 12;
    combo = ui::makeControl<QComboBox>(this, name);
    auto* label = new QLabel(caption, this);
    label->setBuddy(combo);
    combo->setAccessibleName(ui::plainCaption(caption));
    row.addWidget(label);
    row.addWidget(combo);
    row.addSpacing(gap);
    return label;
}

QWidget* Choices::createFilters() {
    constexpr int longestSource = 24;  // characters
    auto* all = new QWidget(this);
    auto* row = new QHBoxLayout(all);
    row->setContentsMargins(0, 0, 0, 0);
    addChoice(*row, comboLog_, "comboLog", texts_.log);
    for (const char* log : texts_.logs)
        comboLog_->addItem(log);
    comboLog_->addItem(texts_.notifications);
    journal_ = journalLog();
    if (journal_)
        comboLog_->addItem(texts_.journal);
    addChoice(*row, comboType_, "comboType", texts_.show);
    comboType_->addItem(texts_.allTypes);
    for (const char* type : texts_.types)
        comboType_->addItem(type);
    addChoice(*row, comboSource_, "comboSource", texts_.source);
    comboSource_->addItem(texts_.allSources);
    comboSource_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    comboSource_->setMinimumContentsLength(longestSource);
    lblOutcome_ = addChoice(*row, comboOutcome_, "comboOutcome", texts_.outcome);
    comboOutcome_->addItem(texts_.allOutcomes);
    for (const char* fate : texts_.fates)
        comboOutcome_->addItem(fate);
    row->addStretch();
    return all;
}

QPushButton* Choices::addButton(QHBoxLayout& row, const char* name, const char* caption,
                                void (Choices::*wanted)()) {
    auto* button = ui::makeControl<QPushButton>(this, name);
    button->setText(caption);
    connect(button, &QPushButton::clicked, this, wanted);
    row.addWidget(button);
    return button;
}

QWidget* Choices::createButtons() {
    auto* all = new QWidget(this);
    auto* row = new QHBoxLayout(all);
    row->setContentsMargins(0, 0, 0, 0);
    chkFollow_ = ui::makeControl<QCheckBox>(this, "chkFollow");
    chkFollow_->setText(texts_.followNews);
    row->addWidget(chkFollow_);
    row->addStretch();
    addButton(*row, "cmdRefresh", texts_.refresh, &Choices::refreshWanted)->setToolTip("F5");
    cmdCopy_ = addButton(*row, "cmdCopy", texts_.copy, &Choices::copyWanted);
    cmdExport_ = addButton(*row, "cmdExport", texts_.exportShown, &Choices::exportWanted);
    cmdSendAgain_ = addButton(*row, "cmdSendAgain", texts_.sendAgain, &Choices::sendAgainWanted);
    addButton(*row, "cmdLastDays", texts_.lastDays, &Choices::lastDaysWanted);
    return all;
}

// What only notifications have is shown with them alone.
void Choices::fitToLog() {
    for (QWidget* control : std::initializer_list<QWidget*>{lblOutcome_, comboOutcome_, cmdSendAgain_})
        control->setVisible(isOfNotifications());
}

bool Choices::isOfNotifications() const {
    return comboLog_->currentIndex() == notificationsIndex;
}

Log Choices::log() const {
    if (isOfNotifications())
        return notificationLog();
    if (journal_ && comboLog_->currentIndex() == journalIndex)
        return *journal_;
    return hostLog(comboLog_->currentIndex() == 1 ? "System" : "Application");
}

Filter Choices::filter() const {
    Filter filter;
    filter.type = chosen(*comboType_);
    if (const auto fate = chosen(*comboOutcome_); fate && isOfNotifications())
        filter.fate = static_cast<service::Fate>(*fate);
    if (comboSource_->currentIndex() > 0)
        filter.source = platform::foldCase(comboSource_->currentText().toStdString());
    return filter;
}

bool Choices::follows() const {
    return chkFollow_->isChecked();
}

// In the order of the alphabet. Names that differ in case alone are one source.
void Choices::addSource(const QString& source) {
    // A record without a source is found among all.
    if (source.isEmpty())
        return;
    int at = 1;
    while (at < comboSource_->count() && comboSource_->itemText(at).compare(source, Qt::CaseInsensitive) < 0)
        ++at;
    if (at == comboSource_->count() || comboSource_->itemText(at).compare(source, Qt::CaseInsensitive) != 0)
        comboSource_->insertItem(at, source);
}

void Choices::allow(bool copy, bool exportShown, bool sendAgain) {
    cmdCopy_->setEnabled(copy);
    cmdExport_->setEnabled(exportShown);
    cmdSendAgain_->setEnabled(sendAgain);
}

}  // namespace viewer
