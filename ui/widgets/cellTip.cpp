#include "ui/widgets/cellTip.h"

#include <QAbstractItemView>
#include <QHelpEvent>
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

}  // namespace ui
