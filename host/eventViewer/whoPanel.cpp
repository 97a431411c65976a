#include "host/eventViewer/whoPanel.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QStyle>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "host/eventViewer/eventText.h"
#include "platform/machine/clock.h"
#include "ui/base/controls.h"
#include "ui/base/text.h"

namespace viewer {

namespace {

constexpr int verdictColumn = 1;

QString momentText(service::Moment moment) {
    return ui::fromUtf8(platform::defaultForm(platform::localTime(moment)));
}

void setVerdict(QTreeWidgetItem& item, service::Reason reason, const QString& words, const QStyle& style) {
    item.setText(verdictColumn, words);
    item.setToolTip(verdictColumn, words);
    item.setIcon(
        verdictColumn,
        style.standardIcon(reason == service::Reason::send             ? QStyle::SP_DialogApplyButton
                           : reason == service::Reason::withinInterval ? QStyle::SP_MessageBoxWarning
                                                                       : QStyle::SP_DialogCancelButton));
}

}  // namespace

WhoPanel::WhoPanel(const Texts& texts, QWidget* parent)
    : QWidget(parent),
      texts_(texts),
      who_(std::make_shared<service::WhoIsTold>(databaseFile(), outboxFile())) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 4, 0, 0);
    auto* row = new QHBoxLayout;
    lblWho_ = ui::makeControl<QLabel>(this, "lblWho");
    lblWho_->setText(texts.whoIsTold);
    chkAsIfNow_ = ui::makeControl<QCheckBox>(this, "chkAsIfNow");
    chkAsIfNow_->setText(texts.asIfNow);
    treeWho_ = ui::makeControl<QTreeWidget>(this, "treeWho");
    treeWho_->setAccessibleName(ui::plainCaption(texts.whoIsTold));
    QStringList headers;
    for (const char* column : texts.whoColumns)
        headers << column;
    treeWho_->setHeaderLabels(headers);
    treeWho_->setUniformRowHeights(true);
    treeWho_->setAllColumnsShowFocus(true);
    // Of many devices the first tell how wide the columns are.
    constexpr int rowsLookedAt = 100;
    treeWho_->header()->setResizeContentsPrecision(rowsLookedAt);
    lblWho_->setBuddy(treeWho_);
    lblNobody_ = ui::makeControl<QLabel>(this, "lblNobody");
    lblNobody_->setTextFormat(Qt::PlainText);
    lblNobody_->setWordWrap(true);
    lblNobody_->hide();
    row->addWidget(lblWho_);
    row->addStretch();
    row->addWidget(chkAsIfNow_);
    layout->addLayout(row);
    layout->addWidget(lblNobody_);
    layout->addWidget(treeWho_, 1);
    soon_.setSingleShot(true);
    connect(&soon_, &QTimer::timeout, this, &WhoPanel::ask);
    connect(chkAsIfNow_, &QCheckBox::toggled, this, &WhoPanel::ask);
}

WhoPanel::~WhoPanel() = default;

void WhoPanel::showFor(EntryPointer entry) {
    constexpr int pause = 60;  // ms
    entry_ = std::move(entry);
    ++generation_;
    isAsking_ = static_cast<bool>(entry_);
    if (entry_)
        soon_.start(pause);
    else
        say({});
}

void WhoPanel::ask() {
    if (!entry_)
        return;
    isAsking_ = true;
    const auto moment =
        chkAsIfNow_->isChecked() ? std::nullopt : service::momentOfStored(entry_->record.time);
    worker_.post([this, entry = entry_, moment, who = who_, generation = ++generation_] {
        std::vector<service::EventAnswer> answers;
        const std::string failure = failureOf([&] {
            answers = moment ? who->ofThen(entry->record, *moment)
                             : who->of(entry->record, platform::clock().now());
        });
        inWindow(this, [this, generation, failure, answers = std::move(answers)] {
            if (generation != generation_)
                return;
            isAsking_ = false;
            if (failure.empty())
                fill(answers);
            else
                say(QString(texts_.cannotDecide).arg(ui::fromUtf8(failure)));
        });
    });
}

void WhoPanel::say(const QString& text) {
    treeWho_->clear();
    lblNobody_->setText(text);
    lblNobody_->setVisible(!text.isEmpty());
}

void WhoPanel::fill(const std::vector<service::EventAnswer>& answers) {
    say(answers.empty() ? texts_.noEvent : QString());
    const auto words = [this](service::Reason reason) {
        return QString(texts_.reasons[static_cast<std::size_t>(reason)]);
    };
    QList<QTreeWidgetItem*> events;
    for (const service::EventAnswer& answer : answers) {
        auto event = std::make_unique<QTreeWidgetItem>(
            QStringList{ui::fromUtf8(answer.title.empty() ? std::to_string(answer.key) : answer.title)});
        const bool hasNobody = answer.reason == service::Reason::send && answer.devices.empty();
        if (answer.heldBackUntil)
            setVerdict(*event, service::Reason::withinInterval,
                       QString(texts_.heldBackUntil).arg(momentText(*answer.heldBackUntil)), *style());
        else if (hasNobody)
            setVerdict(*event, service::Reason::deviceOff, texts_.noDevice, *style());
        else if (answer.reason != service::Reason::send)
            setVerdict(*event, answer.reason, words(answer.reason), *style());
        QList<QTreeWidgetItem*> devices;
        for (const service::DeviceAnswer& device : answer.devices) {
            auto item = std::make_unique<QTreeWidgetItem>(
                QStringList{ui::fromUtf8(device.recipient), QString(),
                            ui::fromUtf8(deviceName(device.kind, texts_)), ui::fromUtf8(device.address)});
            const QString problem = device.problem.empty() ? QString() : ": " + ui::fromUtf8(device.problem);
            setVerdict(*item, device.reason, words(device.reason) + problem, *style());
            devices << item.release();
        }
        event->addChildren(devices);
        events << event.release();
    }
    treeWho_->addTopLevelItems(events);
    treeWho_->expandAll();
    constexpr int widest = 300;
    for (int column = 0; column < treeWho_->columnCount() - 1; ++column) {
        treeWho_->resizeColumnToContents(column);
        treeWho_->setColumnWidth(column, std::min(treeWho_->columnWidth(column), widest));
    }
    if (treeWho_->topLevelItemCount() > 0)
        treeWho_->setCurrentItem(treeWho_->topLevelItem(0));
}

}  // namespace viewer
