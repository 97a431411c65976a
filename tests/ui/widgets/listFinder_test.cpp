// The find bar over the console's tree and lists.
#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QStatusBar>
#include <ctime>

#include "core/state.h"
#include "support/mainWindowFixture.h"
#include "ui/dialogs/dlgEditRecipients.h"
#include "ui/widgets/findBar.h"

namespace {

// What this thread has worked, in microseconds: other programs on the machine do not count.
long worked() {
    timespec time{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return time.tv_sec * 1000000 + time.tv_nsec / 1000;
}

class FindInLists : public uiTest::MainWindow {
  protected:
    void addRecipients(int count) {
        run("WITH RECURSIVE series(value) AS (SELECT 1 UNION ALL SELECT value + 1 FROM series WHERE value "
            "< " +
            std::to_string(count) +
            ") INSERT INTO Recipients SELECT value, 'Person ' || value || ' of the night', -1 FROM series;"
            "INSERT INTO Device SELECT RecipientKey, 4, 'p' || RecipientKey || '@b', -1 FROM Recipients;"
            "INSERT INTO DeviceRecipient SELECT RecipientKey, RecipientKey FROM Recipients;"
            "INSERT INTO AddressDetails SELECT 'p' || RecipientKey || '@b', 'p' || RecipientKey || '@b', 4, "
            "RecipientKey FROM Recipients;");
    }
    void openAt(QWidget& list) {
        QApplication::setActiveWindow(list.window());
        list.setFocus();
        QTest::keyClick(&list, Qt::Key_F, Qt::ControlModifier);
        bar = list.window()->findChild<ui::FindBar*>("findBar");
        ASSERT_NE(bar, nullptr);
        ASSERT_TRUE(bar->isVisible());
        line = bar->findChild<QLineEdit*>("txtFind");
        ASSERT_EQ(QApplication::focusWidget(), line);
    }
    // Types, and gives the longest time that a key took.
    long type(const QString& text) {
        long longest = 0;
        for (const QChar c : text) {
            const long before = worked();
            QTest::keyClick(line, c.toLatin1());
            QApplication::processEvents();
            longest = std::max(longest, worked() - before);
        }
        return longest;
    }
    void tickFilter() { person::click(*bar, "chkOnlyMatches"); }
    QString sign() const {
        const auto* label = bar->findChild<QLabel*>("lblHidden");
        return label->isVisible() ? label->text() : QString();
    }
    static int shownRows(const QTableView& grid) {
        int shown = 0;
        for (int row = 0; row < grid.model()->rowCount(); ++row)
            shown += grid.isRowHidden(row) ? 0 : 1;
        return shown;
    }

    ui::FindBar* bar = nullptr;
    QLineEdit* line = nullptr;
};

TEST_F(FindInLists, TheTreeIsSearchedAndStandsWhereTheSearchEnds) {
    const long first = add("Backup", "17");
    const long second = add("Backup", "18");
    open();
    const std::string start = tree->selectedKey();
    openAt(*tree);
    EXPECT_EQ(line->accessibleName(), "Find: " + tree->accessibleName());
    EXPECT_TRUE(window->statusBar()->currentMessage().isEmpty());
    type("BACKUP");
    const std::string firstKey = window->findNode(nodeTypeEvent, first);
    const std::string secondKey = window->findNode(nodeTypeEvent, second);
    EXPECT_EQ(tree->selectedKey(), firstKey);
    EXPECT_EQ(visiblePane(), 0) << "a search opens nothing on its way";
    QTest::keyClick(line, Qt::Key_Return);
    EXPECT_EQ(tree->selectedKey(), secondKey);
    QTest::keyClick(line, Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_EQ(tree->selectedKey(), firstKey);
    type("x");
    EXPECT_EQ(bar->findChild<QLabel*>("lblResult")->text(), "Not found: BACKUPx");
    QTest::keyClick(line, Qt::Key_Backspace);
    QTest::keyClick(line, Qt::Key_Escape);
    EXPECT_FALSE(bar->isVisible());
    EXPECT_TRUE(tree->hasFocus());
    EXPECT_EQ(visiblePane(), 1) << "the node at which it ended is opened";

    // Whoever clicks elsewhere meanwhile finds the tree on what the pane shows.
    openAt(*tree);
    type("18");
    EXPECT_EQ(tree->selectedKey(), secondKey);
    person::clickInto(*find<QLineEdit>("txtEventTitle"));
    EXPECT_EQ(tree->selectedKey(), firstKey);
    QTest::keyClick(window.get(), Qt::Key_F, Qt::ControlModifier);
    EXPECT_EQ(bar->findChild<QCheckBox*>("chkOnlyMatches")->text(), "Only matching rows")
        << "its mnemonics would be those of the menu bar";
    QTest::keyClick(line, Qt::Key_Escape);
    EXPECT_EQ(tree->selectedKey(), firstKey);
    EXPECT_NE(tree->selectedKey(), start);

    // Whoever clicks another node while the bar stands open has left the one of before.
    openAt(*tree);
    clickNode(secondKey);
    QTest::keyClick(tree, Qt::Key_F, Qt::ControlModifier);
    person::type(*line, "");
    type("17");
    EXPECT_EQ(tree->selectedKey(), firstKey);
    person::clickInto(*find<QLineEdit>("txtEventTitle"));
    EXPECT_EQ(tree->selectedKey(), secondKey) << "whose pane is shown";
    const int width = window->minimumSizeHint().width();
    person::clickInto(*line);
    type(QString(300, 'x'));
    EXPECT_EQ(window->minimumSizeHint().width(), width) << "what is not found widens nothing";
}

TEST_F(FindInLists, FiltersListsOfFiveThousandWithinAFrameAndSaysSo) {
#ifdef __OPTIMIZE__
    constexpr long frame = 16000;
#else
    constexpr long frame = 32000;  // a build for debugging takes about twice as long
#endif
    addRecipients(5000);
    open();
    clickNode("keyRecipients");
    auto& recipients = *find<ui::KeyedGrid>("vsflexgridAllRecipients");
    ASSERT_EQ(recipients.rowCount(), 5000);
    openAt(recipients);
    const long jumps = type("person 4999");
    EXPECT_EQ(recipients.cellText(recipients.currentGridRow(), "RecipientName"), "Person 4999 of the night");
    EXPECT_EQ(sign(), "");
    const long before = worked();
    tickFilter();
    QApplication::processEvents();
    const long first = worked() - before;
    EXPECT_EQ(sign(), "Filter: 1 of 5,000 rows are shown");
    EXPECT_EQ(shownRows(recipients), 1);
    person::type(*line, "");
    EXPECT_EQ(shownRows(recipients), 5000);
    const long filters = type("12");
    EXPECT_EQ(shownRows(recipients), 199);
    QTest::keyClick(line, Qt::Key_Return);
    EXPECT_FALSE(recipients.isRowHidden(recipients.currentRow()));
    QTest::keyClick(line, Qt::Key_Escape);
    EXPECT_EQ(shownRows(recipients), 5000);

    openAt(*tree);
    const long treeJumps = type("person 4999");
    tickFilter();
    person::type(*line, "");
    const long treeFilters = type("12");
    EXPECT_EQ(sign(), "Filter: 200 of 5,004 rows are shown");
    // A rebuilt tree is filtered anew.
    window->loadNavigationTree();
    person::clickInto(*line);
    QApplication::processEvents();
    EXPECT_EQ(sign(), "Filter: 200 of 5,004 rows are shown");
    QTest::keyClick(line, Qt::Key_Escape);
    EXPECT_EQ(sign(), "");
    std::printf("longest key in us: list %ld, its filter %ld, first %ld; tree %ld, its filter %ld\n", jumps,
                filters, first, treeJumps, treeFilters);
    for (const long each : {jumps, filters, first, treeJumps, treeFilters})
        EXPECT_LT(each, frame);
}

TEST_F(FindInLists, TheChoiceOfRecipientsIsSearchedInTheChosenLanguage) {
    const long event = add("Backup", "17");
    addRecipients(30);
    open();
    core::gLanguageId = 1031;
    dlgEditRecipients dialog(window.get());
    script.expect("dlgEditRecipients", [this](QWidget& shown) {
        auto& recipients = *shown.findChild<ui::KeyedTree*>("tvRecipients");
        openAt(recipients);
        EXPECT_TRUE(line->accessibleName().startsWith("Suchen"));
        type("p17@");
        EXPECT_EQ(recipients.selectedKey(), "DeviceKey:17");
        tickFilter();
        EXPECT_EQ(sign(), "Filter: 2 von 60 Zeilen werden gezeigt");
        person::clickInto(*line);
        QTest::keyClick(line, Qt::Key_Return);
        EXPECT_TRUE(shown.isVisible()) << "Return goes on, it is not OK";
        QTest::keyClick(line, Qt::Key_Escape);
        EXPECT_TRUE(shown.isVisible()) << "Escape closes the bar and not the window";
        QTest::keyClick(&recipients, Qt::Key_Space);
        person::click(shown, "cmdOk");
    });
    dialog.displayForm(event, "Backup");
    EXPECT_EQ(dialog.selectedDevices.keys(), std::vector<std::string>{"DeviceKey:17"});
    core::gLanguageId = 1033;
}

}  // namespace
