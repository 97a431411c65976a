#include "ui/widgets/cellTip.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QToolTip>
#include <utility>

namespace ui {

namespace {

// A list gives all its rows the width of the longest one.
QRect placeInSight(const QAbstractItemView& view, const QModelIndex& cell) {
    return view.visualRect(cell) & view.viewport()->rect();
}

// The view owns it.
class TipKey : public QObject {
  public:
    TipKey(QAbstractItemView& view, std::function<void()> prepare)
        : QObject(&view), view_(view), prepare_(std::move(prepare)) {
        view.installEventFilter(this);
    }

  protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() != QEvent::KeyPress)
            return false;
        const auto& key = static_cast<const QKeyEvent&>(*event);
        if (key.key() != Qt::Key_F1 || key.modifiers() != Qt::ControlModifier)
            return false;
        if (prepare_)
            prepare_();
        const QPoint place = placeInSight(view_, view_.currentIndex()).center();
        QHelpEvent asked(QEvent::ToolTip, place, view_.viewport()->mapToGlobal(place));
        QApplication::sendEvent(view_.viewport(), &asked);
        return true;
    }

  private:
    QAbstractItemView& view_;
    std::function<void()> prepare_;
};

}  // namespace

bool showCutText(const QAbstractItemView& view, const QHelpEvent& event) {
    constexpr int padding = 6;
    const QModelIndex cell = view.indexAt(event.pos());
    const QString text = cell.data(Qt::DisplayRole).toString();
    if (!cell.isValid() ||
        view.fontMetrics().horizontalAdvance(text) <= placeInSight(view, cell).width() - padding)
        return false;
    QToolTip::showText(event.globalPos(), text.toHtmlEscaped(), view.viewport());
    return true;
}

void showTipByKey(QAbstractItemView& view, std::function<void()> prepare) {
    new TipKey(view, std::move(prepare));
}

}  // namespace ui
