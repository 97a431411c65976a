// The About window and its chooser of languages, with the real German and French libraries.
#include "ui/dialogs/frmAbout.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QtTest/QTest>
#include <map>

#include "core/modLocalize.h"
#include "core/state.h"
#include "database/addressDetails.h"
#include "database/events.h"
#include "database/settings.h"
#include "platform/registry/registry.h"
#include "server/serviceControl.h"
#include "support/person.h"
#include "support/processEnd.h"
#include "support/serviceHost.h"
#include "support/windowScript.h"
#include "ui/base/messageBoxes.h"
#include "ui/base/text.h"
#include "ui/shell/frmMain.h"
#include "ui/shell/windowServices.h"
#include "ui/widgets/keyedGrid.h"
#include "ui/widgets/keyedTree.h"

namespace {

namespace fs = std::filesystem;

class About : public ::testing::Test {
  protected:
    About() : script([](const QString& message) { ADD_FAILURE() << qPrintable(message); }) {
        platform::setPrompts(&boxes);
        core::gProductName = "Quillon Service";
        core::gCorvaneFourOrLater = true;
        core::gLanguageId = 1033;
        host.setRegistry("System\\CurrentControlSet\\Services\\EventLog\\Application\\Alarm",
                         "EventMessageFile", std::string("x"));
        host.openConfiguration();
        mdlDatabase::makeInitialDatabaseChanges();
        mdlDatabase::addNewEvent({"Alarm", "-1", "all of it", 2, {"a.wav", 1, "subject", "body", 1}});
        window.loadNavigationTree();
        window.selectNode(window.nodeAt(1));
        window.show();
    }
    ~About() override {
        // The toolkit's own words belong to the whole process.
        core::gLanguageId = 1033;
        modLocalize::InitalizeLanguages();
        platform::setPrompts(nullptr);
    }

    void addLanguages() {
        for (const char* code : {"DEU", "FRA"})
            fs::copy_file(fs::path(LIBRARY_FOLDER) / ("QLNbrandingres_" + std::string(code) + ".dll"),
                          host.programFolder() / ("QLNbrandingres_" + std::string(code) + ".dll"));
    }
    // Opens the About window from its menu, does something in it and closes it.
    void inAbout(const std::function<void(QWidget&)>& action) {
        script.expect("frmAbout", [action](QWidget& about) {
            action(about);
            QTest::mouseClick(about.findChild<QPushButton*>("cmdOk"), Qt::LeftButton);
        });
        person::chooseMenu(window, "mnuHelpAbout");
    }
    // Chooses the language with that name in the About window.
    void choose(QWidget& about, const QString& language) {
        auto& menu = *about.findChild<QMenu*>("mnuSelectLanguage");
        for (QAction* item : menu.actions())
            if (item->text() == language) {
                script.expectMenu(item->objectName());
                return person::click(about, "lblChangeLanguage");
            }
        ADD_FAILURE() << "no language " << qPrintable(language);
    }
    QString header(int column) {
        return window.findChild<ui::KeyedGrid*>("vsflexgridMonitoredEvents")
            ->horizontalHeaderItem(column)
            ->text();
    }
    // Every caption, list entry, tip, title and node text of the main window and of the dialogs that it owns.
    QStringList words() {
        QStringList all;
        for (QWidget* control : window.findChildren<QWidget*>())
            for (const char* property : {"text", "title", "windowTitle", "toolTip", "accessibleName"})
                all << control->property(property).toString();
        for (QAction* entry : window.findChildren<QAction*>())
            all << entry->text() << entry->toolTip();
        for (QComboBox* combo : window.findChildren<QComboBox*>())
            for (int i = 0; i < combo->count(); ++i)
                all << combo->itemText(i);
        for (int i = 0; i < 8; ++i)
            all << header(i);
        for (long i = 1; i <= window.tvNavigation->count(); ++i)
            all << ui::fromUtf8(window.tvNavigation->nodeText(window.tvNavigation->keyAt(i)));
        all.removeAll(QString());
        return all;
    }
    // No word is left of the English table, or of a language before, where the present one has another.
    void expectOnlyPresentWords(const std::map<long, QString>& before) {
        const QStringList shown = words();
        for (const auto& [id, old] : before) {
            if (old != ui::text(id)) {
                EXPECT_FALSE(shown.contains(old)) << id << " " << qPrintable(old);
            }
        }
    }
    std::map<long, QString> table() {
        std::map<long, QString> texts;
        for (long id = 1001; id <= 1316; ++id)
            texts[id] = ui::text(id);
        return texts;
    }

    support::ServiceHost host;
    support::WindowScript script;
    ui::MessageBoxes boxes;
    ui::WindowServices services;
    frmMain window;
};

TEST_F(About, ShowsVersionAndMaker) {
    // Any program with a version record stands for the console here: the service's.
    fs::copy_file(support::serviceProgram(), host.programFolder() / "QLNAdmin");
    inAbout([&](QWidget& about) {
        const auto text = [&](const char* name) { return about.findChild<QLabel*>(name)->text(); };
        EXPECT_EQ(text("lblVersionTitle") + text("lblVersion"), "Version:2.0 Build0");
        const std::pair<const char*, long> labels[] = {{"lblMeridaneAddress1", 1007},
                                                       {"lblMeridaneAddress2", 1002},
                                                       {"lblMeridaneAddress3", 1003},
                                                       {"lblTrademark", 1005},
                                                       {"lblCopyright", 1006}};
        for (const auto& [name, id] : labels)
            EXPECT_EQ(text(name), modLocalize::englishString(id)) << name;
        const auto items = about.findChild<QMenu*>("mnuSelectLanguage")->actions();
        ASSERT_EQ(items.size(), 2) << "the heading and one item";
        EXPECT_EQ(items[0]->text(), "Select Language");
        EXPECT_EQ(items[1]->text(), "No Languages Loaded");
        EXPECT_EQ(items[1]->data().toInt(), 1033);
        choose(about, "No Languages Loaded");
        EXPECT_EQ(core::gLanguageId, 1033);
        EXPECT_FALSE(core::gRebuildingControls);
    });
}

TEST_F(About, NamesOfDevicesFollowTheLanguageInThePanesThatShowThem) {
    addLanguages();
    const long event = mdlDatabase::addNewEvent({"Alarm", "4", "", 2, {"a.wav", 1, "subject", "body", 1}});
    support::run(host.databaseFile(),
                 "INSERT INTO Recipients VALUES(1, 'Ana', -1); INSERT INTO Device VALUES(11, 4, 'a@b', -1);"
                 "INSERT INTO DeviceRecipient VALUES(11, 1); INSERT INTO EventDevice VALUES(" +
                     std::to_string(event) + ", 11, -1);");
    mdlDatabase::rebuildAddressDetailsTable();
    window.loadNavigationTree(event);
    auto* tree = window.findChild<QWidget*>("vsviewportDetails_1")->findChild<ui::KeyedTree*>("tvRecipients");
    ASSERT_EQ(tree->nodeText("DeviceKey:11"), "a@b" + modLocalize::myLoadResString(1197));
    inAbout([&](QWidget& about) { choose(about, "Deutsch (Deutschland)"); });
    EXPECT_EQ(tree->nodeText("DeviceKey:11"), "a@b" + modLocalize::myLoadResString(1197));

    // A syslog host may be empty, as an entry that nobody chose is; it is no entry's name for that.
    support::run(host.databaseFile(),
                 "INSERT INTO Device VALUES(12, 6, '', -1); INSERT INTO DeviceRecipient VALUES(12, 1);");
    mdlDatabase::rebuildAddressDetailsTable();
    window.loadNavigationTree({}, 1);
    auto* devices =
        window.findChild<QWidget*>("vsviewportDetails_3")->findChild<ui::KeyedTree*>("tvRecipientDevices");
    ASSERT_TRUE(devices->contains("DeviceKey:12"));
    inAbout([&](QWidget& about) { choose(about, "Français (France)"); });
    for (const char* box : {"txtVoiceMail", "txtEmail"})
        EXPECT_EQ(window.findChild<QLineEdit*>(box)->text(), "") << box;
}

TEST_F(About, ChangesEveryLoadedWindowAtOnceTwiceInARow) {
    addLanguages();
    const std::map<long, QString> english = table();
    // A dialog that was used before is loaded, though not shown, and holds what its user typed.
    script.expect("dlgEvent", [](QWidget& dialog) {
        person::chooseRow(*dialog.findChild<QComboBox*>("comboEventSource"), 0);
        person::chooseRow(*dialog.findChild<QComboBox*>("comboEventType"), 2);
        person::type(*dialog.findChild<QLineEdit*>("txtEventTitle"), "typed");
        QTest::mouseClick(dialog.findChild<QPushButton*>("cmdCancel"), Qt::LeftButton);
    });
    person::chooseMenu(window, "mnuFileNewEvent");
    QWidget& dialog = *window.findChild<QWidget*>("dlgEvent");
    auto* types = dialog.findChild<QComboBox*>("comboEventType");
    int edits = 0;
    for (QComboBox* combo : dialog.findChildren<QComboBox*>())
        QObject::connect(combo, &QComboBox::currentIndexChanged, &dialog, [&] { ++edits; });
    for (QLineEdit* box : dialog.findChildren<QLineEdit*>())
        QObject::connect(box, &QLineEdit::textChanged, &dialog, [&] { ++edits; });
    auto* grid = window.findChild<ui::KeyedGrid*>("vsflexgridMonitoredEvents");
    grid->setCurrentGridCell(2, "EventSource");
    const std::string selected = window.tvNavigation->selectedKey();

    inAbout([&](QWidget& about) {
        choose(about, "Deutsch (Deutschland)");
        EXPECT_EQ(about.findChild<QPushButton*>("lblChangeLanguage")->text().toStdString(),
                  "Sprache \xC3\xA4ndern");
        EXPECT_EQ(window.findChild<QMenu*>("mnuFile")->title(), "&Datei");
        EXPECT_EQ(types->itemText(0), ui::text(1027));
        EXPECT_EQ(window.tvNavigation->nodeText(window.tvNavigation->keyAt(3)),
                  modLocalize::myLoadResString(1311));
        expectOnlyPresentWords(english);
        const std::map<long, QString> german = table();
        choose(about, "Français (France)");
        EXPECT_EQ(header(2), ui::text(1142));
        expectOnlyPresentWords(english);
        expectOnlyPresentWords(german);
        EXPECT_EQ(grid->cellText(2, "EventType"), modLocalize::myLoadResString(1028));
        EXPECT_EQ(window.tvNavigation->nodeText("EventKey-3"), "Alarm" + modLocalize::myLoadResString(1150));
    });
    EXPECT_EQ(edits, 0);
    EXPECT_EQ(types->currentIndex(), 2);
    EXPECT_EQ(types->currentText(), ui::text(1029));
    EXPECT_EQ(dialog.findChild<QLineEdit*>("txtEventTitle")->text(), "typed");
    EXPECT_EQ(grid->currentGridRow(), 2);
    EXPECT_TRUE(window.findChild<QPushButton*>("cmdDeleteSelectedEvent")->isEnabled());
    EXPECT_EQ(window.tvNavigation->selectedKey(), selected);
    EXPECT_FALSE(core::gRebuildingControls);
    // Without its library a language is English again.
    inAbout([&](QWidget&) {});
    core::gLanguageId = 1033;
    fs::remove(host.programFolder() / "QLNbrandingres_FRA.dll");
    inAbout([&](QWidget& about) {
        EXPECT_EQ(about.findChild<QMenu*>("mnuSelectLanguage")->actions().size(), 2);
        EXPECT_EQ(about.findChild<QPushButton*>("cmdOk")->text(), "OK");
    });
}

TEST_F(About, DialogsThatWaitHiddenSpeakTheNewLanguageToo) {
    addLanguages();
    script.expect("dlgRecipient", [&](QWidget& dialog) {
        script.expect("dlgSelect", [](QWidget& search) { dynamic_cast<QDialog&>(search).accept(); });
        person::click(dialog, "optionVoiceMailType_0");
        person::click(dialog, "cmdSelectVoiceMail");
        QTest::keyClick(&dialog, Qt::Key_Escape);
    });
    person::chooseMenu(window, "mnuFileNewRecipient");
    inAbout([&](QWidget& about) { choose(about, "Deutsch (Deutschland)"); });
    const std::tuple<const char*, const char*, long> captions[] = {{"dlgRecipient", "lblRecipientName", 1103},
                                                                   {"dlgRecipient", "cmdCancel", 1023},
                                                                   {"dlgSelect", "cmdSearch", 1258}};
    for (const auto& [dialog, control, id] : captions) {
        EXPECT_NE(ui::text(id), modLocalize::englishString(id));
        EXPECT_EQ(
            window.findChild<QWidget*>(dialog)->findChild<QWidget*>(control)->property("text").toString(),
            ui::text(id))
            << dialog << " " << control;
    }
}

TEST_F(About, RemovingTheServiceEndsTheConsole) {
    host.installService();
    support::FastClock clock;
    support::CatchProcessEnd catchEnd;
    int ends = 0;
    QObject::connect(&window, &frmMain::finalExitRequested, &window, [&] { ++ends; });
    EXPECT_TRUE(mdlUtility::myStartService("hbqlnsvc"));
    script.expectBox("Confirm Service Removal", "No", [](QWidget& box) {
        EXPECT_EQ(
            dynamic_cast<QMessageBox&>(box).text(),
            "The Quillon System service must be installed to use this application.  If you remove the "
            "service this application will be closed.\nAn alternative to removing the service is to use "
            "the Service control manager to stop the service.\n\nAre you sure you want to remove the "
            "service?");
    });
    person::chooseMenu(window, "mnuRemoveService");
    EXPECT_EQ(ends, 0);
    EXPECT_EQ(host.processes(), 1);
    script.expectBox("Confirm Service Removal", "Yes");
    clock.slept = std::chrono::seconds(0);
    person::chooseMenu(window, "mnuRemoveService");
    EXPECT_EQ(ends, 1);
    EXPECT_EQ(host.processes(), 0);
    EXPECT_GE(clock.slept, std::chrono::seconds(4)) << "a poll, and the pause to read the notice";
    EXPECT_FALSE(
        platform::registry().keyExists("HKEY_LOCAL_MACHINE\\System\\CurrentControlSet\\Services\\HbQlnSvc"));
}

}  // namespace
