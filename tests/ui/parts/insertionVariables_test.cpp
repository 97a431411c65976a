#include "ui/parts/insertionVariables.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QElapsedTimer>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QRandomGenerator>
#include <QScrollBar>
#include <QVBoxLayout>
#include <QtTest/QTest>
#include <algorithm>

#include "core/modLocalize.h"
#include "database/settings.h"
#include "support/colorsOf.h"
#include "support/temporaryHost.h"
#include "support/windowScript.h"
#include "ui/base/messageBoxes.h"
#include "ui/parts/RTBHelpers.h"
#include "ui/widgets/variableTextBox.h"

namespace {

using ui::VariableTextBox;

class InsertionVariables : public ::testing::Test {
  protected:
    InsertionVariables() : script([](const QString& message) { ADD_FAILURE() << qPrintable(message); }) {
        platform::setPrompts(&boxes);
        subject->setObjectName("rtbEmailSubject");
        body->setObjectName("rtbEmailBody");
        auto* layout = new QVBoxLayout(&window);
        for (QWidget* control : std::initializer_list<QWidget*>{subject, body, button})
            layout->addWidget(control);
        window.resize(500, 300);
        subject->setStoredText("s");
        variables.controlInit();
        window.show();
        QApplication::setActiveWindow(&window);
        body->setFocus();
    }
    ~InsertionVariables() override {
        subject->setStoredText("s");
        platform::setPrompts(nullptr);
    }

    static void del(VariableTextBox& box, int times = 1) {
        for (int i = 0; i < times; ++i)
            QTest::keyClick(&box, Qt::Key_Delete);
    }
    static QPoint placeOf(VariableTextBox& box, int index) {
        QTextCursor cursor(box.document());
        cursor.setPosition(index);
        return box.cursorRect(cursor).center() + QPoint(2, 0);
    }
    void chooseAt(VariableTextBox& box, const QPoint& place, const char* entry) {
        script.expectMenu(entry);
        QTest::mouseClick(box.viewport(), Qt::RightButton, {}, place);
        EXPECT_TRUE(
            QTest::qWaitFor([this] { return script.finished() && !variables.mnuVariables->isVisible(); }));
    }

    support::TemporaryHost host;
    ui::MessageBoxes boxes;
    support::WindowScript script;
    QWidget window;
    VariableTextBox* subject = new VariableTextBox(VariableTextBox::Lines::one, &window);
    VariableTextBox* body = new VariableTextBox(VariableTextBox::Lines::many, &window);
    QPushButton* button = new QPushButton("go on", &window);
    int changes = 0;
    ui::InsertionVariables variables{"dlgEvent", window, *subject, *body, [this] { ++changes; }};
};

TEST_F(InsertionVariables, MenuPairsItsCaptionsWithTheirTokens) {
    QStringList captions, tags;
    for (const QAction* entry : variables.mnuVariables->actions()) {
        captions << entry->text();
        tags << entry->data().toString();
    }
    EXPECT_EQ(captions.join(","), "Notes,Type,Date,Time,Source,Category,ID,User,Computer,Description");
    EXPECT_EQ(tags.join(","), RTBHelpers::insertionTokens);
    variables.controlInit();
    EXPECT_EQ(variables.mnuInsert.size(), 10U);
    EXPECT_EQ(variables.mnuVariables->title(), "Variables");
}

TEST_F(InsertionVariables, ColorsEveryWholeTokenAndNothingElse) {
    body->setStoredText("<Notes> a <Type><Type>\r\n<type> <Event <Event>x<<User>");
    EXPECT_EQ(colorsOf(*body),
              "bbbbbbb...bbbbbbbbbbbb..............."
              "bbbbbbb..bbbbbb");
    // A token typed by hand turns blue with its last letter, and black again without it.
    body->setStoredText("a ");
    body->moveCursor(QTextCursor::End);
    QTest::keyClicks(body, "<User");
    EXPECT_EQ(colorsOf(*body), ".......");
    QTest::keyClicks(body, ">!");
    EXPECT_EQ(colorsOf(*body), "..bbbbbb.");
    QTest::keyClick(body, Qt::Key_Backspace);
    QTest::keyClick(body, Qt::Key_Backspace);
    EXPECT_EQ(colorsOf(*body), ".......");
    // A token that comes together over the end of a paragraph.
    body->setStoredText("<Us\r\ner>");
    body->placeCaret(3);
    del(*body);
    EXPECT_EQ(colorsOf(*body), "bbbbbb");
}

TEST_F(InsertionVariables, TheFirstCharacterKeepsItsBlue) {
    body->setStoredText("<Notes>abc");
    EXPECT_EQ(colorsOf(*body), "bbbbbbb...");
    body->placeCaret(3);
    QTest::keyClicks(body, "x");
    EXPECT_EQ(colorsOf(*body), "b..........") << "the token is broken, its first character stays blue";
    body->setStoredText("<Notes>abc");
    body->placeCaret(0);
    del(*body);
    EXPECT_EQ(colorsOf(*body), "b........") << "N moved to the front";
    del(*body, 6);
    EXPECT_EQ(body->toPlainText(), "abc");
    EXPECT_EQ(colorsOf(*body), "b..");
    QTest::keyClicks(body, "x");
    EXPECT_EQ(colorsOf(*body), "....") << "typing goes on in black";

    body->setStoredText("<Notes>abc");
    QTextCursor token(body->document());
    token.setPosition(7, QTextCursor::KeepAnchor);
    token.removeSelectedText();
    EXPECT_EQ(colorsOf(*body), "b..");
    body->setStoredText("abc");
    EXPECT_EQ(colorsOf(*body), "...") << "another text begins in black";
}

TEST_F(InsertionVariables, ColorsAfterAnyEditAreThoseOfAFreshText) {
    QRandomGenerator random(7);
    const QStringList pieces{"<Notes>", "<Type>", "<", ">", "Notes", "\n", " ", "x", "<Event>"};
    for (int i = 0; i < 600; ++i) {
        const int length = static_cast<int>(body->toPlainText().size());
        QTextCursor cursor(body->document());
        // The first character has a memory, so the edits begin behind it.
        cursor.setPosition(length == 0 ? 0 : 1 + static_cast<int>(random.bounded(length)));
        switch (random.bounded(6)) {
            case 0:
                cursor.setPosition(std::min(length, cursor.position() + static_cast<int>(random.bounded(9))),
                                   QTextCursor::KeepAnchor);
                cursor.removeSelectedText();
                break;
            case 1:
                body->undo();
                break;
            case 2:
                body->redo();
                break;
            default:
                cursor.insertText(length == 0 ? "-" : pieces.at(random.bounded(pieces.size())));
        }
        VariableTextBox fresh(VariableTextBox::Lines::many);
        RTBHelpers::colorInsertionTokens(fresh, RTBHelpers::insertionTokens);
        fresh.setStoredText(body->storedText());
        if (body->toPlainText().startsWith('-')) {
            ASSERT_EQ(colorsOf(*body), colorsOf(fresh)) << i << " " << qPrintable(body->toPlainText());
        }
    }
}

TEST_F(InsertionVariables, UndoTakesBackTextAndNeverColors) {
    QTest::keyClicks(body, "abc");
    changes = 0;
    body->placeCaret(3);
    chooseAt(*body, placeOf(*body, 3), "mnuInsert_6");
    EXPECT_EQ(body->toPlainText(), "abc<Event>");
    EXPECT_EQ(body->textCursor().position(), 10);
    EXPECT_EQ(changes, 1);
    QTest::keyClicks(body, "d");
    body->undo();
    EXPECT_EQ(body->toPlainText(), "abc<Event>");
    body->undo();
    EXPECT_EQ(body->toPlainText(), "abc") << "the insertion is a step of its own";
    body->undo();
    EXPECT_EQ(body->toPlainText(), "");
    EXPECT_FALSE(body->document()->isUndoAvailable());
    body->redo();
    body->redo();
    EXPECT_EQ(colorsOf(*body), "...bbbbbbb");
    body->setStoredText("<Notes>");
    EXPECT_FALSE(body->document()->isUndoAvailable()) << "filling is nothing to take back";
}

TEST_F(InsertionVariables, InsertsWhereThePointerWas) {
    subject->setStoredText("hello world");
    changes = 0;
    // The right button moves the caret; the box without the focus becomes the active one.
    chooseAt(*subject, placeOf(*subject, 5), "mnuInsert_0");
    EXPECT_EQ(subject->toPlainText(), "hello<Notes> world");
    EXPECT_EQ(subject->textCursor().position(), 12);
    EXPECT_TRUE(subject->hasFocus());
    chooseAt(*subject, QPoint(subject->viewport()->width() - 3, subject->viewport()->height() / 2),
             "mnuInsert_9");
    EXPECT_EQ(subject->toPlainText(), "hello<Notes> world<Description>");
    EXPECT_EQ(colorsOf(*subject), ".....bbbbbbb......bbbbbbbbbbbbb");
    // A press on the right half of a character means that character.
    const QPoint rightHalf = placeOf(*subject, 1) - QPoint(5, 0);
    chooseAt(*subject, rightHalf, "mnuInsert_1");
    EXPECT_EQ(subject->toPlainText(), "<Type>hello<Notes> world<Description>");
    // A selection is left alone by the insertion, and the keyboard opens the menu at the caret.
    body->setStoredText("one\r\ntwo");
    body->setFocus();
    body->selectAll();
    script.expectMenu("mnuInsert_7");
    QContextMenuEvent key(QContextMenuEvent::Keyboard, QPoint(), body->mapToGlobal(QPoint()));
    QApplication::sendEvent(body, &key);
    EXPECT_TRUE(QTest::qWaitFor([this] { return script.finished(); }));
    EXPECT_EQ(body->storedText(), "one\r\ntwo<User>");
    EXPECT_EQ(changes, 5);
}

TEST_F(InsertionVariables, InsertionLeavesWhatIsScrolled) {
    QString lines;
    for (int i = 0; i < 200; ++i)
        lines += "line\n";
    body->setPlainText(lines);
    body->verticalScrollBar()->setValue(700);
    chooseAt(*body, QPoint(20, 20), "mnuInsert_2");
    EXPECT_EQ(body->verticalScrollBar()->value(), 700);
    EXPECT_TRUE(body->toPlainText().contains("<Date>"));
}

TEST_F(InsertionVariables, ABlankSubjectIsNotLeft) {
    const QString title = "Blank Subject Not Allowed.";
    host.openConfiguration();
    mdlDatabase::makeInitialDatabaseChanges();
    int pressed = 0;
    QObject::connect(button, &QPushButton::clicked, [&] { ++pressed; });
    subject->setStoredText(" ");
    subject->setFocus();
    QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_EQ(pressed, 1) << "blanks are not blank";

    subject->setFocus();
    subject->clear();
    script.expectBox(title, "No", [](QWidget& box) {
        EXPECT_EQ(
            dynamic_cast<QMessageBox&>(box).text(),
            "The e-mail subject field cannot be left blank.\nYou must enter an e-mail subject before you "
            "can leave this field.\nDo you want the default subject?");
    });
    QTest::keyClick(subject, Qt::Key_Tab);
    EXPECT_TRUE(QTest::qWaitFor([&] { return subject->hasFocus(); }));
    script.expectBox(title, "No");
    QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_TRUE(QTest::qWaitFor([&] { return subject->hasFocus(); }));
    EXPECT_EQ(pressed, 1) << "the press is used up by the question";
    EXPECT_FALSE(button->isDown());
    EXPECT_EQ(subject->toPlainText(), "");

    script.expectBox(title, "Yes");
    QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_TRUE(QTest::qWaitFor([&] { return button->hasFocus(); }));
    EXPECT_EQ(subject->toPlainText(),
              "Meridane Corvane server <Type> event, <Source>[<Event>] on <Computer>");
    EXPECT_EQ(std::ranges::count(colorsOf(*subject), 'b'), 6 + 8 + 7 + 10);
    EXPECT_TRUE(script.finished());

    // Neither the menu, nor another window, nor the end of this one is a leaving.
    subject->setFocus();
    subject->clear();
    chooseAt(*subject, QPoint(5, 5), "mnuInsert_0");
    EXPECT_EQ(subject->toPlainText(), "<Notes>");
    subject->clear();
    window.close();
    QTest::qWait(50);
}

// The slowest of some keys typed at four places of a box, in milliseconds.
double slowestKey(QTextEdit& box, const QString& text) {
    box.setPlainText(text);
    double slowest = 0;
    for (const int part : {2, 4, 1, 3}) {
        QTextCursor cursor = box.textCursor();
        cursor.setPosition(static_cast<int>(text.size()) / 4 * part - 60);
        box.setTextCursor(cursor);
        for (const char key : std::string("abc<User>")) {
            QElapsedTimer timer;
            timer.start();
            QTest::keyClick(&box, key);
            slowest = std::max(slowest, static_cast<double>(timer.nsecsElapsed()) / 1e6);
        }
    }
    return slowest;
}

// Not a gate, since the machine may be busy: the figures are for the reader. A paragraph is laid out as a
// whole at each key, which is the toolkit's own time; the bare box shows it.
TEST_F(InsertionVariables, TypingInALargeBody) {
    // 2,000 make a body of 200,000 characters; a debug build takes most of a minute for them.
    const int tokens =
        qEnvironmentVariableIntValue("QLN_TOKENS") > 0 ? qEnvironmentVariableIntValue("QLN_TOKENS") : 200;
    QString lines;
    for (int i = 0; i < tokens; ++i)
        lines +=
            "The service on this machine has told of an event <Source> that it could not place anywhere at "
            "all\n";
    QTextEdit bare(&window);
    window.layout()->addWidget(&bare);
    bare.setFont(body->font());
    bare.show();
    for (const auto& [text, what] :
         {std::pair{lines, "a line each"}, {QString(lines).remove('\n'), "one line"}}) {
        const double ours = slowestKey(*body, text);
        std::printf("slowest key with %d tokens, %s: %.2f ms, in a bare box %.2f ms\n", tokens, what, ours,
                    slowestKey(bare, text));
        EXPECT_EQ(body->toPlainText().count("<User>"), 4);
        EXPECT_EQ(std::ranges::count(colorsOf(*body), 'b'), tokens * 8 + 4 * 6);
    }
}

}  // namespace
