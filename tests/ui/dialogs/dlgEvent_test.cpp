#include "ui/dialogs/dlgEvent.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QRadioButton>
#include <QtTest/QTest>
#include <functional>
#include <set>

#include "core/state.h"
#include "database/settings.h"
#include "platform/files/files.h"
#include "support/colorsOf.h"
#include "support/person.h"
#include "support/scriptedPrompts.h"
#include "support/temporaryHost.h"
#include "support/windowScript.h"
#include "ui/base/controls.h"
#include "ui/widgets/limitsSign.h"
#include "ui/widgets/variableTextBox.h"

namespace {

using platform::BoxButtons;
using platform::BoxIcon;

class EventDialog : public ::testing::Test {
  protected:
    EventDialog() : script([](const QString& message) { ADD_FAILURE() << qPrintable(message); }) {
        core::gCorvaneFourOrLater = true;
        for (const char* source : {"Disk", "DiskMonitor", "MeridaneCorvane_Store"})
            host.setRegistry("System\\CurrentControlSet\\Services\\EventLog\\System\\" + std::string(source),
                             "EventMessageFile", source);
        host.openConfiguration();
        mdlDatabase::makeInitialDatabaseChanges();
    }

    template <class Control>
    Control& find(const char* name) {
        return *dialog.findChild<Control*>(name);
    }
    // Shows the dialog, works in it, and closes it with Escape.
    void work(const std::function<void()>& inside) {
        script.expect("dlgEvent", [&](QWidget& window) {
            inside();
            QTest::keyClick(&window, Qt::Key_Escape);
        });
        dialog.displayForm();
        EXPECT_TRUE(dialog.cancelled);
    }
    // What the import may change.
    std::string shown() {
        return std::to_string(find<QComboBox>("comboEventSource").currentIndex()) + "|" +
               (find<QRadioButton>("optionEventId_1").isChecked() ? "id " : "all ") +
               find<QLineEdit>("tdbnlSpecificEventId").text().toStdString() + "|" +
               std::to_string(find<QComboBox>("comboEventType").currentIndex());
    }
    void import(const std::string& text) {
        QApplication::clipboard()->setText(QString::fromStdString(text));
        QTest::mouseClick(&find<QPushButton>("cmdImportFromClipboard"), Qt::LeftButton);
    }
    void refuses(const std::string& text) {
        expectWarning();
        const std::string before = shown();
        import(text);
        EXPECT_EQ(shown(), before);
    }
    void expectWarning() {
        prompts.expect(
            {"Clipboard data does not appear to be Event data.  Please see the 'How to import events "
             "from the Event Viewer' section in the help file.",
             "No Event Data Found", BoxIcon::exclamation, BoxButtons::ok},
            platform::BoxAnswer::ok);
    }
    static std::string copied(const std::string& typeLine, const std::string& sourceLine,
                              const std::string& idLine) {
        return typeLine + "\r\n" + sourceLine + "\r\nCategory:\tNone\r\n" + idLine +
               "\r\nDate:\t\t1\r\nTime:\t\t2\r\nUser:\t\t3\r\nComputer:\t4\r\nDescription:\r\ntext";
    }

    support::TemporaryHost host;
    support::ScriptedPrompts prompts;
    support::WindowScript script;
    dlgEvent dialog{nullptr};
};

TEST_F(EventDialog, ImportsACopiedEventInEveryLanguage) {
    work([&] {
        auto& ok = find<QPushButton>("cmdOk");
        EXPECT_FALSE(ok.isEnabled());
        import(copied("Ereignistyp:\tWarnung", "Ereignisquelle:\tmeridanecorvane_STORE",
                      "Ereigniskennung:\t4711"));
        EXPECT_EQ(shown(), "2|id 4711|1");
        EXPECT_TRUE(find<QLineEdit>("tdbnlSpecificEventId").isVisible());
        EXPECT_TRUE(ok.isEnabled()) << "the import makes the event whole";
        import(
            copied("Type de l'événement :\tInformations", "Source de l'événement :\tDiskM", "ID :\t 0051"));
        EXPECT_EQ(shown(), "1|id 51|2") << "the beginning of a source will do";
        import(copied("Event Type:\tError", "Event Source:\tDisk", "Event ID:\t7"));
        EXPECT_EQ(shown(), "0|id 7|0");
        EXPECT_EQ(dialog.newEvent().eventId, "7");
    });
}

TEST_F(EventDialog, RefusesEveryOtherClipboardAndChangesNothing) {
    const std::string type = "Event Type:\tWarning", source = "Event Source:\tDisk", id = "Event ID:\t7";
    work([&] {
        import(copied(type, source, id));
        const std::string lineFeeds =
            QString::fromStdString(copied(type, source, id)).remove('\r').toStdString();
        for (const std::string& text :
             {std::string("no event"), lineFeeds, copied(type, "Event Source:\tMy:Disk", id),
              copied(type, "Event Source:\tUnknown", id), copied(type, source, "Event ID:\tseven"),
              copied(type, source, "Event ID:\t9999999999999999"), copied(type, source, "Event ID:\t"),
              copied(type, std::string("Event Source:\tDisk\0", 19), id),
              copied(type, source, std::string("Event ID:\t7\0", 12)), std::string(1'000'000, 'x'),
              copied(type, "Event Source:\t" + std::string(1'000'000, 'x'), id)})
            refuses(text);
        auto* picture = new QMimeData;
        picture->setImageData(QImage(2, 2, QImage::Format_RGB32));
        QApplication::clipboard()->setMimeData(picture);
        expectWarning();
        QTest::mouseClick(&find<QPushButton>("cmdImportFromClipboard"), Qt::LeftButton);
        EXPECT_EQ(shown(), "0|id 7|1");
    });
}

TEST_F(EventDialog, BrowsesForAVoiceFileThatEndsInTheDatabaseFolder) {
    const std::string chosen = (host.root() / "call.wav").string();
    platform::files::writeFile(chosen, "new");
    const platform::FileQuestion question{"Select the voice file to use for voicemail notification.",
                                          "Audio file (*.wav)|*.wav", ".wav", host.databaseFolder().string()};
    work([&] {
        auto& name = find<QLineEdit>("txtVoiceMailFileName");
        auto& browse = find<QPushButton>("cmdVoiceMailBrowse");
        EXPECT_EQ(name.text(), "QLN_Default_ENU.wav");
        prompts.expectFile(question, std::nullopt);
        QTest::mouseClick(&browse, Qt::LeftButton);
        prompts.expectFile(question, chosen + " that vanished");
        QTest::mouseClick(&browse, Qt::LeftButton);
        EXPECT_EQ(name.text(), "QLN_Default_ENU.wav") << "without a result the old name stays";
        prompts.expectFile(question, chosen);
        QTest::mouseClick(&browse, Qt::LeftButton);
        EXPECT_EQ(name.text(), "call.wav");
        EXPECT_TRUE(platform::files::fileExists(host.databaseFolder() / "call.wav"));
    });
}

TEST_F(EventDialog, IsNamedReachableByKeyboardAndClosesWithABlankSubject) {
    work([&] {
        EXPECT_EQ(find<QLabel>("Label2").text(), "Right-click for menu of insertion strings.");
        EXPECT_EQ(find<QPushButton>("cmdImportFromClipboard").toolTip(),
                  "Import Event Source and ID from clipboard.");
        EXPECT_EQ(colorsOf(find<ui::VariableTextBox>("rtbEmailSubject")).at(25), 'b')
            << "the defaults are coloured";
        std::set<QWidget*> reached;
        for (QWidget* control = dialog.focusWidget(); control && reached.insert(control).second;
             control = dialog.focusWidget()) {
            EXPECT_FALSE(control->accessibleName().isEmpty() && !qobject_cast<QAbstractButton*>(control))
                << qPrintable(control->objectName());
            QTest::keyClick(control, Qt::Key_Tab);
        }
        for (const char* name : {"cmdVoiceMailBrowse", "cmdImportFromClipboard", "cmdOpenEventViewer",
                                 "cmdCancel", "rtbEmailBody", "comboEmailPriority", "txtEventTitle"})
            EXPECT_TRUE(reached.contains(&find<QWidget>(name))) << name;
        find<QWidget>("rtbEmailSubject").setFocus();
        find<ui::VariableTextBox>("rtbEmailSubject").clear();
    });
}

TEST_F(EventDialog, OpensTheEventViewerMaximizedAndStaysOpen) {
    const auto seen = host.root() / "seen";
    platform::files::writeFile(host.programFolder() / "EventVwr",
                               "#!/bin/sh\nprintf '%s' \"$#$QLN_WINDOW\" > '" + seen.string() +
                                   ".new'\nmv '" + seen.string() + ".new' '" + seen.string() + "'\n",
                               0700);
    work([&] {
        QTest::mouseClick(&find<QPushButton>("cmdOpenEventViewer"), Qt::LeftButton);
        ASSERT_TRUE(QTest::qWaitFor([&] { return platform::files::fileExists(seen); }));
        EXPECT_EQ(platform::files::readFile(seen), "0maximized");
        EXPECT_TRUE(dialog.isVisible());
    });
}

TEST_F(EventDialog, EnterDoesNotCarryABlankSubjectPastItsQuestion) {
    work([&] {
        person::chooseRow(find<QComboBox>("comboEventSource"), 0);
        auto& subject = find<ui::VariableTextBox>("rtbEmailSubject");
        subject.setFocus();
        subject.clear();
        prompts.expect(
            {"The e-mail subject field cannot be left blank.\nYou must enter an e-mail subject before "
             "you can leave this field.\nDo you want the default subject?",
             "Blank Subject Not Allowed.", BoxIcon::question, BoxButtons::yesNo},
            platform::BoxAnswer::no);
        QTest::keyClick(&subject, Qt::Key_Return);
        EXPECT_TRUE(dialog.isVisible());
        EXPECT_TRUE(QTest::qWaitFor([&] { return subject.hasFocus(); }));
    });
}

TEST_F(EventDialog, AnIdThatNoEventCanHaveIsAnsweredWhileItIsTyped) {
    work([&] {
        auto& ok = find<QPushButton>("cmdOk");
        auto& id = find<QLineEdit>("tdbnlSpecificEventId");
        const auto& limits = *dialog.findChild<ui::LimitsSign*>();
        person::chooseRow(find<QComboBox>("comboEventSource"), 0);
        person::click(find<QRadioButton>("optionEventId_1"));
        QTest::keyClicks(&id, "2147483648");
        EXPECT_EQ(id.text(), "2147483648");
        EXPECT_FALSE(ok.isEnabled());
        EXPECT_TRUE(limits.isVisible());
        EXPECT_EQ(limits.limits(), QString::fromUtf8("-2147483648 \xe2\x80\x93 2147483647"));
        QTest::keyClick(&id, Qt::Key_Backspace);
        EXPECT_TRUE(ok.isEnabled());
        EXPECT_FALSE(limits.isVisible());
        for (const char* fits : {"2147483647", "-2147483648", "0"}) {
            person::type(id, fits);
            EXPECT_TRUE(ok.isEnabled()) << fits;
        }
        import(copied("Event Type:\tError", "Event Source:\tDisk", "Event ID:\t999999999999999"));
        EXPECT_EQ(shown(), "0|id 999999999999999|0");
        EXPECT_TRUE(limits.isVisible());
        person::click(find<QRadioButton>("optionEventId_0"));
        EXPECT_FALSE(limits.isVisible()) << "all ids need no number";
        EXPECT_TRUE(ok.isEnabled());
    });
}

TEST(SetComboText, TakesTheFirstRowThatBeginsWithTheText) {
    QComboBox combo;
    combo.addItems({"Alarm", "FooBar", "Foo"});
    EXPECT_TRUE(ui::setComboText("foo", combo));
    EXPECT_EQ(combo.currentText(), "FooBar");
    EXPECT_FALSE(ui::setComboText("Foos", combo));
    EXPECT_EQ(combo.currentText(), "FooBar");
}

}  // namespace
