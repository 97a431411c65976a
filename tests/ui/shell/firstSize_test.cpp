// What a person sees of the main window before anything was made larger.

#include <gtest/gtest.h>

#include <QApplication>
#include <QScrollArea>
#include <QScrollBar>
#include <QTextDocument>

#include "support/mainWindowFixture.h"
#include "ui/widgets/variableTextBox.h"

namespace {

using uiTest::MainWindow;

TEST_F(MainWindow, TheDetailsPanesShowAllOfThemselvesAtFirst) {
    const long key = add("Backup", "17", "nightly");
    run("INSERT INTO Recipients VALUES(1, 'Ana', -1); INSERT INTO Device VALUES(1, 4, 'a@b', -1);"
        "INSERT INTO DeviceRecipient VALUES(1, 1); INSERT INTO AddressDetails VALUES('a@b', 'a@b', 4, 1);"
        "INSERT INTO EventDevice VALUES(" +
        std::to_string(key) + ", 1, -1);");
    open();
    const auto leftOf = [&](const char* name) {
        return find<QWidget>(name)->mapTo(window.get(), QPoint()).x();
    };
    const auto rightOf = [&](const char* name) { return leftOf(name) + find<QWidget>(name)->width(); };
    const auto scrolls = [&](const char* area) {
        QApplication::processEvents();
        return find<QScrollArea>(area)->verticalScrollBar()->maximum() > 0;
    };
    clickNode("RecipientKey:1");
    EXPECT_FALSE(scrolls("VSViewPort2"));
    const int left = leftOf("frameDevices");
    const int right = rightOf("cmdRecipientApply");
    EXPECT_EQ(rightOf("frameDevices"), right);
    clickNode("EventKey-" + std::to_string(key));
    EXPECT_FALSE(scrolls("VSViewPort1"));
    EXPECT_EQ(leftOf("frameContent"), left);
    for (const char* name : {"frameContent", "frameRecipients", "txtEventTitle", "cmdEventApply"})
        EXPECT_EQ(rightOf(name), right) << name;

    auto* body = find<ui::VariableTextBox>("rtbEmailBody");
    EXPECT_GE(body->viewport()->height() - 2 * static_cast<int>(body->document()->documentMargin()),
              6 * body->fontMetrics().lineSpacing());
    auto* recipients = find<ui::KeyedTree>("tvRecipients");
    for (const char* node : {"RecipientKey:1", "DeviceKey:1"})
        EXPECT_TRUE(recipients->viewport()->rect().contains(uiTest::placeOf(*recipients, node))) << node;
    // Heights give way before anything scrolls.
    window->resize(window->width(), window->height() - 60);
    EXPECT_FALSE(scrolls("VSViewPort1"));
}

}  // namespace
