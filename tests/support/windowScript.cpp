#include "support/windowScript.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMenu>
#include <QtTest/QTest>

namespace support {

namespace {
constexpr int lookEvery = 10;       // ms
constexpr int patienceLimit = 500;  // looks, so five seconds
}  // namespace

WindowScript::WindowScript(Report report) : report_(std::move(report)) {
    connect(&timer_, &QTimer::timeout, this, &WindowScript::look);
    timer_.start(lookEvery);
}

WindowScript::~WindowScript() {
    for (const Expected& missing : expected_)
        report_("a window that was expected never came: " + missing.name);
}

void WindowScript::expect(const QString& nameOrTitle, Action action) {
    expected_.push_back({nameOrTitle, false, std::move(action)});
}

void WindowScript::expectBox(const QString& title, const QString& button, Action before) {
    expect(title, [this, button, before](QWidget& box) {
        if (before)
            before(box);
        for (QAbstractButton* candidate : box.findChildren<QAbstractButton*>())
            if (candidate->text().remove('&') == button)
                return QTest::mouseClick(candidate, Qt::LeftButton);
        report_("the box '" + box.windowTitle() + "' has no button " + button);
        box.close();
    });
}

void WindowScript::expectMenu(const QString& entryName, Action before) {
    const auto choose = [this, entryName, before](QWidget& window) {
        if (before)
            before(window);
        auto& menu = dynamic_cast<QMenu&>(window);
        for (QAction* entry : menu.actions())
            if (entry->objectName() == entryName && entry->isVisible())
                return QTest::mouseClick(&menu, Qt::LeftButton, {}, menu.actionGeometry(entry).center());
        report_("the menu does not show " + entryName);
        menu.close();
    };
    expected_.push_back({"menu with " + entryName, true, choose});
}

void WindowScript::look() {
    QWidget* popup = QApplication::activePopupWidget();
    const bool isPopup = popup && !expected_.empty() && expected_.front().popup;
    QWidget* window = isPopup ? popup : QApplication::activeModalWidget();
    forgetClosed();
    if (!window)
        return;
    // Also one that lay under another window which has closed by now: its action still runs.
    if (served_.contains(window)) {
        if (++patience_ == patienceLimit) {
            report_("a window stayed open: " + window->windowTitle());
            window->close();
        }
        return;
    }
    patience_ = 0;
    served_.append(window);
    // In a timer of its own: an action may open further windows and return only after they are closed.
    QTimer::singleShot(0, this, [this, guarded = QPointer(window), isPopup] {
        if (guarded)
            run(guarded, isPopup);
    });
}

void WindowScript::run(QWidget* window, bool popup) {
    const QString title = window->windowTitle();
    const bool matches = !expected_.empty() && (popup || expected_.front().name == title ||
                                                expected_.front().name == window->objectName());
    if (!matches) {
        report_("unexpected window '" + title + "' (" + window->objectName() + ")" +
                (expected_.empty() ? QString() : ", expected " + expected_.front().name));
        window->close();
        return;
    }
    const Action action = expected_.front().action;
    expected_.pop_front();
    action(*window);
    forgetClosed();
    patience_ = 0;
}

// A window that closed and comes again, as a shared dialog does, is to be served anew.
void WindowScript::forgetClosed() {
    served_.removeIf([](const QPointer<QWidget>& window) { return !window || !window->isVisible(); });
}

}  // namespace support
