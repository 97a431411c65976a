// A line to search with, for the bottom of a window. It goes to the next place at each key, or shows only
// the rows that match, and says so as long as it hides any.
#pragma once

#include <QWidget>
#include <functional>
#include <optional>
#include <vector>

#include "ui/widgets/findTexts.h"

class QCheckBox;
class QHBoxLayout;
class QLabel;
class QLineEdit;
class QPushButton;
class QShortcut;

namespace ui {

class FindBar : public QWidget {
    Q_OBJECT

  public:
    enum class Step { typed, next, previous };
    struct Target {
        // Goes to the present or a later place of a text when it was typed, else to the next or the previous
        // one, round the end too. False when there is none; nothing when it is looked for still, and
        // showFound() will tell.
        std::function<std::optional<bool>(const QString& text, Step step)> find;
        // Shows only rows with the text, or all for an empty one. Without it there is no such choice.
        std::function<void(const QString& text)> filter;
        // The search is over: the window takes the focus back.
        std::function<void()> leave;
    };

    // In the line Return and Shift+Return go on and back, Escape ends the search.
    FindBar(const FindTexts& texts, Target target, QWidget* parent);

    void setTexts(const FindTexts& texts);
    // For a window whose own captions have the keys already: Tab leads to every control.
    void dropMnemonics();
    void setTarget(Target target);
    // What is searched, for those who hear the line's name.
    void setSubject(const QString& subject);
    // Adds a control of the window's own at the right end.
    void append(QWidget* control);

    // From anywhere in the bar's window F3 and Shift+F3 go on and back.
    std::vector<QShortcut*> takeStepKeys();
    // The same, and Ctrl+F goes to the line.
    void takeKeys();
    void focusLine();
    // Ends the search: nothing is hidden any more.
    void finish();
    QString text() const;
    // What is to be filtered by; empty when nothing is.
    QString filterText() const;
    void showFound(bool found);
    // The sign of a filter; none when all rows are shown.
    void showCounts(qsizetype shown, qsizetype all);

  protected:
    bool eventFilter(QObject* object, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void createControls();
    void search(Step step);
    void type();
    void nameLine();

    FindTexts texts_;
    bool hasMnemonics_ = true;
    Target target_;
    QString subject_;
    QHBoxLayout* row_;
    QLabel* lblFind_;
    QLineEdit* txtFind_;
    QPushButton* cmdNext_;
    QPushButton* cmdPrevious_;
    QCheckBox* chkOnlyMatches_;
    QLabel* lblResult_;
    QLabel* lblHidden_;
};

}  // namespace ui
