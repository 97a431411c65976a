// Drives modal windows: a script of the windows that are expected, in order, and what to do in each, run
// from the event loop. Reports an unexpected window, one that stays open after its turn, and one that never
// came, and closes what nobody else would.
#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <QWidget>
#include <deque>
#include <functional>

namespace support {

class WindowScript : public QObject {
  public:
    using Report = std::function<void(const QString&)>;
    using Action = std::function<void(QWidget&)>;

    explicit WindowScript(Report report);
    ~WindowScript() override;

    // The next modal window has this object name or this title; `action` shall lead to its closing.
    void expect(const QString& nameOrTitle, Action action);
    // A message box with that title: clicks the button with that text, mnemonics left aside.
    void expectBox(const QString& title, const QString& button, Action before = {});
    // A popup menu: triggers the entry with that object name by mouse.
    void expectMenu(const QString& entryName, Action before = {});
    bool finished() const { return expected_.empty(); }

  private:
    struct Expected {
        QString name;
        bool popup;
        Action action;
    };
    void look();
    void run(QWidget* window, bool popup);

    Report report_;
    std::deque<Expected> expected_;
    void forgetClosed();

    QList<QPointer<QWidget>> served_;  // that are still open
    int patience_ = 0;
    QTimer timer_;
};

}  // namespace support
