#include "ui/widgets/formArea.h"

#include <QApplication>
#include <QLayout>

namespace ui {

FormArea::FormArea(QWidget* content, QWidget* parent) : QScrollArea(parent) {
    if (content->layout())
        content->layout()->setContentsMargins(0, 0, 0, 0);
    setWidget(content);
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    // The toolkit does so for the Tab key alone, and not for a mnemonic or a program.
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) {
        if (now && widget()->isAncestorOf(now))
            ensureWidgetVisible(now);
    });
}

}  // namespace ui
