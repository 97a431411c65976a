#include "ui/dialogs/dlgServicePassword.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QPushButton>
#include <QtTest/QTest>

#include "core/state.h"
#include "support/person.h"
#include "support/temporaryHost.h"
#include "support/windowScript.h"
#include "ui/shell/windowServices.h"
#include "ui/widgets/secretEdit.h"

namespace {

std::string taken(ui::SecretEdit& box) {
    return std::string(box.take().view());
}

TEST(SecretEdit, KeepsTheTextAndShowsNoneOfIt) {
    ui::SecretEdit box;
    QTest::keyClicks(&box, "harbour");
    QTest::keyClick(&box, Qt::Key_Backspace);
    QTest::keyClick(&box, Qt::Key_Home);
    QTest::keyClick(&box, Qt::Key_Delete);
    QTest::keyClicks(&box, "H");
    for (const char letter : std::string("harboru"))
        EXPECT_FALSE(box.text().contains(letter)) << letter;
    EXPECT_EQ(box.displayText().size(), 6);
    box.setSelection(1, 3);
    QTest::keyClicks(&box, "-7");
    EXPECT_EQ(taken(box), "H-7ou");
    EXPECT_EQ(box.text(), QString());
    EXPECT_EQ(taken(box), "") << "taken is gone";

    // From the clipboard, over a selection, with letters of every length.
    QTest::keyClicks(&box, "ab");
    box.setSelection(1, 1);
    QApplication::clipboard()->setText(QString::fromUtf8("\xC3\xA9\xE2\x82\xAC\xF0\x9F\x94\x91\""));
    box.paste();
    EXPECT_EQ(taken(box), "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x94\x91\"");
    // What cannot be kept whole is not taken at all: a part of it would be another password.
    const auto paste = [&](const QString& text) { person::paste(box, text); };
    box.show();
    for (const QString& refused : {QString(257, 'x'), QString("x\ny"), QString(QChar(0xE000))}) {
        paste(refused);
        EXPECT_EQ(taken(box), "");
        QTest::keyClicks(&box, "abcdef");
        QTest::keyClick(&box, Qt::Key_A, Qt::ControlModifier);
        paste(refused);
        EXPECT_EQ(taken(box), "abcdef") << "also over a selection";
    }
    paste(QString(256, 'x'));
    QTest::keyClick(&box, 'y');
    EXPECT_EQ(taken(box), std::string(256, 'x'));
    QTest::keyClicks(&box, "abcdef");
    QTest::keyClick(&box, Qt::Key_Home);
    for (int i = 0; i < 2; ++i)
        QTest::keyClick(&box, Qt::Key_Right, Qt::ShiftModifier);
    QTest::keyClick(&box, Qt::Key_Delete);
    QTest::keyClick(&box, Qt::Key_End, Qt::ShiftModifier);
    paste("z");
    EXPECT_EQ(taken(box), "z");
    QTest::keyClicks(&box, "xyz");
    QTest::keyClick(&box, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(&box, Qt::Key_C, Qt::ControlModifier);
    EXPECT_FALSE(QApplication::clipboard()->text().contains('x')) << "nothing is copied out";
}

class ServicePassword : public ::testing::Test {
  protected:
    ServicePassword() : script([](const QString& message) { ADD_FAILURE() << qPrintable(message); }) {}

    support::TemporaryHost host;
    support::WindowScript script;
    ui::WindowServices services;
};

TEST_F(ServicePassword, GivesWhatWasTypedOrNothing) {
    const QWidget* first = nullptr;
    script.expect("dlgServicePassword", [&](QWidget& dialog) {
        first = &dialog;
        EXPECT_EQ(dialog.windowTitle(), "Configuring Quillon Service");
        EXPECT_EQ(dialog.findChild<QLabel*>("lblPrompt")->text(), "Under <b>HOST\\a</b>\n\nPassword:");
        auto* box = dialog.findChild<QLineEdit*>("txtPassword");
        EXPECT_TRUE(box->hasFocus());
        EXPECT_EQ(box->accessibleName(), "Password");
        QTest::keyClicks(box, "harbour-7");
        QTest::keyClick(box, Qt::Key_Return);
    });
    const auto password = platform::passwordPrompt().askPassword("Under <b>HOST\\a</b>\n\nPassword:");
    ASSERT_TRUE(password.has_value());
    EXPECT_EQ(password->view(), "harbour-7");

    script.expect("dlgServicePassword", [&](QWidget& dialog) {
        EXPECT_EQ(&dialog, first) << "the window stays loaded between two prompts";
        auto* box = dialog.findChild<QLineEdit*>("txtPassword");
        EXPECT_EQ(box->text(), "");
        EXPECT_TRUE(box->hasFocus());
        QTest::keyClicks(box, "secret");
        QTest::mouseClick(dialog.findChild<QPushButton*>("cmdCancel"), Qt::LeftButton);
    });
    EXPECT_FALSE(platform::passwordPrompt().askPassword("again").has_value());
    script.expect("dlgServicePassword", [](QWidget& dialog) {
        EXPECT_EQ(dialog.findChild<QLineEdit*>("txtPassword")->text(), "");
        dialog.close();
    });
    EXPECT_FALSE(platform::passwordPrompt().askPassword("again").has_value()) << "closed without a button";
    platform::passwordPrompt().unload();
    script.expect("dlgServicePassword", [](QWidget& dialog) {
        QTest::mouseClick(dialog.findChild<QPushButton*>("cmdOk"), Qt::LeftButton);
    });
    const auto empty = platform::passwordPrompt().askPassword("again");
    EXPECT_TRUE(empty.has_value() && empty->empty());
    EXPECT_EQ(host.countInLog("harbour") + host.countInLog("secret"), 0);
}

}  // namespace
