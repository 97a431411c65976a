#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "bench/bareWindows.h"
#include "database/deviceType.h"

namespace bench {

BareSelection::BareSelection(Peer& peer)
    : tree_(new QTreeWidget(this)),
      assigned_(peer.engine(),
                "SELECT e.DeviceKey, e.Active, l.RecipientKey FROM EventDevice e JOIN DeviceRecipient l ON "
                "l.DeviceKey = e.DeviceKey WHERE e.EventKey = ?1"),
      all_(peer.engine(),
           "SELECT r.RecipientKey, r.RecipientName, r.RecipientActive, d.DeviceKey, d.DeviceType, "
           "a.DisplayName FROM Recipients r JOIN DeviceRecipient l ON l.RecipientKey = r.RecipientKey JOIN "
           "Device d ON d.DeviceKey = l.DeviceKey JOIN AddressDetails a ON a.DeviceKey = d.DeviceKey ORDER "
           "BY r.RecipientName, r.RecipientKey, d.DeviceType") {
    showNamesWhole(*tree_);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel("Select Recipients"));
    layout->addWidget(tree_, 1);
    layout->addWidget(new QPushButton("OK"));
    layout->addWidget(new QPushButton("Cancel"));
    resize(480, 460);
}

long BareSelection::count() const {
    long count = tree_->topLevelItemCount();
    for (int i = 0; i < tree_->topLevelItemCount(); ++i)
        count += tree_->topLevelItem(i)->childCount();
    return count;
}

void BareSelection::beginFill() {
    tree_->setUpdatesEnabled(false);
    tree_->clear();
}

void BareSelection::endFill() {
    tree_->scrollToTop();
    tree_->setUpdatesEnabled(true);
}

BareSelection::Assignments BareSelection::readAssignments(long event) {
    Assignments assignments;
    for (assigned_.bind(1, event); assigned_.row();)
        assignments[assigned_.number(0)] = {assigned_.number(1) != 0, assigned_.number(2)};
    return assignments;
}

QTreeWidgetItem* BareSelection::addRecipient(const std::string& name, bool active) {
    auto* item = new QTreeWidgetItem(tree_, {QString::fromStdString(name)});
    item->setCheckState(0, Qt::Unchecked);
    if (!active)
        item->setForeground(0, palette().brush(QPalette::Disabled, QPalette::Text));
    return item;
}

QTreeWidgetItem* BareSelection::addDevice(QTreeWidgetItem* parent, long type, const std::string& name) {
    QString text = QString::fromStdString(name);
    if (type == mdlDatabase::voiceMail)
        text += " (VoiceMail)";
    else if (type == mdlDatabase::email)
        text += " (E-mail)";
    auto* item = new QTreeWidgetItem(parent, {text});
    item->setCheckState(0, Qt::Unchecked);
    return item;
}

void BareSelection::fill(long event) {
    const Assignments assignments = readAssignments(event);
    beginFill();
    QTreeWidgetItem* parent = nullptr;
    long before = 0;
    while (all_.row()) {
        const long recipient = all_.number(0);
        if (recipient != before)
            parent = addRecipient(all_.text(1), all_.number(2) != 0);
        before = recipient;
        QTreeWidgetItem* item = addDevice(parent, all_.number(4), all_.text(5));
        const auto assignment = assignments.find(all_.number(3));
        if (assignment == assignments.end() || !assignment->second.active)
            continue;
        parent->setExpanded(true);
        item->setCheckState(0, Qt::Checked);
        parent->setCheckState(0, Qt::Checked);
    }
    endFill();
}

}  // namespace bench
