// The directory search window, driven as a person does, on directories of both layouts.
#include <gtest/gtest.h>

#include <QComboBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QMainWindow>
#include <QPushButton>
#include <QtTest/QTest>

#include "core/state.h"
#include "host/directory.h"
#include "platform/machine/host.h"
#include "server/mdlCorvaneDatabase.h"
#include "support/person.h"
#include "support/temporaryHost.h"
#include "support/windowScript.h"
#include "ui/dialogs/dlgSelect.h"
#include "ui/widgets/boundGrid.h"

namespace {

class DirectorySearch : public ::testing::TestWithParam<host::DirectoryLayout> {
  protected:
    DirectorySearch() : script([](const QString& message) { ADD_FAILURE() << qPrintable(message); }) {
        top.show();
    }

    void makeDirectory(unsigned people) {
        host::createDirectory(
            platform::host::directoryDatabase(), GetParam(),
            [&](host::DirectoryWriter& writer) { host::fillDemonstrationDirectory(writer, people, 24); });
        mdlCorvaneDatabase::openCorvaneDB(core::gCorvaneDb);
        core::gViewsSupported = mdlCorvaneDatabase::determineViewsSupport(core::gCorvaneDb);
    }

    // Shows the window and does something in it.
    dlgSelect& show(short mode, const std::function<void()>& action) {
        dlgSelect& window = dlgSelect::shared(&top);
        window.directoryConnection = &core::gCorvaneDb;
        window.subscriberTypes = "(1,2,3)";
        window.selectMode = mode;
        script.expect("dlgSelect", [&](QWidget& shown) {
            search = &dynamic_cast<dlgSelect&>(shown);
            grid = search->findChild<ui::BoundGrid*>("myGrid");
            action();
            if (search->isVisible())
                person::click(*search, "cmdCancel");
        });
        window.exec();
        EXPECT_TRUE(script.finished());
        return window;
    }
    template <class Control>
    Control* find(const char* name) {
        return search->findChild<Control*>(name);
    }
    bool okEnabled() { return find<QPushButton>("cmdOk")->isEnabled(); }
    // Searches, and waits for all rows.
    void searchFor(const QString& text) {
        person::type(*find<QLineEdit>("txtSearchString"), text);
        QTest::keyClick(find<QLineEdit>("txtSearchString"), Qt::Key_Return);
        for (int before = -1; before != grid->gridRowCount(); QTest::qWait(20))
            before = grid->gridRowCount();
    }
    void click(int row, bool twice = false) {
        const QModelIndex cell = grid->model()->index(row - 1, 1);
        grid->scrollTo(cell);
        const QPoint place = grid->visualRect(cell).center();
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, place);
        if (twice)
            QTest::mouseDClick(grid->viewport(), Qt::LeftButton, {}, place);
    }
    // The headers in sight; "-" for one without a text.
    QStringList headers() {
        QStringList texts;
        for (int i = 0; i < grid->model()->columnCount(); ++i)
            if (!grid->isColumnHidden(i)) {
                const QString text = grid->model()->headerData(i, Qt::Horizontal).toString();
                texts << (text.isEmpty() ? "-" : text);
            }
        return texts;
    }

    support::TemporaryHost host;
    support::WindowScript script;
    QMainWindow top;
    dlgSelect* search = nullptr;
    ui::BoundGrid* grid = nullptr;
};

INSTANTIATE_TEST_SUITE_P(Layouts, DirectorySearch,
                         ::testing::Values(host::DirectoryLayout::tables, host::DirectoryLayout::views));

TEST_P(DirectorySearch, FindsSubscribersByEachField) {
    makeDirectory(240);
    const dlgSelect& result = show(1, [&] {
        EXPECT_EQ(search->windowTitle(), "Subscriber Search");
        EXPECT_EQ(host.countInLog("Entering [dlgSelect]comboSearchBy_Click"), 1);
        auto* fields = find<QComboBox>("comboSearchBy");
        EXPECT_EQ(fields->count(), 4);
        EXPECT_EQ(fields->currentText(), "Last Name");
        EXPECT_EQ(find<QLineEdit>("txtSearchString")->text(), "*");
        EXPECT_FALSE(okEnabled());
        EXPECT_EQ(headers(), QStringList({"Alias", "Display Name", "Extension", "First Name", "Last Name"}));
        EXPECT_EQ(grid->gridRowCount(), 0);

        searchFor("*");
        EXPECT_EQ(grid->gridRowCount(), 192);  // the three types of the list
        EXPECT_LT(grid->model()->index(0, 0).data().toString(), grid->model()->index(1, 0).data().toString());
        EXPECT_EQ(grid->currentGridRow(), 0);
        searchFor("  Marino ");
        const int marinos = grid->gridRowCount();
        EXPECT_GT(marinos, 0);
        EXPECT_EQ(grid->cellText(1, "displayNAME").find("Marino"),
                  grid->cellText(1, "DisplayName").size() - 6);
        searchFor("Mari*");
        EXPECT_EQ(grid->gridRowCount(), marinos);
        searchFor("Mari");
        EXPECT_EQ(grid->gridRowCount(), 0);
        person::chooseRow(*fields, 0);
        searchFor("200*");
        EXPECT_EQ(grid->gridRowCount(), 9);
        person::chooseRow(*fields, 1);
        searchFor("aabbott");
        EXPECT_EQ(grid->gridRowCount(), 1);
        person::chooseRow(*fields, 2);
        searchFor("");
        EXPECT_EQ(grid->gridRowCount(), 0);
        searchFor("Zo*");
        ASSERT_GT(grid->gridRowCount(), 0);
        EXPECT_EQ(headers().size(), 5);

        EXPECT_FALSE(okEnabled());
        click(1);
        EXPECT_TRUE(okEnabled());
        person::click(*search, "cmdOk");
    });
    EXPECT_FALSE(result.cancelled);
    EXPECT_EQ(result.selectedDirectoryId.front(), '{');
    EXPECT_EQ(result.selectedDisplayName.find("Zo"), 0u);
    EXPECT_EQ(host.countInLog("Err.Number"), 0);
}

TEST_P(DirectorySearch, FindsListsAndKeepsItsTextUntilItIsCancelled) {
    makeDirectory(10);
    const dlgSelect& result = show(2, [&] {
        EXPECT_EQ(search->windowTitle(), "Distribution List Search");
        EXPECT_EQ(find<QComboBox>("comboSearchBy")->count(), 2);
        EXPECT_EQ(find<QComboBox>("comboSearchBy")->currentText(), "Display Name");
        searchFor("*");
        EXPECT_EQ(grid->gridRowCount(), 24);
        EXPECT_EQ(headers(), QStringList({"Alias", "Display Name", "Extension", "-"}));
        searchFor("Night*");
        click(1, true);
    });
    EXPECT_FALSE(result.cancelled);
    EXPECT_EQ(result.selectedDisplayName, "Night Shift");
    EXPECT_EQ(support::query(platform::host::directoryDatabase(),
                             "SELECT DisplayName FROM " + std::string(core::gViewsSupported ? "vw_" : "") +
                                 "DistributionList WHERE DirectoryId = '" + result.selectedDirectoryId + "'"),
              std::vector<std::string>{"Night Shift"});

    // After OK the text is there, the rows and the permission to press OK are not.
    show(2, [&] {
        EXPECT_EQ(find<QLineEdit>("txtSearchString")->text(), "Night*");
        EXPECT_EQ(grid->gridRowCount(), 0);
        EXPECT_FALSE(okEnabled());
        QTest::keyClick(search, Qt::Key_Escape);
    });
    EXPECT_TRUE(result.cancelled);
    show(1, [&] { EXPECT_EQ(find<QLineEdit>("txtSearchString")->text(), "*"); });
    EXPECT_EQ(host.countInLog("Err.Number"), 0);
}

TEST_P(DirectorySearch, KeyboardAloneAndTheHeaderRowOfASecondSearch) {
    makeDirectory(30);
    const dlgSelect& byKeys = show(1, [&] {
        searchFor("*");
        grid->setFocus();
        EXPECT_EQ(grid->currentGridRow(), 0);
        QTest::keyClick(grid, Qt::Key_Down);
        EXPECT_EQ(grid->currentGridRow(), 1);
        EXPECT_TRUE(okEnabled());
        QTest::keyClick(grid, Qt::Key_Down);
        QTest::keyClick(grid, Qt::Key_Return);
    });
    EXPECT_FALSE(byKeys.cancelled);
    EXPECT_NE(byKeys.selectedDisplayName, "");
    // A search leaves OK enabled, with no row selected.
    const dlgSelect& header = show(1, [&] {
        searchFor("*");
        click(2);
        searchFor("*");
        EXPECT_EQ(grid->currentGridRow(), 0);
        EXPECT_TRUE(okEnabled());
        person::click(*search, "cmdOk");
    });
    EXPECT_EQ(header.selectedDirectoryId, "");
    EXPECT_EQ(header.selectedDisplayName, "Display Name");
}

TEST_P(DirectorySearch, FailuresAreLoggedAndTheWindowGoesOn) {
    makeDirectory(30);
    show(1, [&] {
        searchFor("O'Connor");
        EXPECT_EQ(grid->gridRowCount(), 0);
        EXPECT_EQ(host.countInLog("Err.Number = -2147217900 "), 1);
        EXPECT_EQ(search->cursor().shape(), Qt::ArrowCursor);
        searchFor("x'); DELETE FROM Subscriber; --");
        EXPECT_EQ(host.countInLog("Err.Number = -2147217900 "), 2);
        EXPECT_EQ(host.countInLog("Err.Number"), 2);
        searchFor("*");
        EXPECT_EQ(grid->gridRowCount(), 26);
        core::gCorvaneDb.close();
        searchFor("*");
        EXPECT_EQ(grid->gridRowCount(), 0);
        EXPECT_EQ(host.countInLog("Err.Number = 3709 "), 1);
    });
}

TEST_P(DirectorySearch, ALargeDirectoryComesInBlocksAndLeavesNoLock) {
    makeDirectory(5000);
    show(1, [&] {
        person::click(*search, "cmdSearch");
        const int first = grid->gridRowCount();
        EXPECT_GT(first, 0);
        EXPECT_LT(first, 2000);
        // What is chosen while the rest comes stays chosen.
        click(3);
        EXPECT_TRUE(QTest::qWaitFor([&] { return grid->gridRowCount() == 4000; }));
        EXPECT_EQ(grid->currentGridRow(), 3);
        person::click(*search, "cmdSearch");
        EXPECT_LT(grid->gridRowCount(), 2000);
    });
    // Closed in the middle of its reading.
    support::run(platform::host::directoryDatabase(),
                 "PRAGMA busy_timeout = 0; DELETE FROM GlobalSubscriber");
}

}  // namespace
