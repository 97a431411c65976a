// The report panes, which no node of the tree leads to: a node of their type is put into it.

#include <QDateTimeEdit>
#include <QGroupBox>
#include <QLabel>
#include <chrono>
#include <iostream>

#include "platform/machine/language.h"
#include "support/mainWindowFixture.h"
#include "ui/widgets/rowGrid.h"

namespace {

using platform::DateOrder;
using Lines = std::vector<std::string>;

class Reports : public uiTest::MainWindow {
  protected:
    ~Reports() override { platform::setDateOrder(DateOrder::monthFirst); }

    void openReport() {
        open();
        ui::KeyedTree::NewNode node;
        for (const auto& [key, text, type] :
             {std::tuple("Reports", "Reports", nodeTypeCategoryReports),
              std::tuple("History", "Notification History", nodeTypeReport)}) {
            node.key = key;
            node.text = text;
            node.info.nodeType = type;
            tree->addNode(node);
        }
        clickNode("History");
        log = find<ui::RowGrid>("vsflexgridReportData");
    }
    QDateTimeEdit& picker(int index) {
        return *find<QDateTimeEdit>(qPrintable("dtpickerReport_" + QString::number(index)));
    }
    // Filters by two moments, each given as in the database.
    void filter(const char* start, const char* end) {
        for (const auto& [moment, first] : {std::pair(start, 0), std::pair(end, 2)}) {
            const QDateTime value = QDateTime::fromString(moment, "yyyy-MM-dd HH:mm:ss");
            picker(first).setDate(value.date());
            picker(first + 1).setTime(value.time());
        }
        press("cmdFilterByDate");
    }
    // The rows between them.
    Lines between(const char* start, const char* end) {
        filter(start, end);
        return sources();
    }
    Lines sources() {
        Lines found;
        for (int row = 1; row <= log->gridRowCount(); ++row)
            found.push_back(log->cellText(row, 1));
        return found;
    }
    void logAt(const std::vector<std::string>& moments) {
        std::string statements;
        for (const std::string& moment : moments)
            statements += "INSERT INTO NotificationLog VALUES(" + std::to_string(++lastKey) + ", '" + moment +
                          "', '" + moment + "', 5, 'a@b', 'True');";
        run(statements);
    }

    ui::RowGrid* log = nullptr;
    long lastKey = 0;
};

TEST_F(Reports, OpenWithTheLastHourAndNoRows) {
    using namespace std::chrono;
    support::ManualClock clock;
    std::tm midnight{};
    midnight.tm_year = 126;
    midnight.tm_mday = 1;
    midnight.tm_min = 30;
    midnight.tm_isdst = -1;
    clock.set(system_clock::from_time_t(std::mktime(&midnight)));
    logAt({"2026-01-01 00:10:00"});
    openReport();
    EXPECT_EQ(visiblePane(), 5);
    EXPECT_EQ(log->gridRowCount(), 0);
    EXPECT_EQ(picker(0).date(), QDate(2025, 12, 31));
    EXPECT_EQ(picker(1).time(), QTime(23, 30));
    EXPECT_EQ(picker(2).date(), QDate(2026, 1, 1));
    EXPECT_EQ(picker(3).time(), QTime(0, 30));
    EXPECT_EQ(find<QLabel>("lblReport")->text(), "nodeTypeReport") << "until a report is loaded";
    press("cmdFilterByDate");
    EXPECT_EQ(sources(), Lines{"2026-01-01 00:10:00"});
    EXPECT_EQ(find<QLabel>("lblReport")->text(), "Notification History");
    press("cmdFilterByDate");
    EXPECT_EQ(log->gridRowCount(), 1) << "the same rows, not twice as many";
    clickNode("Reports");
    EXPECT_EQ(visiblePane(), 4);
    EXPECT_EQ(host.countInLog("Err.Number"), 0);
}

// Midnight, the end of a month, a leap day, noon, and days that read as another date in the other order.
TEST_F(Reports, BoundsAreStrictInBothOrdersOfADate) {
    logAt({"2026-03-04 11:59:59", "2026-03-04 12:00:00", "2026-04-03 12:00:00", "2026-01-31 23:59:59",
           "2026-02-01 00:00:00", "2026-02-01 00:00:01", "2024-02-29 10:00:00", "2026-12-11 00:30:00"});
    for (const DateOrder order : {DateOrder::monthFirst, DateOrder::dayFirst}) {
        platform::setDateOrder(order);
        openReport();
        EXPECT_EQ(between("2026-01-31 23:59:59", "2026-02-01 00:00:01"), Lines{"2026-02-01 00:00:00"});
        EXPECT_EQ(between("2026-01-31 23:59:58", "2026-02-01 00:00:00"), Lines{"2026-01-31 23:59:59"});
        EXPECT_EQ(between("2026-03-04 11:59:59", "2026-03-04 12:00:01"), Lines{"2026-03-04 12:00:00"});
        EXPECT_EQ(between("2026-03-04 12:00:00", "2026-04-03 12:00:01"), Lines{"2026-04-03 12:00:00"});
        EXPECT_EQ(between("2024-02-28 23:59:59", "2024-03-01 00:00:00"), Lines{"2024-02-29 10:00:00"});
        EXPECT_EQ(between("2026-12-11 00:29:59", "2026-12-11 00:30:01"), Lines{"2026-12-11 00:30:00"});
        EXPECT_EQ(log->cellText(1, 0),
                  order == DateOrder::dayFirst ? "11/12/2026 00:30:00" : "12/11/2026 12:30:00 AM");
        EXPECT_EQ(between("2026-12-12 00:00:00", "2026-12-11 00:00:00"), Lines{})
            << "the start after the end";
        EXPECT_EQ(between("2020-01-01 00:00:00", "2030-01-01 00:00:00").size(), 8u);
    }
    EXPECT_EQ(host.countInLog("Err.Number"), 0);
}

TEST_F(Reports, CellsAreAsTheLogHasThem) {
    run("INSERT INTO NotificationLog VALUES(2, '2026-05-06 07:08:09', 'O''Brien', -1, NULL, -1),"
        "(1, '2026-05-06 07:08:10', 'first by key', 70000, 'x', 'False')");
    openReport();
    filter("2026-05-06 07:00:00", "2026-05-06 08:00:00");
    const auto row = [&](int number) {
        Lines cells;
        for (int column = 0; column < 5; ++column)
            cells.push_back(log->cellText(number, column));
        return cells;
    };
    EXPECT_EQ(row(1), (Lines{"5/6/2026 7:08:10 AM", "first by key", "70000", "x", "False"}));
    EXPECT_EQ(row(2), (Lines{"5/6/2026 7:08:09 AM", "O'Brien", "-1", "", "-1"}));
    for (int i : {0, 1, 2, 3})
        EXPECT_FALSE(picker(i).accessibleName().isEmpty());
}

TEST_F(Reports, ShowAHundredThousandRows) {
    run("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 100000) "
        "INSERT INTO NotificationLog SELECT i, strftime('%Y-%m-%d %H:%M:%S', 1790000000 + i, 'unixepoch'), "
        "'MeridaneCorvane_Source' || (i % 50), i % 7000, 'someone' || i || '@example.net', 'True' FROM n");
    openReport();
    const auto started = std::chrono::steady_clock::now();
    filter("2020-01-01 00:00:00", "2030-01-01 00:00:00");
    QCoreApplication::processEvents();
    const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - started;
    EXPECT_EQ(log->gridRowCount(), 100'000);
    EXPECT_EQ(log->cellText(100'000, 3), "someone100000@example.net");
    std::cout << "100,000 log rows read and shown in " << taken.count() << " ms\n";
}

TEST(MachineDateOrder, FollowsTheLocale) {
    for (const auto& [locale, order] :
         {std::pair("en_US.UTF-8", DateOrder::monthFirst), std::pair("de_DE.UTF-8", DateOrder::dayFirst),
          std::pair("en_GB", DateOrder::dayFirst), std::pair("C.UTF-8", DateOrder::monthFirst),
          std::pair("ja_JP", DateOrder::monthFirst)}) {
        qputenv("LC_ALL", locale);
        EXPECT_EQ(platform::userDateOrder(), order) << locale;
    }
    qunsetenv("LC_ALL");
}

}  // namespace
