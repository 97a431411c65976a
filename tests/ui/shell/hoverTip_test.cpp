// What the tree tells of the node under the pointer.
#include <gtest/gtest.h>

#include <QLabel>
#include <QtTest/QTest>

#include "database/events.h"
#include "support/mainWindowFixture.h"

namespace {

using uiTest::MainWindow;

TEST_F(MainWindow, HoverTipTellsAnEventsHealth) {
    const long key = add("Backup", "17", "nightly");
    open();
    const std::string node = "EventKey-" + std::to_string(key);
    const std::string dashes(40, '-');
    EXPECT_EQ(
        window->constructNavigationToolTip(node),
        "nightly\n" + dashes + "\nEvent: Inactive\nRecipients: 0\nNo Active Recipients\nNo Active Devices");
    EXPECT_EQ(window->constructNavigationToolTip("keyExclusions"), "Exclusions");
    run("INSERT INTO Recipients VALUES(1, 'Ana', -1); INSERT INTO Device VALUES(1, 4, 'a@b', -1);"
        "INSERT INTO DeviceRecipient VALUES(1, 1); INSERT INTO AddressDetails VALUES('a@b', 'a@b', 4, 1);"
        "INSERT INTO EventDevice VALUES(" +
        std::to_string(key) + ", 1, -1);");
    mdlDatabase::setEventActiveState(key, true);
    EXPECT_EQ(window->constructNavigationToolTip(node), "nightly\n" + dashes + "\nEvent: Active");
}

TEST_F(MainWindow, HoverTipFollowsThePointerByTheNodesText) {
    for (const char* title : {"first", "second"})
        run("INSERT INTO Events(EventSource, EventId, EventTitle) "
            "VALUES('Backup', 17, '" +
            std::string(title) + "')");
    run("INSERT INTO Recipients(RecipientName) VALUES('Ana')");
    open();
    const auto* tip = find<QLabel>("tooltip");
    const auto rest = [&](const char* text, int which) {
        const auto nodes = tree->findItems(text, Qt::MatchExactly | Qt::MatchRecursive);
        QTest::mouseMove(tree->viewport(), tree->visualItemRect(nodes.at(which)).center());
        return QTest::qWaitFor([&] { return tip->isVisible(); }, 1500) ? tip->text().section('\n', 0, 0)
                                                                       : QString();
    };
    EXPECT_EQ(rest("Exclusions", 0), "Exclusions");
    EXPECT_EQ(rest("Backup (17)", 0), "first");
    EXPECT_EQ(rest("Backup (17)", 1), "first") << "nodes of equal text share the earlier tip";
    EXPECT_EQ(rest("Ana", 0), "") << "a recipient has no tip";
}

}  // namespace
