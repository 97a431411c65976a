// The question of a user's first run, answered on the desktop and in a terminal.
#include <gtest/gtest.h>

#include <QCommandLinkButton>
#include <QDialogButtonBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <cstdlib>
#include <filesystem>

#include "host/firstRun/firstRunWindow.h"
#include "platform/files/files.h"
#include "platform/machine/host.h"
#include "support/temporaryHost.h"

namespace {

namespace fs = std::filesystem;

class FirstRun : public ::testing::Test {
  protected:
    FirstRun() { platform::program::setFile(fs::path(VIEWER_FOLDER) / "quillon-first-run"); }
    ~FirstRun() override { platform::program::setFile({}); }

    bool isHost() const { return fs::exists(tree / "Host" / "registry.reg"); }
    // Gives the exit code.
    int inTerminal(const std::string& answer) const {
        const std::string command = "printf '" + answer +
                                    "\\n' | env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM " +
                                    VIEWER_FOLDER "/quillon-first-run '" + tree.string() + "' >'" +
                                    (scratch.root() / "output").string() + "' 2>&1";
        return WEXITSTATUS(std::system(command.c_str()));
    }

    support::TemporaryHost scratch;
    fs::path tree = scratch.root() / "a tree";
};

TEST_F(FirstRun, MakesTheHostThatIsClickedAndSaysWhatItFound) {
    firstRun::FirstRunWindow window(QString::fromStdString(tree.string()),
                                    firstRun::texts(viewer::Language::german));
    window.show();
    const auto choices = window.findChildren<QCommandLinkButton*>();
    ASSERT_EQ(choices.size(), 2);
    auto* const told = window.findChild<QPlainTextEdit*>();
    EXPECT_FALSE(told->isVisible());
    QTest::mouseClick(choices[0], Qt::LeftButton);
    EXPECT_FALSE(choices[1]->isEnabled()) << "one host is enough";
    EXPECT_TRUE(QTest::qWaitFor([&] { return told->isVisible(); }, 30000));
    EXPECT_TRUE(isHost());
    EXPECT_TRUE(told->toPlainText().contains("Made this machine's host")) << qPrintable(told->toPlainText());
    auto* const focus = qobject_cast<QPushButton*>(window.focusWidget());
    ASSERT_NE(focus, nullptr);
    QTest::keyClick(focus, Qt::Key_Space);
    EXPECT_EQ(window.result(), QDialog::Accepted);

    firstRun::FirstRunWindow again(QString::fromStdString(tree.string()),
                                   firstRun::texts(viewer::Language::english));
    again.show();
    QTest::mouseClick(again.findChildren<QCommandLinkButton*>()[1], Qt::LeftButton);
    EXPECT_TRUE(QTest::qWaitFor([&] { return again.findChild<QPlainTextEdit*>()->isVisible(); }, 30000));
    EXPECT_TRUE(again.findChild<QPlainTextEdit*>()->toPlainText().contains("could not be made"));
    QTest::mouseClick(again.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Cancel), Qt::LeftButton);
    EXPECT_EQ(again.result(), QDialog::Rejected);
}

TEST_F(FirstRun, AsksInTheTerminalWhereThereIsNoDesktop) {
    EXPECT_EQ(inTerminal("perhaps"), 1);
    EXPECT_FALSE(fs::exists(tree));
    EXPECT_EQ(inTerminal("1"), 0);
    EXPECT_TRUE(isHost());
    const std::string output = platform::files::readFile(scratch.root() / "output");
    EXPECT_NE(output.find("Made this machine's host"), std::string::npos) << output;
}

}  // namespace
