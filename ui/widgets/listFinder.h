// Ctrl+F in a window: a find bar for the tree or the list that has the focus. Typing goes to the next place,
// or hides what does not match until the bar is closed.
#pragma once

#include <QAbstractItemView>
#include <QMetaObject>
#include <QPointer>
#include <QTimer>
#include <functional>
#include <string>
#include <vector>

#include "ui/widgets/findBar.h"

class QShortcut;

namespace ui {

class ListFinder : public QObject {
    Q_OBJECT

  public:
    // `place` puts the bar, which is hidden, into the window's layout.
    ListFinder(QWidget& window, std::function<void(QWidget& bar)> place);

    // The words in the console's present language.
    void relabel();

  signals:
    // The bar was shown or hidden: the window has less or more room.
    void roomChanged();

  private:
    void open();
    void close();
    void attach(QAbstractItemView& view);
    void detach();
    QAbstractItemView* wanted() const;
    bool find(const QString& text, FindBar::Step step);
    void filter(const QString& text);
    void filterAgain();
    void followFocus(QWidget* old, QWidget* now);
    void takeBack();

    QWidget& window_;
    FindBar* bar_;
    std::vector<QShortcut*> whileOpen_;
    QPointer<QAbstractItemView> view_;  // that is searched; none while the bar is closed
    QPointer<QAbstractItemView> last_;  // that was searched last
    std::string before_;        // key of the tree's node that the window stands on, whatever the search marks
    bool isMarking_ = false;    // the search moves the tree's selection
    int measuredLines_ = 0;     // what a tree measured before the search
    std::vector<bool> hidden_;  // of the view's rows, those of a tree in the order of its lines
    std::vector<QMetaObject::Connection> watches_;
    QTimer again_;
};

// A finder for a dialog; the bar is the last in its layout.
void addFinder(QWidget& dialog);

}  // namespace ui
