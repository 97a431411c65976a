#include "monkey.h"

#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDebug>
#include <QDialog>
#include <QEventLoop>
#include <QMenu>
#include <QMenuBar>
#include <QTimer>
#include <QtTest/QTest>
#include <array>

#include "ui/base/paintingWait.h"

namespace monkey {

namespace {

constexpr int moment = 1;  // ms

// What would end the run, start other programs, or open the toolkit's choice of a file, which cannot be
// driven from inside its own loop.
bool isForbidden(const QObject& thing) {
    static const QStringList names{"mnuExit",          "mnuRemoveService",   "mnuViewCurrentLogFile",
                                   "mnuHelpContents",  "cmdOpenEventViewer", "cmdVoiceMailBrowse",
                                   "lblChangeLanguage"};
    return names.contains(thing.objectName());
}

const std::array<QString, 12>& oddTexts() {
    static const std::array<QString, 12> texts{
        QString(),
        QString("it's \"quoted\"; 100%"),
        QString("two\nlines\r\nthree"),
        QString("a") + QChar(0x2028) + "b" + QChar(0x2029) + "c",
        QString(QChar(0xE000)),
        QString::fromUtf8("Zo\xc3\xab \xf0\x9f\x98\x80 \xe6\x97\xa5\xe6\x9c\xac"),
        QString(300, 'W'),
        QString(20'000, 'x'),
        QString("<Type> <Source> <Nothing> <"),
        QString("99999999999"),
        QString("ana@example.net"),
        QString("'; DELETE FROM Events; --")};
    return texts;
}

}  // namespace

Monkey::Monkey(unsigned seed, QWidget& mainWindow, std::function<void(unsigned)> behindTheBack)
    : random_(seed), mainWindow_(mainWindow), behindTheBack_(std::move(behindTheBack)) {}

void Monkey::say(const QString& what) {
    constexpr int kept = 25;
    if (qEnvironmentVariableIsSet("QLN_MONKEY_TALKS"))
        qInfo().noquote() << what;
    said_.append(what);
    if (said_.size() > kept)
        said_.removeFirst();
}

void Monkey::run(int inputs) {
    left_ = inputs;
    QTimer::singleShot(0, this, [this] { step(); });
    while (left_ >= 0)
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

// The next turn is asked for first: an input may open a modal window, whose loop goes on with it. It comes a
// moment later, when the loop of a window that the input has closed is over.
void Monkey::step() {
    // Nobody's input reaches a window that waits painted.
    if (ui::isWaitingPainted()) {
        QTimer::singleShot(moment, this, [this] { step(); });
        return;
    }
    if (left_-- <= 0)
        return finish();
    QTimer::singleShot(moment, this, [this] { step(); });
    input();
}

// Modal windows close from the inside out; the loop that opened each goes on then.
void Monkey::finish() {
    if (QWidget* popup = QApplication::activePopupWidget()) {
        popup->hide();
        QTimer::singleShot(moment, this, [this] { finish(); });
    } else if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
        // Not by its close box, which a question without a way out ignores.
        dialog->done(QDialog::Rejected);
        QTimer::singleShot(moment, this, [this] { finish(); });
    }
}

QWidget* Monkey::target() const {
    if (QWidget* popup = QApplication::activePopupWidget())
        return popup;
    if (QWidget* modal = QApplication::activeModalWidget())
        return modal;
    return &mainWindow_;
}

void Monkey::input() {
    QWidget& window = *target();
    auto* menu = qobject_cast<QMenu*>(&window);
    const unsigned choice = below(100);
    if (menu && choice < 70)
        clickInMenu(*menu);
    else if (window.objectName() == "frmAbout" && choice < 20)
        chooseLanguage(window);
    else if (choice < 55)
        clickSomewhere(window);
    else if (choice < 78)
        pressKey(window);
    else if (choice < 88)
        paste(window);
    else if (choice < 92 && !menu && &window != &mainWindow_ && window.isModal()) {
        say("close " + window.objectName());
        window.close();
    } else if (choice < 95) {
        say("behind the back");
        behindTheBack_(static_cast<unsigned>(random_()));
    } else if (auto* bar = mainWindow_.findChild<QMenuBar*>(); bar && &window == &mainWindow_) {
        const QList<QAction*> titles = bar->actions();
        QAction* title = titles[static_cast<int>(below(static_cast<unsigned>(titles.size())))];
        say("menu " + title->text());
        QTest::mouseClick(bar, Qt::LeftButton, {}, bar->actionGeometry(title).center());
    }
}

void Monkey::chooseLanguage(QWidget& about) {
    const QList<QAction*> entries = about.findChild<QMenu*>("mnuSelectLanguage")->actions();
    QAction* entry = entries[static_cast<int>(below(static_cast<unsigned>(entries.size())))];
    say("language " + entry->text());
    if (entry->isEnabled() && !entry->isSeparator())
        entry->trigger();
}

void Monkey::clickInMenu(QMenu& menu) {
    QList<QAction*> entries;
    for (QAction* entry : menu.actions())
        if (entry->isVisible() && entry->isEnabled() && !entry->isSeparator() && !isForbidden(*entry))
            entries.append(entry);
    if (entries.isEmpty()) {
        QTest::keyClick(&menu, Qt::Key_Escape);
        return;
    }
    QAction* entry = entries[static_cast<int>(below(static_cast<unsigned>(entries.size())))];
    say("entry " + entry->objectName() + " " + entry->text());
    QTest::mouseClick(&menu, Qt::LeftButton, {}, menu.actionGeometry(entry).center());
}

void Monkey::clickSomewhere(QWidget& window) {
    QList<QWidget*> controls;
    for (QWidget* control : window.findChildren<QWidget*>())
        if (control->isVisible() && control->isEnabled() && control->window() == &window &&
            !control->visibleRegion().isEmpty() && !isForbidden(*control) &&
            control->metaObject() != &QWidget::staticMetaObject && !qobject_cast<QMenuBar*>(control))
            controls.append(control);
    if (controls.isEmpty())
        return;
    QWidget* control = controls[static_cast<int>(below(static_cast<unsigned>(controls.size())))];
    QRect area = control->visibleRegion().boundingRect();
    // Trees and lists lead everywhere, so they are clicked more often than their share, and on what is in
    // them.
    QList<QAbstractItemView*> views;
    for (QWidget* each : controls)
        if (auto* view = qobject_cast<QAbstractItemView*>(each))
            views.append(view);
    if (!views.isEmpty() && below(5) < 2) {
        QAbstractItemView* view = views[static_cast<int>(below(static_cast<unsigned>(views.size())))];
        control = view->viewport();
        area = control->rect();
        QModelIndexList rows;
        for (QModelIndex row = view->indexAt(QPoint(30, 3)); row.isValid() && rows.size() < 100;
             row = view->indexAt(QPoint(30, view->visualRect(row).bottom() + 3)))
            rows.append(row);
        if (!rows.isEmpty() && below(10) > 0)
            area = view->visualRect(rows[static_cast<int>(below(static_cast<unsigned>(rows.size())))])
                       .intersected(control->rect());
    }
    if (area.isEmpty())
        return;
    const QPoint place(area.x() + static_cast<int>(below(static_cast<unsigned>(area.width()))),
                       area.y() + static_cast<int>(below(static_cast<unsigned>(area.height()))));
    const unsigned kind = below(100);
    const Qt::MouseButton button = kind < 80   ? Qt::LeftButton
                                   : kind < 90 ? Qt::RightButton
                                   : kind < 95 ? Qt::MiddleButton
                                               : Qt::BackButton;
    say(QString("click %1 on %2 (%3) at %4,%5")
            .arg(static_cast<int>(button))
            .arg(control->objectName(), control->metaObject()->className())
            .arg(place.x())
            .arg(place.y()));
    if (below(10) == 0)
        QTest::mouseDClick(control, button, {}, place);
    else
        QTest::mouseClick(control, button, {}, place);
}

void Monkey::pressKey(QWidget& window) {
    constexpr std::array keys{Qt::Key_Tab,  Qt::Key_Backtab, Qt::Key_Return, Qt::Key_Escape,   Qt::Key_Space,
                              Qt::Key_Up,   Qt::Key_Down,    Qt::Key_Left,   Qt::Key_Right,    Qt::Key_Delete,
                              Qt::Key_Home, Qt::Key_End,     Qt::Key_Menu,   Qt::Key_Backspace};
    QWidget* focus = QApplication::focusWidget();
    QWidget& receiver = focus && focus->window() == &window ? *focus : window;
    if (below(2) == 0) {
        const Qt::Key key = keys[below(keys.size())];
        say("key " + QString::number(key, 16));
        QTest::keyClick(&receiver, key);
    } else {
        const char letter = static_cast<char>(' ' + static_cast<char>(below(95)));
        say(QString("letter ") + letter);
        QTest::keyClick(&receiver, letter, below(8) == 0 ? Qt::ControlModifier : Qt::NoModifier);
    }
}

void Monkey::paste(QWidget& window) {
    QWidget* focus = QApplication::focusWidget();
    if (!focus || focus->window() != &window)
        return;
    const unsigned which = below(static_cast<unsigned>(oddTexts().size()));
    say("paste " + QString::number(which));
    QApplication::clipboard()->setText(oddTexts()[which]);
    QTest::keyClick(focus, Qt::Key_V, Qt::ControlModifier);
}

}  // namespace monkey
