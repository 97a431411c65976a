#include "ui/widgets/leftButton.h"

#include <QAbstractItemView>
#include <QMouseEvent>

namespace ui {

namespace {

class OtherButtonsGuard : public QObject {
  public:
    using QObject::QObject;

  protected:
    bool eventFilter(QObject*, QEvent* event) override {
        switch (event->type()) {
            case QEvent::MouseButtonPress:
            case QEvent::MouseButtonRelease:
            case QEvent::MouseButtonDblClick:
                return static_cast<const QMouseEvent*>(event)->button() != Qt::LeftButton;
            default:
                return false;
        }
    }
};

}  // namespace

void chooseByLeftButtonOnly(QAbstractItemView& view) {
    view.viewport()->installEventFilter(new OtherButtonsGuard(view.viewport()));
}

}  // namespace ui
