// A person without a plan: sends what a mouse and a keyboard can send to whatever window has the input. All
// of it follows from one seed.
#pragma once

#include <QObject>
#include <QStringList>
#include <functional>
#include <random>

class QAction;
class QMenu;
class QWidget;

namespace monkey {

class Monkey : public QObject {
  public:
    // `behindTheBack` is called now and then: it changes the database as somebody else would.
    Monkey(unsigned seed, QWidget& mainWindow, std::function<void(unsigned)> behindTheBack);

    // Sends so many inputs and closes what is open then.
    void run(int inputs);
    // The last inputs, for a report.
    QStringList lastInputs() const { return said_; }

  private:
    void step();
    void input();
    void finish();
    QWidget* target() const;
    unsigned below(unsigned bound) { return static_cast<unsigned>(random_() % bound); }
    void say(const QString& what);

    void clickSomewhere(QWidget& window);
    void clickInMenu(QMenu& menu);
    void chooseLanguage(QWidget& about);
    void pressKey(QWidget& window);
    void paste(QWidget& window);

    std::mt19937 random_;
    QWidget& mainWindow_;
    std::function<void(unsigned)> behindTheBack_;
    QStringList said_;
    int left_ = 0;
};

}  // namespace monkey
