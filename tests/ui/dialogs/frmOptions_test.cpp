#include "ui/dialogs/frmOptions.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QTabBar>
#include <QTabWidget>
#include <functional>
#include <set>

#include "platform/files/files.h"
#include "support/colorsOf.h"
#include "support/mainWindowFixture.h"
#include "ui/widgets/limitedNumberBox.h"
#include "ui/widgets/variableTextBox.h"

namespace {

using platform::BoxAnswer;
using Lines = std::vector<std::string>;

class Options : public uiTest::MainWindow {
  protected:
    // Opens the window by its menu entry, works in it and, if it is still open, cancels it.
    void work(const std::function<void()>& inside) {
        if (!window)
            open();
        script.expect("frmOptions", [&](QWidget& shown) {
            options = &shown;
            inside();
            if (shown.isVisible())
                QTest::mouseClick(&in<QPushButton>("cmdCancel"), Qt::LeftButton);
        });
        chooseMenu("mnuOptions");
    }
    template <class Control>
    Control& in(const char* name) {
        return *options->findChild<Control*>(name);
    }
    void click(const char* button) { person::click(*options, button); }
    void showTab(int tab) { person::showPage(in<QTabWidget>("sstabOptions"), tab); }
    void type(const char* control, const char* keys) { person::type(in<QWidget>(control), keys); }
    void expectQuestion(BoxAnswer answer) {
        prompts.expect(
            {"The e-mail subject field cannot be left blank.\nYou must enter an e-mail subject before "
             "you can leave this field.\nDo you want the default subject?",
             "Blank Subject Not Allowed.", platform::BoxIcon::question, platform::BoxButtons::yesNo},
            answer);
    }
    std::string stored(const std::string& setting) { return mdlDatabase::getConfigurationSetting(setting); }

    QWidget* options = nullptr;
};

TEST_F(Options, ShowsWhatIsStoredAndSavesAllTenInTheirOrder) {
    run("UPDATE Configuration SET Value = '2' WHERE Setting = 'PollingInterval';"
        "UPDATE Configuration SET Value = '14' WHERE Setting = 'ReportDataAging';"
        "UPDATE Configuration SET Value = 'True' WHERE Setting = 'MaxDiag';"
        "UPDATE Configuration SET Value = '0' WHERE Setting = 'DefaultEmailPriority';"
        "CREATE TABLE Written(Setting TEXT, Value TEXT);"
        "CREATE TRIGGER written AFTER UPDATE ON Configuration BEGIN "
        "INSERT INTO Written VALUES(new.Setting, new.Value); END");
    work([&] {
        EXPECT_EQ(in<QTabWidget>("sstabOptions").currentIndex(), 0);
        EXPECT_EQ(in<ui::LimitedNumberBox>("tdbnumliteNoficationInterval").value(), 15);
        EXPECT_EQ(in<ui::LimitedNumberBox>("tdbnumliteEventlogPollingInterval").value(), 2);
        EXPECT_EQ(in<ui::LimitedNumberBox>("tdbnumliteReportDataAging").value(), 14);
        EXPECT_TRUE(in<QCheckBox>("chkWarnOnDuplicateMonitoredEvents").isChecked());
        EXPECT_FALSE(in<QCheckBox>("chkMaxDiagnostics").isChecked()) << "anything but -1 reads as clear";
        EXPECT_EQ(in<QComboBox>("comboVoiceMailPriority").currentText(), "Normal");
        EXPECT_EQ(in<QComboBox>("comboEmailPriority").currentIndex(), -1) << "a stored 0 has no row";
        type("tdbnumliteNoficationInterval", "120");
        person::click(*options, "chkWarnOnDuplicateMonitoredEvents");
        person::click(*options, "chkMaxDiagnostics");
        showTab(1);
        EXPECT_EQ(colorsOf(in<ui::VariableTextBox>("rtbEmailSubject")).at(25), 'b') << "the tokens stand out";
        type("txtVoiceMailFileName", "it's.wav");
        person::chooseRow(in<QComboBox>("comboVoiceMailPriority"), 0);
        type("rtbEmailSubject", "<Type> now");
        type("rtbEmailBody", "one");
        QTest::keyClick(&in<QWidget>("rtbEmailBody"), Qt::Key_Return);
        QTest::keyClicks(&in<QWidget>("rtbEmailBody"), "<Notes>");
        click("cmdOk");
        EXPECT_FALSE(options->isVisible());
    });
    EXPECT_EQ(rows("SELECT * FROM Written"),
              (Lines{"EventNotificationInterval|120", "PollingInterval|2", "ReportDataAging|14",
                     "DefaultWavAttachment|it's.wav", "DefaultEmailSubject|<Type> now",
                     "DefaultEmailBody|one\r\n<Notes>", "WarnOnDuplicateMonitoredEvents|0", "MaxDiag|-1",
                     "DefaultEmailPriority|0", "DefaultVoiceMailPriority|2"}));
    EXPECT_EQ(host.countInLog("ERROR", "loadOptions", "Err.Number = 5 "), 1) << "the list lacks Low";
    EXPECT_EQ(host.countInLog("Err.Number"), 1);
}

TEST_F(Options, ApplyKeepsWhatCancelWouldLose) {
    work([&] {
        type("tdbnumliteReportDataAging", "7");
        click("cmdApply");
        EXPECT_TRUE(options->isVisible());
        type("tdbnumliteReportDataAging", "9");
        click("cmdCancel");
        EXPECT_FALSE(options->isVisible());
    });
    EXPECT_EQ(stored("ReportDataAging"), "7");
}

TEST_F(Options, SettingsThatCouldNotBeReadAreNotOverwritten) {
    run("UPDATE Configuration SET Value = '77' WHERE Setting = 'EventNotificationInterval';"
        "UPDATE Configuration SET Value = 'mine' WHERE Setting = 'DefaultEmailSubject'");
    const Lines before = rows("SELECT * FROM Configuration ORDER BY Setting");
    // All of them, and one in the middle alone.
    for (const char* unreadable : {"SELECT * FROM NoSuchTable",
                                   "SELECT Setting, "
                                   "CASE Setting WHEN 'DefaultEmailPriority' THEN "
                                   "abs(-9223372036854775807 - 1) ELSE Value END AS Value FROM Kept"}) {
        open();
        run("ALTER TABLE Configuration RENAME TO Kept; CREATE VIEW Configuration AS " +
            std::string(unreadable));
        work([&] {
            run("DROP VIEW Configuration; ALTER TABLE Kept RENAME TO Configuration");
            for (const char* button : {"cmdApply", "cmdOk"}) {
                EXPECT_FALSE(in<QPushButton>(button).isEnabled());
                QTest::mouseClick(&in<QPushButton>(button), Qt::LeftButton);
            }
            EXPECT_TRUE(options->isVisible());
        });
        EXPECT_EQ(rows("SELECT * FROM Configuration ORDER BY Setting"), before);
        EXPECT_GE(host.countInLog("ERROR", "getConfigurationSetting", "Err.Number"), 1);
    }
    // The next opening reads anew.
    work([&] { click("cmdOk"); });
    EXPECT_EQ(rows("SELECT * FROM Configuration ORDER BY Setting"), before);
}

TEST_F(Options, BoxesRefuseNumbersOutsideTheirLimitsAndShowIt) {
    run("UPDATE Configuration SET Value = '999' WHERE Setting = 'ReportDataAging'");
    work([&] {
        EXPECT_EQ(in<ui::LimitedNumberBox>("tdbnumliteReportDataAging").value(), 14)
            << "a stored number outside the limits gives way to the default";
        auto& interval = in<ui::LimitedNumberBox>("tdbnumliteNoficationInterval");
        type("tdbnumliteNoficationInterval", "121");
        EXPECT_EQ(interval.value(), 12) << "the digit too much is refused";
        EXPECT_TRUE(interval.refuses());
        const auto signs = interval.limits()->findChildren<QLabel*>();
        EXPECT_TRUE(signs.at(0)->isVisible());
        EXPECT_EQ(signs.at(1)->text(), QString::fromUtf8("1 \xe2\x80\x93 120"));
        EXPECT_TRUE(signs.at(1)->font().bold());
        type("tdbnumliteNoficationInterval", "15");
        EXPECT_FALSE(interval.refuses());
        EXPECT_FALSE(signs.at(0)->isVisible());

        // A number that is too low, or none, gives way to the last one when the box is left, by whatever way.
        auto& polling = in<ui::LimitedNumberBox>("tdbnumliteEventlogPollingInterval");
        type("tdbnumliteEventlogPollingInterval", "45");
        EXPECT_EQ(polling.value(), 45) << "its first digit alone is no number too low";
        type("tdbnumliteEventlogPollingInterval", "1");
        QTest::keyClick(&polling, Qt::Key_Return);
        EXPECT_TRUE(options->isVisible()) << "the default button is not pressed";
        EXPECT_EQ(polling.text(), "45");
        EXPECT_TRUE(polling.refuses());
        QTest::keyClick(&polling, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(&polling, Qt::Key_Delete);
        EXPECT_FALSE(polling.refuses());
        click("cmdOk");
        EXPECT_TRUE(options->isVisible()) << "the press shows the refusal";
        EXPECT_TRUE(polling.refuses());
        EXPECT_EQ(polling.text(), "45");
        click("cmdOk");
        EXPECT_FALSE(options->isVisible());
    });
    EXPECT_EQ(stored("PollingInterval"), "45");
    EXPECT_EQ(stored("EventNotificationInterval"), "15");
}

TEST_F(Options, ABlankSubjectIsAskedAboutBeforeAnythingElse) {
    const std::string before = stored("DefaultEmailSubject");
    work([&] {
        auto& subject = in<ui::VariableTextBox>("rtbEmailSubject");
        showTab(1);
        type("rtbEmailSubject", "");
        expectQuestion(BoxAnswer::no);
        click("cmdOk");
        EXPECT_TRUE(options->isVisible());
        QTest::qWait(1);
        EXPECT_TRUE(subject.hasFocus());
        // The Enter key presses OK without moving the focus.
        expectQuestion(BoxAnswer::no);
        QTest::keyClick(&subject, Qt::Key_Return);
        EXPECT_TRUE(options->isVisible());
        QTest::qWait(1);
        EXPECT_TRUE(subject.hasFocus());
        // The keyboard turns the page.
        expectQuestion(BoxAnswer::no);
        QTest::keyClick(&subject, Qt::Key_Tab, Qt::ControlModifier);
        EXPECT_EQ(in<QTabWidget>("sstabOptions").currentIndex(), 1);
        QTest::qWait(1);
        EXPECT_TRUE(subject.hasFocus());
        auto& tabs = *in<QTabWidget>("sstabOptions").tabBar();
        expectQuestion(BoxAnswer::no);
        QTest::mouseClick(&tabs, Qt::LeftButton, {}, tabs.tabRect(0).center());
        EXPECT_EQ(in<QTabWidget>("sstabOptions").currentIndex(), 1);
        QTest::qWait(1);
        mdlDatabase::setConfigurationSetting("DefaultEmailSubject", "stored <Date>");
        expectQuestion(BoxAnswer::yes);
        QTest::keyClick(&subject, Qt::Key_Return);
        EXPECT_FALSE(options->isVisible()) << "with the default subject OK goes on";
    });
    EXPECT_NE(before, "stored <Date>");
    EXPECT_EQ(stored("DefaultEmailSubject"), "stored <Date>");
}

TEST_F(Options, AVoiceFileIsCopiedAndStoredByItsName) {
    platform::files::writeFile((host.root() / "call.wav").string(), "sound");
    prompts.expectFile({"Select the voice file to use for voicemail notification.",
                        "Audio file (*.wav)|*.wav", ".wav", host.databaseFolder().string()},
                       (host.root() / "call.wav").string());
    work([&] {
        showTab(1);
        click("cmdVoiceMailBrowse");
        EXPECT_EQ(in<QLineEdit>("txtVoiceMailFileName").text(), "call.wav");
        click("cmdOk");
    });
    EXPECT_EQ(stored("DefaultWavAttachment"), "call.wav");
    EXPECT_TRUE(platform::files::fileExists(host.databaseFolder() / "call.wav"));
}

TEST_F(Options, IsNamedAndReachableByKeyboard) {
    work([&] {
        std::set<QWidget*> reached;
        for (const int tab : {0, 1}) {
            showTab(tab);
            std::set<QWidget*> here;
            for (QWidget* control = options->focusWidget(); control && here.insert(control).second;
                 control = options->focusWidget()) {
                EXPECT_FALSE(control->accessibleName().isEmpty() &&
                             !qobject_cast<QAbstractButton*>(control) && !qobject_cast<QTabBar*>(control))
                    << qPrintable(control->objectName());
                QTest::keyClick(control, Qt::Key_Tab);
            }
            reached.merge(here);
        }
        for (const char* name : {"tdbnumliteReportDataAging", "chkMaxDiagnostics", "cmdVoiceMailBrowse",
                                 "rtbEmailBody", "comboEmailPriority", "cmdApply"})
            EXPECT_TRUE(reached.contains(&in<QWidget>(name))) << name;
    });
}

}  // namespace
