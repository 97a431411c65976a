// The part of a pane that scrolls where the window is too low for it. It has no frame and no margins of its
// own, is no stop of the Tab key, and brings whatever takes the focus into sight.
#pragma once

#include <QScrollArea>

namespace ui {

class FormArea : public QScrollArea {
  public:
    // Takes the content over.
    FormArea(QWidget* content, QWidget* parent);
};

}  // namespace ui
