#include "ui/widgets/cellTip.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QToolTip>

namespace ui {

bool showCutText(const QAbstractItemView& view, const QHelpEvent& event) {
    constexpr int padding = 6;
    const QModelIndex cell = view.indexAt(event.pos());
    const QString text = cell.data(Qt::DisplayRole).toString();
    if (!cell.isValid() ||
        view.fontMetrics().horizontalAdvance(text) <= view.visualRect(cell).width() - padding)
        return false;
    QToolTip::showText(event.globalPos(), text.toHtmlEscaped(), view.viewport());
    return true;
}

bool isTipKey(const QKeyEvent& event) {
    return event.key() == Qt::Key_F1 && event.modifiers() == Qt::ControlModifier;
}

bool showTipByKey(QAbstractItemView& view, const QKeyEvent& event) {
    if (!isTipKey(event))
        return false;
    const QPoint place = view.visualRect(view.currentIndex()).center();
    QHelpEvent asked(QEvent::ToolTip, place, view.viewport()->mapToGlobal(place));
    QApplication::sendEvent(view.viewport(), &asked);
    return true;
}

}  // namespace ui
