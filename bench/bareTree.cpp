#include <QHeaderView>
#include <set>

#include "bench/bareWindows.h"

namespace bench {

void showNamesWhole(QTreeWidget& tree) {
    tree.setHeaderHidden(true);
    tree.setUniformRowHeights(true);
    tree.header()->setStretchLastSection(false);
    tree.header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    tree.setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
}

BareTree::BareTree(Peer& peer)
    : events_(
          peer.engine(),
          "SELECT EventKey, EventSource, EventId, EventTitle, EventActive FROM Events WHERE EventTitle <> "
          "'$$IGNORE' ORDER BY EventCollection, EventSource"),
      notifying_(
          peer.engine(),
          "SELECT DISTINCT e.EventKey FROM EventDevice e JOIN Device d ON d.DeviceKey = e.DeviceKey JOIN "
          "DeviceRecipient l ON l.DeviceKey = d.DeviceKey JOIN Recipients r ON r.RecipientKey = "
          "l.RecipientKey JOIN AddressDetails a ON a.DeviceAddress = d.DeviceAddress WHERE e.Active <> 0 "
          "AND r.RecipientActive <> 0"),
      unresolved_(
          peer.engine(),
          "SELECT DISTINCT l.RecipientKey FROM AddressDetails a JOIN DeviceRecipient l ON l.DeviceKey "
          "= a.DeviceKey WHERE a.AddressType = 0"),
      recipients_(peer.engine(),
                  "SELECT RecipientKey, RecipientName, RecipientActive FROM Recipients ORDER BY "
                  "RecipientName"),
      exclusions_(peer.engine(), "SELECT EventSource, EventId FROM Exclusions ORDER BY EventSource, EventId"),
      icons_{QIcon(":/icons/category.svg"), QIcon(":/icons/complete.svg"), QIcon(":/icons/incomplete.svg"),
             QIcon(":/icons/inactive.svg")} {
    showNamesWhole(*this);
}

void BareTree::rebuild() {
    setUpdatesEnabled(false);
    clear();
    addEvents(addRoot("Monitored Events"));
    addRecipients(addRoot("Recipients"));
    addExclusions(addRoot("Exclusions"));
    setUpdatesEnabled(true);
}

long BareTree::count() const {
    long count = topLevelItemCount();
    for (int i = 0; i < topLevelItemCount(); ++i)
        count += topLevelItem(i)->childCount();
    return count;
}

QFont BareTree::boldFont() const {
    QFont bold = font();
    bold.setBold(true);
    return bold;
}

QTreeWidgetItem* BareTree::addRoot(const char* text) {
    auto* root = new QTreeWidgetItem(this, {text});
    root->setIcon(0, icons_[0]);
    root->setFont(0, boldFont());
    root->setExpanded(true);
    return root;
}

void BareTree::addEvents(QTreeWidgetItem* root) {
    std::set<long> notifying;
    while (notifying_.row())
        notifying.insert(notifying_.number(0));
    const QBrush grey = palette().brush(QPalette::Disabled, QPalette::Text);
    while (events_.row()) {
        const long key = events_.number(0);
        const long id = events_.number(2);
        const QString source = QString::fromStdString(events_.text(1));
        auto* item =
            new QTreeWidgetItem(root, {id == -1 ? source + " (All)" : source + QString(" (%1)").arg(id)});
        const bool active = events_.number(4) != 0;
        item->setIcon(0, icons_[!active ? 3 : notifying.contains(key) ? 1 : 2]);
        item->setToolTip(0, QString::fromStdString(events_.text(3)));
        item->setData(0, Qt::UserRole, static_cast<qlonglong>(key));
        if (active)
            item->setFont(0, boldFont());
        else
            item->setForeground(0, grey);
    }
}

void BareTree::addRecipients(QTreeWidgetItem* root) {
    std::set<long> unresolved;
    while (unresolved_.row())
        unresolved.insert(unresolved_.number(0));
    while (recipients_.row()) {
        const long key = recipients_.number(0);
        std::size_t state = recipients_.number(2) != 0 ? 1 : 3;
        if (unresolved.contains(key))
            state = 2;
        auto* item = new QTreeWidgetItem(root, {QString::fromStdString(recipients_.text(1))});
        item->setIcon(0, icons_[state]);
        item->setData(0, Qt::UserRole, static_cast<qlonglong>(key));
    }
}

void BareTree::addExclusions(QTreeWidgetItem* root) {
    while (exclusions_.row()) {
        const QString source = QString::fromStdString(exclusions_.text(0));
        auto* item = new QTreeWidgetItem(root, {source + QString(" (%1)").arg(exclusions_.number(1))});
        item->setIcon(0, icons_[0]);
    }
}

}  // namespace bench
