#include "ui/helpViewer/helpViewer.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QListWidget>
#include <QTabWidget>
#include <QTreeWidget>
#include <QtTest/QTest>
#include <filesystem>
#include <fstream>

#include "core/state.h"
#include "platform/libraries/chmFile.h"
#include "support/person.h"
#include "support/scriptedPrompts.h"
#include "support/temporaryHost.h"
#include "ui/helpViewer/helpPages.h"
#include "ui/helpViewer/helpWindow.h"
#include "ui/shell/frmMain.h"

namespace {

namespace fs = std::filesystem;

class Help : public ::testing::Test {
  protected:
    void install() { fs::copy_file(HELP_FILE, host.programFolder() / "QuillonService_ENU.chm"); }

    ui::HelpWindow* window() {
        for (QWidget* candidate : QApplication::topLevelWidgets())
            if (auto* help = qobject_cast<ui::HelpWindow*>(candidate); help && help->isVisible())
                return help;
        return nullptr;
    }
    template <class Control>
    Control* find(const char* name) {
        return window()->findChild<Control*>(name);
    }
    QString page() { return find<ui::HelpPages>("helpPages")->source().fileName(); }
    QString heading() { return find<ui::HelpPages>("helpPages")->toPlainText().section('\n', 0, 0); }

    support::TemporaryHost host;
    support::ScriptedPrompts prompts;
    support::ManualClock clock;
    ui::HelpViewer viewer;
};

TEST_F(Help, OpensByItsKeyFromTheMainWindowAndIsClosedAtTheEnd) {
    install();
    host.openConfiguration();
    frmMain shell;
    shell.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&shell));
    shell.activateWindow();
    QTest::keyClick(&shell, Qt::Key_F1);
    ASSERT_NE(window(), nullptr);
    EXPECT_EQ(core::gHelpWindow, static_cast<long>(window()->winId()));
    EXPECT_EQ(window()->windowTitle(), "Quillon Service Help");
    EXPECT_EQ(heading(), "Welcome to the Quillon Service");
    EXPECT_EQ(host.countInLog("hwndHelp returned = " + std::to_string(core::gHelpWindow)), 1);
    EXPECT_EQ(host.countInLog("ERROR"), 0);

    mdlHTMLHelp::closeHelpWindow();
    EXPECT_EQ(window(), nullptr);
    person::chooseMenu(shell, "mnuHelpContents");
    ASSERT_NE(window(), nullptr);
    window()->close();
    EXPECT_FALSE(viewer.isWindow(core::gHelpWindow));
}

TEST_F(Help, ContentsLinksAndHistoryLeadThroughThePages) {
    install();
    mdlHTMLHelp::showCHMHelp(mdlHTMLHelp::getHelpFileName(), 0);
    ASSERT_NE(window(), nullptr);
    auto* contents = find<QTreeWidget>("helpContents");
    auto* pages = find<ui::HelpPages>("helpPages");
    EXPECT_EQ(contents->currentItem()->text(0), "Welcome to the Quillon Service");

    QTreeWidgetItem* failover =
        contents->findItems("Failover and its warning", Qt::MatchExactly | Qt::MatchRecursive).at(0);
    contents->scrollToItem(failover);
    QTest::mouseClick(contents->viewport(), Qt::LeftButton, {}, contents->visualItemRect(failover).center());
    EXPECT_EQ(heading(), "Assigning recipients to events");
    EXPECT_EQ(pages->source().fragment(), "failover");
    EXPECT_EQ(contents->currentItem(), failover);

    pages->setSource(QUrl("boxes.html"));
    EXPECT_EQ(heading(), "What each message means");
    EXPECT_EQ(contents->currentItem()->text(0), "What each message means");
    person::chooseTool(*window(), "helpBack");
    EXPECT_EQ(page(), "assignment.html");
    person::chooseTool(*window(), "helpForward");
    EXPECT_EQ(page(), "boxes.html");
    EXPECT_FALSE(find<QAction>("helpForward")->isEnabled());
    // Ways out of the file lead nowhere.
    for (const char* outside : {"https://example.org/boxes.html", "file:///etc/hostname", "absent.html"})
        pages->setSource(QUrl(outside));
    EXPECT_EQ(page(), "boxes.html");
    person::chooseTool(*window(), "helpHome");
    EXPECT_EQ(page(), "welcome.html");
}

TEST_F(Help, SearchFindsPagesThatHoldAllWordsTheBestFirst) {
    install();
    mdlHTMLHelp::showCHMHelp(mdlHTMLHelp::getHelpFileName(), 0);
    auto* words = find<QLineEdit>("helpSearch");
    auto* hits = find<QListWidget>("helpHits");
    auto& sidebar = *window()->findChild<QTabWidget*>();
    person::showPage(sidebar, 2);
    person::type(*words, "exclusions");
    ASSERT_GE(hits->count(), 3);
    EXPECT_EQ(hits->item(0)->text(), "Exclusions");
    person::type(*words, "  CLIPBOARD   colon ");
    ASSERT_EQ(hits->count(), 1);
    QTest::keyClick(words, Qt::Key_Return);
    EXPECT_EQ(page(), "importFromEventViewer.html");
    EXPECT_EQ(find<ui::HelpPages>("helpPages")->textCursor().selectedText().toLower(), "clipboard");
    person::type(*words, "clipboard nowhereatall");
    EXPECT_EQ(hits->count(), 0);
    words->clear();
    EXPECT_EQ(hits->count(), 0);

    person::showPage(sidebar, 1);
    person::type(*find<QLineEdit>("helpIndexFilter"), "syslog");
    auto* index = find<QListWidget>("helpIndex");
    int shown = 0;
    for (int row = 0; row < index->count(); ++row)
        shown += !index->item(row)->isHidden();
    EXPECT_EQ(shown, 2);
}

TEST_F(Help, TopicsHaveTheirPages) {
    install();
    const std::string file = mdlHTMLHelp::getHelpFileName();
    const auto numbered = platform::ChmFile::open(file).pageOfTopic(5);
    ASSERT_TRUE(numbered);
    mdlHTMLHelp::showCHMHelp(file, 0, 5);
    EXPECT_EQ(page().toStdString(), *numbered);
    mdlHTMLHelp::showCHMHelp(file, 0, 999);
    EXPECT_EQ(page(), "welcome.html");
}

TEST_F(Help, AFileThatCannotBeShownGivesNoWindowAndNoMessage) {
    mdlHTMLHelp::showCHMHelp(mdlHTMLHelp::getHelpFileName(), 0);
    EXPECT_EQ(core::gHelpWindow, 0);
    EXPECT_EQ(window(), nullptr);
    EXPECT_EQ(host.countInLog("hwndHelp returned = 0"), 1);
    std::ofstream(host.programFolder() / "QuillonService.chm") << "no help at all";
    mdlHTMLHelp::showCHMHelp(mdlHTMLHelp::getHelpFileName(), 0);
    EXPECT_EQ(window(), nullptr);
    EXPECT_EQ(host.countInLog("not a compiled help file"), 1);
    EXPECT_EQ(host.countInLog("ERROR"), 0);
    mdlHTMLHelp::closeHelpWindow();

    // Once the file is there, the next call shows it.
    install();
    mdlHTMLHelp::showCHMHelp((host.programFolder() / "QuillonService_ENU.chm").string(), 0);
    ASSERT_NE(window(), nullptr);
    mdlHTMLHelp::closeHelpWindow();
    EXPECT_EQ(window(), nullptr);
}

}  // namespace
