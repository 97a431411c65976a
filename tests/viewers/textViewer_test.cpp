#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QtTest/QTest>
#include <fstream>

#include "host/textViewer/growingFile.h"
#include "host/textViewer/textWindow.h"
#include "platform/failure.h"
#include "platform/machine/host.h"
#include "platform/machine/process.h"
#include "support/person.h"
#include "support/temporaryHost.h"

namespace {

class TextViewer : public ::testing::Test {
  protected:
    void write(const std::string& text, std::ios::openmode mode = std::ios::app) {
        std::ofstream(file, mode | std::ios::binary) << text;
    }

    support::TemporaryHost host;
    std::filesystem::path file = host.root() / "service log.txt";
};

TEST_F(TextViewer, FollowsAFileThatGrowsIsCutAndIsReplaced) {
    write("first\r\nZo\xC3");
    viewer::TextWindow window(file, viewer::Language::english);
    auto& text = *window.findChild<QPlainTextEdit*>("txtFile");
    EXPECT_TRUE(text.isReadOnly());
    // A character that arrives in halves.
    write("\xAB\nend");
    window.lookAgain();
    EXPECT_EQ(text.toPlainText(), QString::fromUtf8("first\nZoë\nend"));
    write("new", std::ios::trunc);
    window.lookAgain();
    EXPECT_EQ(text.toPlainText(), "new");
    std::filesystem::rename(file, host.root() / "old.txt");
    window.lookAgain();
    EXPECT_EQ(text.toPlainText(), "new") << "a file that is away for now keeps what is shown";
    write("another file, and longer");
    window.lookAgain();
    EXPECT_EQ(text.toPlainText(), "another file, and longer");
}

TEST_F(TextViewer, FindsRoundTheEndAndStaysWhereItIsUnlessItFollows) {
    for (int i = 0; i < 300; ++i)
        write("line " + std::to_string(i) + "\n");
    viewer::TextWindow window(file, viewer::Language::english);
    window.show();
    QApplication::setActiveWindow(&window);
    auto& text = *window.findChild<QPlainTextEdit*>("txtFile");
    auto& find = *window.findChild<QLineEdit*>("txtFind");
    EXPECT_EQ(text.verticalScrollBar()->value(), 0);
    QTest::keyClicks(&find, "LINE 7");
    EXPECT_EQ(text.textCursor().blockNumber(), 7) << "found while it is typed";
    for (const int line : {70, 71}) {
        QTest::keyClick(&find, Qt::Key_Return);
        EXPECT_EQ(text.textCursor().blockNumber(), line);
    }
    text.moveCursor(QTextCursor::Start);
    QTest::keyClick(&window, Qt::Key_F3, Qt::ShiftModifier);
    EXPECT_EQ(text.textCursor().blockNumber(), 79);
    person::type(find, "nowhere");
    QTest::keyClick(&find, Qt::Key_Return);
    EXPECT_EQ(window.findChild<QLabel*>("lblResult")->text(), "Not found: nowhere");
    EXPECT_EQ(text.textCursor().blockNumber(), 79);

    text.verticalScrollBar()->setValue(50);
    write("more\n");
    window.lookAgain();
    EXPECT_EQ(text.verticalScrollBar()->value(), 50);
    person::click(window, "chkFollow");
    write("still more\n");
    window.lookAgain();
    EXPECT_EQ(text.verticalScrollBar()->value(), text.verticalScrollBar()->maximum());
}

TEST_F(TextViewer, RefusesWhatIsNoFileAndReadsTheEndOfALargeOne) {
    EXPECT_THROW(viewer::TextWindow(file, viewer::Language::english), platform::Failure);
    EXPECT_THROW(viewer::TextWindow(host.root(), viewer::Language::english), platform::Failure);
    write("0123456789");
    viewer::GrowingFile growing(file, 4);
    EXPECT_EQ(growing.look().bytes, "6789");
    EXPECT_EQ(growing.leftOut(), 6U);
    EXPECT_EQ(growing.look().bytes, "");
}

// What starts the viewers: their names without regard to case, beside the running program, and the wish.
TEST_F(TextViewer, IsFoundBesideTheRunningProgramWithItsWishForAWindow) {
    const std::filesystem::path program = host.programFolder() / "EVENTvwr";
    const std::filesystem::path answer = host.root() / "answer";
    std::ofstream(program) << "#!/bin/sh\necho \"$QLN_WINDOW\" > '" << answer.string() << ".new'\nmv '"
                           << answer.string() << ".new' '" << answer.string() << "'\n";
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    const auto answered = [&](platform::ProgramWindow window) {
        std::filesystem::remove(answer);
        platform::startDetached("EventVwr", window);
        EXPECT_TRUE(QTest::qWaitFor([&] { return std::filesystem::exists(answer); }));
        std::string line;
        std::getline(std::ifstream(answer) >> std::noskipws, line);
        return line;
    };
    EXPECT_EQ(answered(platform::ProgramWindow::maximized), "maximized");
    EXPECT_EQ(answered(platform::ProgramWindow::normal), "");
    for (const char* name : {"EventVwr", "notepad"})
        EXPECT_TRUE(std::filesystem::exists(std::filesystem::path(VIEWER_FOLDER) / name));
}

}  // namespace
