#include "ui/shell/detailPanes.h"

#include <QWidget>
#include <algorithm>

#include "core/procedure.h"
#include "ui/panes/paneEventDetails.h"
#include "ui/panes/paneExclusionDetails.h"
#include "ui/panes/paneExclusions.h"
#include "ui/panes/paneMonitoredEvents.h"
#include "ui/panes/paneRecipientDetails.h"
#include "ui/panes/paneRecipients.h"
#include "ui/panes/paneReports.h"
#include "ui/panes/saveQuestion.h"

DetailPanes::DetailPanes(QWidget& client)
    : QObject(&client),
      events(new paneMonitoredEvents(&client)),
      eventDetails(new paneEventDetails(&client)),
      recipients(new paneRecipients(&client)),
      recipientDetails(new paneRecipientDetails(&client)),
      exclusions(new paneExclusions(&client)),
      exclusionDetails(new paneExclusionDetails(&client)),
      editing_{{eventDetails, ui::eventSettingsChanged, true},
               {recipientDetails, ui::recipientSettingsChanged, false}} {
    auto* report = new paneReport(&client);
    const auto list = [](auto fill) {
        return [fill](const classNodeInfo&, const std::string&) {
            fill();
            return Filled::whole;
        };
    };
    rows_ = {{nodeTypeCategoryEvents, events, list([this] { events->displayEvents(); }),
              [this] { events->controlInit(); }, nullptr},
             {nodeTypeEvent, eventDetails,
              [this](const classNodeInfo& info,
                     const std::string& text) { return eventDetails->displayEventDetails(info.key, text); },
              [this] { eventDetails->controlInit(); }, eventDetails},
             {nodeTypeCategoryRecipients, recipients, list([this] { recipients->displayAllRecipients(); }),
              [this] { recipients->controlInit(); }, nullptr},
             {nodeTypeRecipient, recipientDetails,
              [this](const classNodeInfo& info,
                     const std::string&) { return recipientDetails->displayRecipient(info.key); },
              [this] { recipientDetails->controlInit(); }, recipientDetails},
             {nodeTypeCategoryReports, new paneReportCategory(&client), list([] {}), [] {}, nullptr},
             {nodeTypeReport, report,
              [report](const classNodeInfo&, const std::string& text) {
        report->openReport(text);
        return Filled::whole;
              },
              [report] { report->controlInit(); }, nullptr},
             {nodeTypeCategoryExclusions, exclusions, list([this] { exclusions->displayAllExclusions(); }),
              [this] { exclusions->controlInit(); }, nullptr},
             {nodeTypeExclusion, exclusionDetails,
              [this](const classNodeInfo& info, const std::string&) {
        return exclusionDetails->displayExclusion(info.key);
              },
              [this] { exclusionDetails->controlInit(); }, exclusionDetails}};
    for (std::size_t i = 0; i < rows_.size(); ++i)
        rows_[i].pane->setObjectName("vsviewportDetails_" + QString::number(i));
}

bool DetailPanes::isAnyChanged() const {
    return std::ranges::any_of(editing_, [](const Editing& each) { return each.pane->isChanged(); });
}

Filled DetailPanes::display(const classNodeInfo& info, const std::string& nodeText) {
    for (std::size_t i = 0; i < rows_.size(); ++i)
        if (rows_[i].nodeType == info.nodeType) {
            show(static_cast<int>(i));
            return rows_[i].fill(info, nodeText);
        }
    return Filled::whole;
}

void DetailPanes::show(int index) {
    core::procedure("frmMain", "showViewPort", [&](core::Frame&) {
        for (std::size_t i = 0; i < rows_.size(); ++i)
            rows_[i].pane->setVisible(static_cast<int>(i) == index);
    });
}

void DetailPanes::forget(long nodeType, long key) {
    for (const Row& row : rows_)
        if (row.one && row.nodeType == nodeType && row.one->shownKey() == key)
            row.one->blank();
}

void DetailPanes::controlInit() {
    for (const Row& row : rows_)
        row.controlInit();
}

void DetailPanes::place(const QRect& rectangle) {
    for (const Row& row : rows_)
        row.pane->setGeometry(rectangle);
    recipients->resizeAllRecipientsGrid();
}
