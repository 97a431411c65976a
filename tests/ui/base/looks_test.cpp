// What a person sees of the shared controls: on dark grounds, in narrow windows, in long languages.

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QDialog>
#include <QHeaderView>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QStyle>
#include <QStyleOption>
#include <QTextBlock>
#include <QTextLayout>
#include <QtTest/QTest>

#include "support/windowScript.h"
#include "ui/base/appearance.h"
#include "ui/base/contrast.h"
#include "ui/base/messageBoxes.h"
#include "ui/base/toolkitWords.h"
#include "ui/widgets/keyedGrid.h"
#include "ui/widgets/keyedTree.h"
#include "ui/widgets/tabRows.h"
#include "ui/widgets/variableTextBox.h"

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

// A palette as desktops have them, whose every colour follows from the ground.
QPalette desktop(int lightness) {
    QPalette palette(QColor(lightness, lightness, lightness), QColor(lightness, lightness, lightness));
    if (lightness > 100 && lightness < 160)
        palette.setColor(QPalette::Base, QColor(lightness, lightness, lightness));
    return palette;
}

TEST(Looks, EveryTextCanBeReadOnItsGround) {
    using Roles = std::pair<QPalette::ColorRole, QPalette::ColorRole>;
    constexpr Roles texts[] = {{QPalette::WindowText, QPalette::Window},
                               {QPalette::Text, QPalette::Base},
                               {QPalette::Text, QPalette::AlternateBase},
                               {QPalette::Text, QPalette::Window},  // of an entry of a menu
                               {QPalette::PlaceholderText, QPalette::Base},
                               {QPalette::ButtonText, QPalette::Button},
                               {QPalette::HighlightedText, QPalette::Highlight},
                               {QPalette::Link, QPalette::Base},
                               {QPalette::LinkVisited, QPalette::Base},
                               {QPalette::ToolTipText, QPalette::ToolTipBase}};
    std::vector<QPalette> palettes{QApplication::style()->standardPalette(), QApplication::palette()};
    for (int lightness = 0; lightness <= 255; lightness += 15)
        palettes.push_back(desktop(lightness));
    QPalette blind(Qt::darkGray, Qt::darkGray);
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled})
        for (const auto& [text, ground] : texts)
            blind.setColor(group, text, blind.color(group, ground));
    palettes.push_back(blind);
    for (const QPalette& asked : palettes) {
        const QPalette palette = ui::readablePalette(asked);
        for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled})
            for (const auto& [text, ground] : texts)
                EXPECT_GE(ui::contrast(palette.color(group, text), palette.color(group, ground)), 4.5)
                    << "group " << group << ", role " << text << " on " << ground << " of "
                    << qPrintable(asked.color(QPalette::Window).name());
        // Insertion variables are told from the text by their colour, on any ground.
        ui::VariableTextBox box(ui::VariableTextBox::Lines::many);
        box.setPalette(palette);
        box.setStoredText("<Type>");
        box.colorTokens({"<Type>"});
        const QColor token =
            box.document()->firstBlock().layout()->formats().at(0).format.foreground().color();
        EXPECT_GE(ui::contrast(token, palette.color(QPalette::Base)), 4.5);
    }
    // The application's own, as the windows have it.
    EXPECT_EQ(QApplication::palette().color(QPalette::Disabled, QPalette::ButtonText),
              ui::readablePalette(QApplication::palette()).color(QPalette::Disabled, QPalette::ButtonText));
}

// What is drawn and not only what the palette says: the style makes its own grounds for buttons.
TEST(Looks, TheCaptionOfAButtonCanBeReadOnWhatTheStyleDraws) {
    for (int lightness = 0; lightness <= 255; lightness += 15)
        for (const bool enabled : {true, false}) {
            QPushButton button("I");
            button.setPalette(ui::readablePalette(desktop(lightness)));
            button.setEnabled(enabled);
            button.setFixedSize(120, 32);
            const QImage drawn = button.grab().toImage();
            const auto group = enabled ? QPalette::Active : QPalette::Disabled;
            const QColor text = button.palette().color(group, QPalette::ButtonText);
            for (const int y : {10, 16, 22})  // where the caption's letters stand
                EXPECT_GE(ui::contrast(text, drawn.pixelColor(30, y)), 4.5) << lightness << " at " << y;
        }
}

TEST(Looks, OnlyThePartWithTheFocusLooksAsIfItHadIt) {
    QDialog window;
    ui::KeyedTree tree(&window);
    QPushButton other("other", &window);
    tree.resize(200, 100);
    tree.addNode({.parent = {}, .key = "a", .text = "A", .icon = {}, .info = {}});
    tree.select("a");
    window.resize(300, 200);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    const auto ground = [&] {
        QApplication::processEvents();
        const QRect row = tree.visualItemRect(tree.topLevelItem(0));
        return tree.viewport()->grab().toImage().pixelColor(row.right() - 5, row.center().y());
    };
    const auto shown = [&](QPalette::ColorGroup group, QPalette::ColorRole role) {
        return tree.palette().color(group, role);
    };
    constexpr double same = 1.05;  // the style shades a row a little
    tree.setFocus();
    EXPECT_LT(ui::contrast(ground(), shown(QPalette::Active, QPalette::Highlight)), same);
    other.setFocus();
    EXPECT_LT(ui::contrast(ground(), shown(QPalette::Inactive, QPalette::Highlight)), same);
    EXPECT_GT(ui::contrast(ground(), shown(QPalette::Active, QPalette::Base)), same) << "it is still chosen";
}

TEST(Looks, AProgramWithoutStringLibrariesHasTheButtonsOfItsLanguage) {
    const auto yes = [] { return QCoreApplication::translate("QPlatformTheme", "&Yes"); };
    for (const auto& [language, word] : {std::pair(1031L, "&Ja"), {1036L, "&Oui"}, {1033L, "&Yes"}}) {
        ui::translateToolkit(language);
        EXPECT_EQ(yes(), word) << language;
    }
    ui::translateToolkit();
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

// Whether anything is drawn at the right edge of the tree's first row above the line on which dots stand.
bool isTextAtTheEdge(ui::KeyedTree& tree) {
    constexpr int edge = 9;
    const QImage drawn = tree.viewport()->grab().toImage();
    const QRect row = tree.visualItemRect(tree.topLevelItem(0));
    for (int x = drawn.width() - edge; x < drawn.width() - 1; ++x)
        for (int y = row.top() + 3; y < row.center().y(); ++y)
            if (ui::contrast(drawn.pixelColor(x, y), tree.palette().color(QPalette::Base)) > 2)
                return true;
    return false;
}

TEST(Looks, ALongNameEndsInAnEllipsisAndScrollsIntoSight) {
    ui::KeyedTree tree;
    tree.addNode({.parent = {}, .key = "a", .text = std::string(40, 'H'), .icon = {}, .info = {}});
    tree.resize(200, 100);
    tree.show();
    QApplication::processEvents();
    EXPECT_FALSE(isTextAtTheEdge(tree)) << "a text that goes on is cut through";
    QScrollBar& bar = *tree.horizontalScrollBar();
    bar.setValue(bar.maximum());
    EXPECT_TRUE(isTextAtTheEdge(tree)) << "its end is out of reach";
}

TEST(Looks, WhatTellsTheRowsApartIsNeverTheNarrowestColumn) {
    ui::KeyedGrid grid;
    grid.setColumns({{"name", "Name"}, {"a", "Voicemail"}, {"b", "SMTP-Devices"}, {"c", "Failover"}});
    grid.addRow({{"Night desk", {}}, {"1", 1}, {"2", 2}, {"3", 3}});
    for (const int width : {600, 300, 200, 120}) {
        grid.resize(width, 200);
        grid.show();
        grid.fitColumns();
        grid.stretchColumn("name", 13);
        const int narrowest = std::min({grid.columnWidth(1), grid.columnWidth(2), grid.columnWidth(3)});
        EXPECT_GT(grid.columnWidth(0), narrowest) << width;
    }
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
