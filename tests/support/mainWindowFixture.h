// The main window on a host of its own with three event sources.
#pragma once

#include <gtest/gtest.h>

#include <QPushButton>
#include <QtTest/QTest>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/state.h"
#include "database/events.h"
#include "database/settings.h"
#include "support/person.h"
#include "support/scriptedPrompts.h"
#include "support/temporaryHost.h"
#include "support/windowScript.h"
#include "ui/base/text.h"
#include "ui/shell/frmMain.h"
#include "ui/widgets/keyedGrid.h"
#include "ui/widgets/keyedTree.h"

namespace uiTest {

inline constexpr char sourcesKey[] = "System\\CurrentControlSet\\Services\\EventLog\\Application\\";

// Where to click on a node.
inline QPoint placeOf(ui::KeyedTree& tree, const std::string& key) {
    tree.ensureVisible(key);
    const QString text = ui::fromUtf8(tree.nodeText(key));
    return tree.visualItemRect(tree.findItems(text, Qt::MatchExactly | Qt::MatchRecursive).at(0)).center();
}

template <class Host>
class MainWindowOn : public ::testing::Test {
  protected:
    MainWindowOn() : script([](const QString& message) { ADD_FAILURE() << qPrintable(message); }) {
        core::gCorvaneFourOrLater = true;
        core::gProductName = "Quillon Service";
        for (const char* source : {"Alarm", "Backup", "Cluster"})
            host.setRegistry(sourcesKey + std::string(source), "EventMessageFile", source);
        host.openConfiguration();
        mdlDatabase::makeInitialDatabaseChanges();
    }

    void open() {
        window = std::make_unique<frmMain>();
        window->loadNavigationTree();
        window->selectNode(window->nodeAt(1));
        window->show();
        tree = window->tvNavigation;
        grid = window->findChild<ui::KeyedGrid*>("vsflexgridMonitoredEvents");
    }

    long add(const std::string& source, const std::string& id, const std::string& title = "") {
        return mdlDatabase::addNewEvent({source, id, title, 2, {"a.wav", 1, "subject", "body", 1}});
    }

    template <class Control>
    Control* find(const char* name) {
        return window->findChild<Control*>(name);
    }

    QPoint placeOf(const std::string& key) { return uiTest::placeOf(*tree, key); }
    void clickNode(const std::string& key, Qt::MouseButton button = Qt::LeftButton) {
        QTest::mouseClick(tree->viewport(), button, {}, placeOf(key));
    }
    void press(const char* button) { person::click(*find<QPushButton>(button)); }
    void chooseMenu(const char* entry) { person::chooseMenu(*window, entry); }
    std::vector<std::string> rows(const std::string& statement) {
        return support::query(host.databaseFile(), statement);
    }
    void run(const std::string& statements) { support::run(host.databaseFile(), statements); }
    std::string value(const std::string& statement) {
        const std::vector<std::string> found = rows(statement);
        return found.size() == 1 ? found[0] : "rows: " + std::to_string(found.size());
    }

    int visiblePane() {
        for (int i = 0; i < 8; ++i)
            if (find<QWidget>(qPrintable("vsviewportDetails_" + QString::number(i)))->isVisible())
                return i;
        return -1;
    }

    Host host;
    support::ScriptedPrompts prompts;
    support::WindowScript script;
    std::unique_ptr<frmMain> window;
    ui::KeyedTree* tree = nullptr;
    ui::KeyedGrid* grid = nullptr;
};

using MainWindow = MainWindowOn<support::TemporaryHost>;

}  // namespace uiTest
