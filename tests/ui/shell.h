// The main window on a host of its own, for the tests of its panes.
#pragma once

#include <gtest/gtest.h>

#include <QAction>
#include <QPushButton>
#include <QtTest/QTest>
#include <memory>
#include <string>
#include <vector>

#include "core/state.h"
#include "database/settings.h"
#include "support/scriptedPrompts.h"
#include "support/serviceHost.h"
#include "support/windowScript.h"
#include "ui/frmMain.h"
#include "ui/text.h"
#include "ui/widgets/keyedTree.h"

namespace uiTest {

using Lines = std::vector<std::string>;

class Shell : public ::testing::Test {
  protected:
    Shell() : script([](const QString& message) { ADD_FAILURE() << qPrintable(message); }) {
        core::gCorvaneFourOrLater = true;
        for (const char* source : {"Alarm", "Backup", "Cluster"})
            host.setRegistry(
                "System\\CurrentControlSet\\Services\\EventLog\\Application\\" + std::string(source),
                "EventMessageFile", source);
        host.openConfiguration();
        mdlDatabase::makeInitialDatabaseChanges();
    }

    void open() {
        window = std::make_unique<frmMain>();
        window->loadNavigationTree();
        window->selectNode(window->nodeAt(1));
        window->show();
        tree = window->tvNavigation;
    }
    template <class Control>
    Control& find(const std::string& name) {
        return *window->findChild<Control*>(QString::fromStdString(name));
    }
    void press(const std::string& button) { QTest::mouseClick(&find<QPushButton>(button), Qt::LeftButton); }
    bool isPaneShown(int index) {
        return find<QWidget>("vsviewportDetails_" + std::to_string(index)).isVisible();
    }
    void clickNode(const std::string& key, Qt::MouseButton button = Qt::LeftButton) {
        tree->ensureVisible(key);
        const QString text = ui::fromUtf8(tree->nodeText(key));
        const auto* item = tree->findItems(text, Qt::MatchExactly | Qt::MatchRecursive).at(0);
        QTest::mouseClick(tree->viewport(), button, {}, tree->visualItemRect(item).center());
    }
    Lines rows(const std::string& statement) { return support::query(host.databaseFile(), statement); }
    void run(const std::string& statements) { support::run(host.databaseFile(), statements); }

    support::ServiceHost host;
    support::ScriptedPrompts prompts;
    support::WindowScript script;
    std::unique_ptr<frmMain> window;
    ui::KeyedTree* tree = nullptr;
};

}  // namespace uiTest
