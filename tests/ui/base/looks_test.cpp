// What a person sees of the shared controls: on dark grounds, in narrow windows, in long languages.

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QDialog>
#include <QHeaderView>
#include <QRadioButton>
#include <QScrollBar>
#include <QStyle>
#include <QStyleOption>
#include <QtTest/QTest>

#include "support/windowScript.h"
#include "ui/base/messageBoxes.h"
#include "ui/widgets/keyedGrid.h"
#include "ui/widgets/tabRows.h"

namespace {

// The lightest point that the control's sign has, 0 to 255.
template <class Button>
int lightestOf(const QPalette& palette) {
    Button button;
    button.setPalette(palette);
    button.resize(button.sizeHint());
    const QImage sign = button.grab().toImage();
    int lightest = 0;
    for (int y = 0; y < sign.height(); ++y)
        for (int x = 0; x < sign.width(); ++x)
            lightest = std::max(lightest, sign.pixelColor(x, y).lightness());
    return lightest;
}

TEST(Looks, SignsShowOnADarkGroundAndOnAChosenRow) {
    const QPalette dark(QColor(45, 47, 51), QColor(45, 47, 51));
    constexpr int plainlyLighter = 60;
    EXPECT_GT(lightestOf<QCheckBox>(dark), dark.color(QPalette::Window).lightness() + plainlyLighter);
    EXPECT_GT(lightestOf<QRadioButton>(dark), dark.color(QPalette::Window).lightness() + plainlyLighter);

    QPixmap icon(16, 16);
    icon.fill(QColor(118, 123, 133));
    const QStyleOption option;
    EXPECT_EQ(QApplication::style()->generatedIconPixmap(QIcon::Selected, icon, &option).toImage(),
              icon.toImage());
}

TEST(Looks, ABoxBelongsToTheDialogThatHasTheInput) {
    support::WindowScript script([](const QString& message) { ADD_FAILURE() << qPrintable(message); });
    ui::MessageBoxes boxes;
    QDialog dialog;
    dialog.setObjectName("dialog");
    script.expect("dialog", [](QWidget&) {});
    dialog.open();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&dialog));
    // As between two boxes, before the system has told who is active.
    QApplication::setActiveWindow(nullptr);
    const QWidget* owner = nullptr;
    script.expectBox("second", "OK", [&](QWidget& box) { owner = box.parentWidget(); });
    QTest::qWait(50);
    boxes.messageBox({"text", "second", platform::BoxIcon::information});
    EXPECT_EQ(owner, &dialog);
}

TEST(Looks, LongHeadingsFoldBeforeTheirColumnsAreCutOff) {
    ui::KeyedGrid grid;
    grid.setColumns({{"name", "Name"}, {"sent", "Last Notification Sent"}, {"count", "Devices"}});
    grid.addRow({{"a name that wants some room", {}}, {"", {}}, {"2", 2}});
    const auto showAt = [&](int width) {
        grid.resize(width, 200);
        grid.show();
        grid.fitColumns();
        QApplication::processEvents();
    };
    showAt(700);
    const int oneLine = grid.horizontalHeader()->height();
    EXPECT_GE(grid.columnWidth(1),
              grid.horizontalHeader()->fontMetrics().horizontalAdvance("Last Notification Sent"));
    showAt(270);
    EXPECT_GT(grid.horizontalHeader()->height(), oneLine);
    EXPECT_GE(grid.columnWidth(1), grid.horizontalHeader()->fontMetrics().horizontalAdvance("Notification"));
    EXPECT_EQ(grid.horizontalScrollBar()->maximum(), 0);

    // A column that takes the rest gives way last, and the text at the right edge stays within the grid.
    constexpr int overrun = 13;
    grid.stretchColumn("name", overrun);
    QApplication::processEvents();
    EXPECT_EQ(grid.horizontalHeader()->length(), grid.width() + overrun);
    EXPECT_GE(grid.columnWidth(2),
              grid.horizontalHeader()->fontMetrics().horizontalAdvance("Devices") + 2 * overrun);
}

TEST(Looks, ALongTabTakesItsWidthFromTheOthers) {
    ui::TabRows tabs(4);
    for (const char* caption : {"Messagerie vocale", "E-mail", "SMTP", "Trap SNMP"})
        tabs.setTabText(tabs.addTab(new QWidget), caption);
    tabs.resize(tabs.minimumSizeHint().width(), 100);
    tabs.show();
    QApplication::processEvents();
    for (const auto* tab : tabs.findChildren<QAbstractButton*>())
        EXPECT_GE(tab->width(), tab->sizeHint().width()) << qPrintable(tab->text());
}

}  // namespace
