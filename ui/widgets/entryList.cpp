#include "ui/widgets/entryList.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <algorithm>

#include "platform/failure.h"
#include "ui/base/text.h"
#include "ui/widgets/cellTip.h"
#include "ui/widgets/leftButton.h"

namespace ui {

EntryList::EntryList(QWidget* parent) : QListWidget(parent) {
    setSelectionMode(QAbstractItemView::SingleSelection);
    setUniformItemSizes(true);
    chooseByLeftButtonOnly(*this);
    showTipByKey(*this);
    // An address that does not fit is cut and has a tip, so that the few lines need no scroll bar below.
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setTextElideMode(Qt::ElideMiddle);
}

QListWidgetItem& EntryList::entry(int index) const {
    if (index < 0 || index >= count())
        throw platform::makeFailure(platform::invalidProcedureCall, std::to_string(index));
    return *item(index);
}

void EntryList::addEntry(const std::string& key, const std::string& text) {
    auto* added = new QListWidgetItem(fromUtf8(text));
    added->setData(Qt::UserRole, fromUtf8(key));
    addItem(added);
}

void EntryList::setEntryText(int index, const std::string& text) {
    entry(index).setText(fromUtf8(text));
}

void EntryList::removeEntry(int index) {
    delete &entry(index);
    clearSelection();
    setCurrentRow(-1);
}

std::string EntryList::entryKey(int index) const {
    return toUtf8(entry(index).data(Qt::UserRole).toString());
}

std::string EntryList::entryText(int index) const {
    return toUtf8(entry(index).text());
}

// Not the current row: that one is set by merely walking into the list.
int EntryList::chosenEntry() const {
    const QModelIndexList selected = selectionModel()->selectedRows();
    return selected.isEmpty() ? -1 : selected.front().row();
}

bool EntryList::viewportEvent(QEvent* event) {
    if (event->type() == QEvent::ToolTip && showCutText(*this, *static_cast<QHelpEvent*>(event)))
        return true;
    return QListWidget::viewportEvent(event);
}

void EntryList::mouseReleaseEvent(QMouseEvent* event) {
    QListWidget::mouseReleaseEvent(event);
    if (event->button() == Qt::LeftButton && itemAt(event->position().toPoint()) && chosenEntry() >= 0)
        emit entryClicked(chosenEntry());
}

void EntryList::keyPressEvent(QKeyEvent* event) {
    const int before = chosenEntry();
    const bool chooses = event->key() == Qt::Key_Space || event->key() == Qt::Key_Down;
    if (chooses && before < 0 && count() > 0)
        setCurrentRow(std::max(currentRow(), 0), QItemSelectionModel::ClearAndSelect);
    else
        QListWidget::keyPressEvent(event);
    if (chosenEntry() >= 0 && (chosenEntry() != before || event->key() == Qt::Key_Space))
        emit entryClicked(chosenEntry());
}

}  // namespace ui
