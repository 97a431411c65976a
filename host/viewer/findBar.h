// A line to search with, for the bottom of a viewer.
#pragma once

#include <QWidget>
#include <functional>

#include "host/viewer/texts.h"

class QHBoxLayout;
class QLabel;
class QLineEdit;

namespace viewer {

class FindBar : public QWidget {
  public:
    // Looks for the next or previous place of a text, round the end too, and shows it; false when there is
    // none.
    using Find = std::function<bool(const QString& text, bool backwards)>;

    // Ctrl+F goes to the line, Return and F3 find the next place, Shift+F3 the previous one.
    FindBar(const Texts& texts, Find find, QWidget* parent);

    // Adds a control of the viewer's own at the right end.
    void append(QWidget* control);

  private:
    void search(bool backwards);

    const Texts& texts_;
    Find find_;
    QHBoxLayout* row_;
    QLineEdit* txtFind_;
    QLabel* lblResult_;
};

}  // namespace viewer
