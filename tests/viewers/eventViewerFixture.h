// The event viewer on a host of its own.
#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QTableView>
#include <QtTest/QTest>
#include <memory>

#include "host/eventViewer/eventWindow.h"
#include "support/person.h"
#include "support/temporaryHost.h"

namespace viewerTest {

class EventViewer : public ::testing::Test {
  protected:
    void open() {
        window = std::make_unique<viewer::EventWindow>(viewer::Language::english);
        window->show();
        QApplication::setActiveWindow(window.get());
        table = window->findChild<QTableView*>("tableEvents");
        settle();
    }
    // What is read and asked beside the window has come.
    void settle() {
        EXPECT_TRUE(QTest::qWaitFor([this] { return window->isAtRest(); }, 30000));
    }
    void clickRow(int row) {
        QTest::mouseClick(table->viewport(), Qt::LeftButton, {},
                          table->visualRect(table->model()->index(row, 3)).center());
    }
    QString cell(int row, int column) const { return table->model()->index(row, column).data().toString(); }
    // The cells of a column, from the first row to the last.
    QString column(int index) const {
        QStringList all;
        for (int row = 0; row < table->model()->rowCount(); ++row)
            all << cell(row, index);
        return all.join("|");
    }
    template <class Control>
    Control& find(const char* name) {
        return *window->findChild<Control*>(name);
    }

    support::TemporaryHost host;
    std::unique_ptr<viewer::EventWindow> window;
    QTableView* table = nullptr;
};

}  // namespace viewerTest
