// What else the menus offer: exclusions, options, the import, the log file, help and languages.

#include <QApplication>
#include <QLineEdit>
#include <QMenu>
#include <QTabBar>
#include <QTabWidget>
#include <QTreeWidget>
#include <QtTest/QTest>

#include "core/classLog.h"
#include "core/modLocalize.h"
#include "core/state.h"
#include "database/settings.h"
#include "host/textViewer/textWindow.h"
#include "host/viewer/texts.h"
#include "tour/chapters.h"
#include "tour/hands.h"
#include "tour/keyboard.h"
#include "tour/stage.h"
#include "ui/base/text.h"

namespace tour {

namespace {

void playOptions(const Play& play) {
    play.script.expect("frmOptions", [](QWidget& options) {
        walkByKeyboard(options);
        takePicture("options");
        typeOver(options, "tdbnumliteReportDataAging", "99");
        takePicture("options-refusal");
        auto& tabs = control<QTabWidget>(options, "sstabOptions");
        QTest::mouseClick(tabs.tabBar(), Qt::LeftButton, {}, tabs.tabBar()->tabRect(1).center());
        insist(tabs.currentIndex() == 1, "the second tab does not come to the front");
        walkByKeyboard(options);
        takePicture("options-content");
        press(options, "cmdCancel");
    });
    chooseMenu(play.window, {"mnuFile", "mnuOptions"});
}

// The legacy notifier of the demonstration host: its service is at work, one of its sources is gone, and one
// event is there twice.
void playImport(const Play& play) {
    const std::size_t before = play.tree().childKeys("keyMonitoredEvents").size();
    expectBox(play.script, 1245, QMessageBox::Yes, "import-question");
    expectBox(play.script, 1280, QMessageBox::Yes, "import-legacy-service");
    // A title that is the same in every language.
    expectBox(
        play.script, [] { return QString("Invalid Source"); }, QMessageBox::Ok, "import-unknown-source");
    expectBox(play.script, 1190, QMessageBox::No, "import-duplicate");
    chooseMenu(play.window, {"mnuFile", "mnuImportEvents"});
    constexpr std::size_t usable = 3;
    insist(play.tree().childKeys("keyMonitoredEvents").size() == before + usable,
           "the legacy events are not imported");
    takePicture("imported");
}

// As with the event viewer, the viewer's window opens in this program.
void playLogFile() {
    const std::string file = mdlDatabase::getConfigurationSetting("OutputFilePath");
    viewer::TextWindow window(file.empty() ? core::gLog().strLogFile() : file, viewer::userLanguage());
    window.show();
    auto& find = control<QLineEdit>(window, "txtFind");
    find.setFocus();
    QTest::keyClicks(&find, "Main");
    press(window, "cmdNext");
    walkByKeyboard(window);
    takePicture("log-file");
}

QWidget& helpWindow() {
    QWidget* found = nullptr;
    waitFor(
        [&] {
        for (QWidget* window : QApplication::topLevelWidgets())
            if (window->objectName() == "helpWindow" && window->isVisible())
                found = window;
        return found != nullptr;
        },
        "help does not open");
    return *found;
}

void playHelp(const Play& play) {
    chooseMenu(play.window, {"mnuHelp", "mnuHelpContents"}, "help-menu");
    QWidget& help = helpWindow();
    auto& contents = control<QTreeWidget>(help, "helpContents");
    contents.setFocus();
    for (const Qt::Key key : {Qt::Key_Down, Qt::Key_Down, Qt::Key_Return})
        QTest::keyClick(&contents, key);
    walkByKeyboard(help);
    takePicture("help-contents");
    QTest::keyClick(&help, Qt::Key_F, Qt::ControlModifier);
    auto& words = control<QLineEdit>(help, "helpSearch");
    waitFor([&] { return words.isVisible(); }, "the search does not come");
    type(words, "failover");
    QTest::keyClick(&words, Qt::Key_Return);
    takePicture("help-search");
    help.close();
}

void chooseLanguage(const Play& play, const QString& language, const QString& picture) {
    play.script.expect("frmAbout", [&play, language, picture](QWidget& about) {
        for (const QAction* item : control<QMenu>(about, "mnuSelectLanguage").actions())
            if (item->text() == language)
                play.script.expectMenu(item->objectName(), [picture](QWidget&) { takePicture(picture); });
        press(about, "lblChangeLanguage");
        insist(ui::fromUtf8(modLocalize::languageIdToName(core::gLanguageId)) == language,
               "the language is not chosen: " + language);
        walkByKeyboard(about);
        takePicture(picture + "-chosen");
        press(about, "cmdOk");
    });
    chooseMenu(play.window, {"mnuHelp", "mnuHelpAbout"});
}

}  // namespace

void playExclusions(const Play& play) {
    ui::KeyedTree& tree = play.tree();
    play.script.expect("dlgAddExclusion", [](QWidget& dialog) {
        chooseByTyping(dialog, "comboEventSource", "MeridaneCorvane_L");
        typeOver(dialog, "tdbnlSpecificEventId", "4713");
        walkByKeyboard(dialog);
        takePicture("new-exclusion");
        press(dialog, "cmdOk");
    });
    chooseMenu(play.window, {"mnuFile", "mnuFileNew", "mnuFileNewExclusion"});
    insist(tree.info(tree.selectedKey()).nodeType == nodeTypeExclusion, "the new exclusion is not selected");
    walkByKeyboard(play.window);
    takePicture("exclusion");
    clickNode(tree, "keyExclusions");
    auto& grid = control<ui::KeyedGrid>(play.window, "vsflexgridAllExclusions");
    insist(grid.gridRowCount() == 3, "the grid does not show the exclusions");
    clickCell(grid, 1, "EventSource");
    walkByKeyboard(play.window);
    takePicture("exclusions");
    expectBox(play.script, 1304, QMessageBox::No, "delete-exclusion");
    press(play.window, "cmdDeleteSelectedExclusion");
}

void playTools(const Play& play) {
    playOptions(play);
    playImport(play);
    playLogFile();
    playHelp(play);
    // Every window changes at once, and back.
    const QString first = ui::fromUtf8(modLocalize::languageIdToName(core::gLanguageId));
    chooseLanguage(play, "Français (France)", "languages");
    takePicture("other-language");
    chooseLanguage(play, first, "languages-again");
}

}  // namespace tour
