#include <gtest/gtest.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QSignalSpy>
#include <QToolTip>
#include <QtTest/QTest>

#include "platform/failure.h"
#include "ui/shell/cTooltip.h"
#include "ui/widgets/entryList.h"
#include "ui/widgets/keyedGrid.h"
#include "ui/widgets/keyedTree.h"
#include "ui/widgets/numberBox.h"
#include "ui/widgets/variableTextBox.h"

namespace {

using ui::KeyedGrid;
using ui::KeyedTree;
using ui::NumberBox;
using ui::VariableTextBox;

KeyedTree::NewNode node(const std::string& parent, const std::string& key, const std::string& text,
                        long type = 0) {
    KeyedTree::NewNode made;
    made.parent = parent;
    made.key = key;
    made.text = text;
    made.info.nodeType = type;
    return made;
}

long failureNumber(const std::function<void()>& action) {
    try {
        action();
    } catch (const platform::Failure& failure) {
        return failure.number();
    }
    return 0;
}

QPoint placeOf(KeyedTree& tree, const char* text) {
    return tree.visualItemRect(tree.findItems(text, Qt::MatchExactly | Qt::MatchRecursive).at(0)).center();
}

TEST(KeyedTree, KnowsNodesByKeyWithoutCaseAndByOrder) {
    KeyedTree tree;
    tree.addNode(node("", "keyA", "A", 3));
    tree.addNode(node("KEYA", "Child-1", "one", 4));
    EXPECT_TRUE(tree.contains("child-1"));
    EXPECT_EQ(tree.info("CHILD-1").nodeType, 4);
    EXPECT_EQ(tree.keyAt(2), "Child-1");
    EXPECT_EQ(failureNumber([&] { tree.addNode(node("", "KEYa", "again")); }), platform::keyNotUnique);
    for (const char* parent : {"nobody", "x"})
        EXPECT_EQ(failureNumber([&] { tree.addNode(node(parent, "x", "x")); }), platform::elementNotFound);
    EXPECT_FALSE(tree.contains("x"));
    EXPECT_EQ(failureNumber([&] { tree.keyAt(3); }), platform::elementNotFound);
    EXPECT_EQ(failureNumber([&] { tree.keyAt(0); }), platform::elementNotFound);
    EXPECT_EQ(tree.count(), 2);
    // Letters beyond the plain ones have cases too, and some become plain ones.
    tree.addNode(node("", "GR\u00dcN \u212a", "umlaut"));
    EXPECT_EQ(tree.nodeText("gr\u00fcn k"), "umlaut");
    EXPECT_EQ(failureNumber([&] { tree.addNode(node("", "Gr\u00fcN K", "again")); }), platform::keyNotUnique);
    tree.clearNodes();
    EXPECT_FALSE(tree.contains("keyA"));
    EXPECT_EQ(tree.count(), 0);
    EXPECT_EQ(tree.selectedKey(), "");
}

TEST(KeyedTree, TellsOfChoicesByMouseAndKeyboardAndNotOfItsOwnSelection) {
    KeyedTree tree;
    tree.addNode(node("", "a", "A"));
    tree.addNode(node("a", "a1", "A1"));
    tree.addNode(node("", "b", "B"));
    tree.show();
    std::vector<std::string> chosen;
    QObject::connect(&tree, &KeyedTree::nodeClicked, [&](const std::string& key) { chosen.push_back(key); });
    tree.select("b");
    EXPECT_TRUE(chosen.empty());
    QTest::mouseClick(tree.viewport(), Qt::LeftButton, {}, placeOf(tree, "B"));
    QTest::keyClick(&tree, Qt::Key_Up);
    EXPECT_EQ(chosen, (std::vector<std::string>{"b", "a"}));
    // The expander opens the node and chooses nothing.
    const QRect item = tree.visualItemRect(tree.topLevelItem(0));
    QTest::mouseClick(tree.viewport(), Qt::LeftButton, {}, QPoint(item.left() - 8, item.center().y()));
    EXPECT_TRUE(tree.topLevelItem(0)->isExpanded());
    EXPECT_EQ(chosen.size(), 2u);
    // Whoever presses on one node and lets go on another has chosen the one that is then selected.
    tree.select("b");
    QTest::mousePress(tree.viewport(), Qt::LeftButton, {}, placeOf(tree, "A"));
    QTest::mouseMove(tree.viewport(), placeOf(tree, "B"));
    QTest::mouseRelease(tree.viewport(), Qt::LeftButton, {}, placeOf(tree, "B"));
    ASSERT_EQ(chosen.size(), 3u);
    EXPECT_EQ(chosen.back(), tree.selectedKey());
    // A right press asks for the popup, also on an empty spot.
    QSignalSpy popups(&tree, &KeyedTree::rightPressed);
    QTest::mouseClick(tree.viewport(), Qt::RightButton, {}, placeOf(tree, "B"));
    QTest::mouseClick(tree.viewport(), Qt::RightButton, {}, QPoint(10, tree.viewport()->height() - 2));
    EXPECT_EQ(popups.count(), 2);
    EXPECT_EQ(tree.hitTest(QPoint(10, tree.viewport()->height() - 2)), "");
}

TEST(KeyedTree, SurvivesARebuildInsideItsOwnClick) {
    KeyedTree tree;
    const auto build = [&] {
        tree.clearNodes();
        tree.addNode(node("", "a", "A"));
        tree.addNode(node("a", "a1", "A1"));
        tree.ensureVisible("a1");
    };
    build();
    tree.show();
    int rebuilds = 0;
    QObject::connect(&tree, &KeyedTree::nodeClicked, [&](const std::string& key) {
        build();
        tree.select(key);
        ++rebuilds;
    });
    for (int i = 0; i < 3; ++i) {
        QTest::mouseClick(tree.viewport(), Qt::LeftButton, {}, placeOf(tree, "A1"));
        QTest::keyClick(&tree, Qt::Key_Up);
    }
    EXPECT_EQ(rebuilds, 6);
}

TEST(KeyedGrid, AddressesCellsByColumnKeyAndSortsByValue) {
    KeyedGrid grid;
    grid.setColumns({{"Flag", "Active", false, true}, {"Key", "", true}, {"Id", "ID"}});
    grid.addRow({{"", true}, {"1", 1LL}, {"All", -1LL}});
    grid.addRow({{"", false}, {"2", 2LL}, {"1000", 1000LL}});
    grid.addRow({{"", false}, {"3", 3LL}, {"9\nlines", 9LL}});
    grid.resize(600, 300);
    grid.show();
    EXPECT_EQ(grid.cellText(1, "ID"), "All");
    EXPECT_EQ(grid.cellText(3, "id"), "9 lines");
    EXPECT_EQ(grid.currentGridRow(), 0);
    EXPECT_EQ(failureNumber([&] { grid.cellValue(1, "Nothing"); }), platform::itemNotFound);
    EXPECT_EQ(failureNumber([&] { grid.cellValue(0, "Id"); }), platform::invalidProcedureCall);
    QSignalSpy clicks(&grid, &KeyedGrid::clicked);
    QSignalSpy opens(&grid, &KeyedGrid::doubleClicked);
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, grid.cellRectangle(2, "Flag").center());
    EXPECT_EQ(grid.currentGridRow(), 2);
    EXPECT_EQ(grid.currentColumnKey(), "Flag");
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, QPoint(20, grid.viewport()->height() - 3));
    EXPECT_EQ(clicks.count(), 1) << "an empty spot is no click on the current cell";
    QTest::keyClick(&grid, Qt::Key_Space);
    QTest::keyClick(&grid, Qt::Key_Return);
    EXPECT_EQ(clicks.count(), 2);
    EXPECT_EQ(opens.count(), 1);
    // Numbers sort as numbers; the second click turns the order round.
    QHeaderView& header = *grid.horizontalHeader();
    const auto clickHeader = [&] {
        QTest::mouseClick(header.viewport(), Qt::LeftButton, {},
                          QPoint(header.sectionViewportPosition(2) + header.sectionSize(2) / 2, 5));
    };
    clickHeader();
    EXPECT_EQ(grid.cellText(2, "Id"), "9 lines");
    clickHeader();
    EXPECT_EQ(grid.cellText(1, "Key"), "2");
    clickHeader();
    EXPECT_EQ(grid.cellText(2, "Id"), "9 lines");
}

TEST(KeyedGrid, AFillLeavesExactlyTheRowsThatWereAdded) {
    KeyedGrid grid;
    const QIcon picture(":/icons/complete.svg");
    grid.setColumns(
        {{"Flag", "Active", false, true}, {"Device", "Mail", false, false, true, false, picture}});
    grid.addRow({{"", true}, {"", true}});
    {
        const KeyedGrid::Fill fill(grid);
        for (int i = 0; i < 200; ++i)
            grid.addRow({{"", i % 2 == 0}, {"", false}});
    }
    EXPECT_EQ(grid.gridRowCount(), 201);
    EXPECT_EQ(grid.item(200, 0)->checkState(), Qt::Unchecked);
    EXPECT_EQ(grid.item(199, 0)->checkState(), Qt::Checked);
    EXPECT_EQ(grid.item(0, 1)->data(Qt::AccessibleTextRole), "Mail");
    EXPECT_TRUE(grid.item(200, 1)->icon().isNull());
    grid.setHeaders({{"Flag", "An"}, {"Device", "Post"}});
    EXPECT_EQ(grid.item(0, 1)->data(Qt::AccessibleTextRole), "Post") << "in the present language";
    { const KeyedGrid::Fill nothing(grid); }
    EXPECT_EQ(grid.gridRowCount(), 201);
}

TEST(EntryList, AnAddressThatIsCutIsReadByTheKeyForTips) {
    ui::EntryList list;
    list.addEntry("1", "short@b");
    list.addEntry("2", std::string(200, 'w') + "@b");
    list.resize(150, 100);
    list.show();
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, list.visualItemRect(list.item(0)).center());
    QTest::keyClick(&list, Qt::Key_F1, Qt::ControlModifier);
    EXPECT_FALSE(QToolTip::isVisible()) << "what is not cut has no tip";
    QTest::keyClick(&list, Qt::Key_Down);
    QTest::keyClick(&list, Qt::Key_F1, Qt::ControlModifier);
    EXPECT_TRUE(QToolTip::isVisible());
    EXPECT_EQ(QToolTip::text(), list.item(1)->text());
    QToolTip::hideText();
}

TEST(NumberBox, TakesWholeNumbersWithinItsLimitsOnly) {
    NumberBox box(-999, 999);
    QTest::keyClicks(&box, "1a2.3 4");
    EXPECT_EQ(box.text(), "123") << "a fourth digit would leave the limits";
    EXPECT_TRUE(box.hasNumber());
    box.clear();
    QTest::keyClicks(&box, "-");
    EXPECT_FALSE(box.hasNumber());
    QTest::keyClicks(&box, "5-");
    EXPECT_EQ(box.text(), "-5");
}

TEST(VariableTextBox, KeepsLineBreaksAsStoredAndASubjectOnOneLine) {
    VariableTextBox body(VariableTextBox::Lines::many);
    const std::string stored = "Type: <Type>\r\n\r\n  \xF0\x9F\x94\x94 'quoted'\r\n";
    body.setStoredText(stored);
    EXPECT_EQ(body.storedText(), stored);
    VariableTextBox subject(VariableTextBox::Lines::one);
    QTest::keyClicks(&subject, "one");
    QTest::keyClick(&subject, Qt::Key_Return);
    QGuiApplication::clipboard()->setText("two\r\nthree\nfour");
    subject.paste();
    EXPECT_EQ(subject.storedText(), "onetwo three four");
}

TEST(Tooltip, KeepsToolsDelaysAndItsOddReads) {
    QWidget owner;
    KeyedTree tree(&owner);
    QWidget other(&owner);
    cTooltip tip;
    EXPECT_FALSE(tip.AddTool(&tree, "early")) << "without a window nothing can be added";
    EXPECT_EQ(tip.MaxTipWidth(), 0);
    EXPECT_TRUE(tip.Create(&owner));
    const WId window = tip.hWnd();
    EXPECT_TRUE(tip.Create(&other));
    EXPECT_EQ(tip.hWnd(), window) << "the first window is kept";
    EXPECT_TRUE(tip.AddTool(&tree, ""));
    EXPECT_FALSE(tip.AddTool(&tree, "twice"));
    EXPECT_EQ(tip.ToolText(&tree), "Tool1");
    tip.setToolText(&tree, std::string(5000, 'x'));
    EXPECT_EQ(tip.ToolText(&tree).size(), 5000u);
    EXPECT_EQ(tip.ToolText(&other), "");
    tip.setMaxTipWidth(0);
    EXPECT_EQ(tip.MaxTipWidth(), 65535);
    tip.setMaxTipWidth(400);
    EXPECT_EQ(tip.MaxTipWidth(), 400);
    tip.setDelayTime(4 | cTooltip::delayInitial, 20);
    EXPECT_EQ(tip.DelayTime(cTooltip::delayInitial), 20);
    tip.setForeColor(0x0000FF);
    tip.setBackColor(0x112233);
    EXPECT_EQ(tip.BackColor(), 0x112233);
    EXPECT_EQ(tip.ForeColor(), 0);
    tip.setMargin(2, 9);
    EXPECT_EQ(tip.Margin(2), 9);
    EXPECT_TRUE(tip.RemoveTool(&tree));
    EXPECT_FALSE(tip.RemoveTool(&tree));
    EXPECT_EQ(tip.ToolCount(), 0);
}

TEST(Tooltip, ShowsItsTextWhereThePointerRests) {
    QWidget owner;
    QWidget area(&owner);
    area.resize(100, 100);
    owner.show();
    cTooltip tip;
    tip.Create(&owner);
    tip.setMaxTipWidth(400);
    tip.AddTool(&area, "rest here");
    tip.setDelayTime(cTooltip::delayInitial, 10);
    QTest::mouseMove(&area, QPoint(20, 20));
    QEnterEvent enter(QPointF(20, 20), QPointF(20, 20), QPointF(20, 20));
    QApplication::sendEvent(&area, &enter);
    EXPECT_TRUE(QTest::qWaitFor([&] { return tip.isTipVisible(); }, 2000));
    tip.setToolText(&area, std::string(300, 'w') + " " + std::string(300, 'w'));
    EXPECT_FALSE(tip.isTipVisible()) << "a new text waits for the pointer to rest again";
    EXPECT_TRUE(QTest::qWaitFor([&] { return tip.isTipVisible(); }, 2000));
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&area, &leave);
    EXPECT_FALSE(tip.isTipVisible());
}

}  // namespace
