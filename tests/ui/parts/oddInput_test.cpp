// What is typed, pasted and stored that no window was drawn for: it is held, bounded or refused, and nothing
// that was typed is dropped.
#include <gtest/gtest.h>

#include <QComboBox>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QScreen>
#include <QTextBlock>
#include <QTextLayout>
#include <QtTest/QTest>

#include "database/exclusions.h"
#include "support/mainWindowFixture.h"
#include "support/person.h"
#include "ui/base/formFonts.h"
#include "ui/base/messageBoxes.h"
#include "ui/dialogs/dlgAddExclusion.h"
#include "ui/dialogs/dlgEvent.h"
#include "ui/dialogs/dlgExclusions.h"
#include "ui/dialogs/dlgRecipient.h"
#include "ui/parts/deviceTabs.h"
#include "ui/widgets/entryList.h"
#include "ui/widgets/limitsSign.h"
#include "ui/widgets/textList.h"
#include "ui/widgets/variableTextBox.h"

namespace {

using ui::VariableTextBox;

using person::paste;

class OddInput : public uiTest::MainWindow {
  protected:
    void addLongSource(int length) {
        host.setRegistry(uiTest::sourcesKey + std::string(static_cast<std::size_t>(length), 'W'),
                         "EventMessageFile", "x");
    }
};

TEST_F(OddInput, EnterAddsAnAddressAndDoesNotCloseTheDialog) {
    dlgRecipient dialog(nullptr);
    script.expect("dlgRecipient", [&](QWidget& shown) {
        QTest::keyClicks(shown.findChild<QLineEdit*>("txtRecipientName"), "Ana");
        auto* box = shown.findChild<QLineEdit*>("txtSMTPAddress");
        auto* list = shown.findChild<ui::EntryList*>("lstSMTPAddresses");
        ASSERT_TRUE(box && list);
        QTest::keyClicks(box, "no address");
        QTest::keyClick(box, Qt::Key_Return);
        EXPECT_TRUE(shown.isVisible());
        EXPECT_EQ(box->text(), "no address");
        box->clear();
        QTest::keyClicks(box, "ana@example.net");
        QTest::keyClick(box, Qt::Key_Return);
        EXPECT_TRUE(shown.isVisible());
        ASSERT_EQ(list->count(), 1);
        EXPECT_EQ(list->entryText(0), "ana@example.net");
        QTest::mouseClick(shown.findChild<QPushButton*>("cmdOk"), Qt::LeftButton);
    });
    dialog.displayForm();
    EXPECT_FALSE(dialog.cancelled);
}

// Apply and OK mean what was typed, whether or not it was added first.
TEST_F(OddInput, AnAddressThatWasTypedAndNotAddedIsSaved) {
    const auto addresses = [&] { return rows("SELECT DeviceAddress FROM Device ORDER BY DeviceKey"); };
    open();
    script.expect("dlgRecipient", [&](QWidget& dialog) {
        person::type(*dialog.findChild<QLineEdit*>("txtRecipientName"), "Ana");
        auto* box = dialog.findChild<QLineEdit*>("txtSMTPAddress");
        person::showPage(*dialog.findChild<ui::DeviceTabs*>(), 3);
        person::type(*box, "a@b\n");
        person::type(*box, "c@d");
        person::click(dialog, "cmdOk");
    });
    clickNode("keyRecipients");
    press("cmdCreateNewRecipient");
    EXPECT_EQ(addresses(), (std::vector<std::string>{"a@b", "c@d"}));

    auto& pane = *find<QWidget>("vsviewportDetails_3");
    auto* box = pane.findChild<QLineEdit*>("txtSMTPAddress");
    auto* list = pane.findChild<ui::EntryList*>("tvSMTPAddresses");
    const auto show = [&](int entry) {
        person::showPage(*pane.findChild<ui::DeviceTabs*>(), 3);
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                          list->visualItemRect(list->item(entry)).center());
    };
    show(1);
    person::type(*box, "new@d");
    press("cmdRecipientApply");
    EXPECT_EQ(addresses(), (std::vector<std::string>{"a@b", "new@d"}));
    // What a deletion leaves in the box was not typed, and what is no address is not added.
    show(0);
    person::click(pane, "cmdDeleteSMTPAddress");
    EXPECT_EQ(box->text(), "a@b");
    press("cmdRecipientApply");
    EXPECT_EQ(addresses(), std::vector<std::string>{"new@d"});
    person::showPage(*pane.findChild<ui::DeviceTabs*>(), 3);
    person::type(*box, "none");
    press("cmdRecipientApply");
    EXPECT_EQ(addresses(), std::vector<std::string>{"new@d"});
}

TEST(OddInputAlone, ASubjectStaysOnOneLineHoweverItComes) {
    VariableTextBox subject(VariableTextBox::Lines::one);
    subject.show();
    const QString odd =
        QString("a\r\nb\nc\rd") + QChar(0x2028) + "e" + QChar(0x2029) + "f" + QChar(0x0B) + "g";
    paste(subject, odd);
    EXPECT_EQ(subject.storedText(), "a b c d e f g");
    subject.setStoredText(ui::toUtf8(odd));
    EXPECT_EQ(subject.storedText(), "a b c d e f g");
    for (const int lineEnd : {0x2028, 0x2029}) {
        QKeyEvent key(QEvent::KeyPress, Qt::Key_unknown, {}, QString(QChar(lineEnd)));
        QGuiApplication::sendEvent(&subject, &key);
        EXPECT_EQ(subject.storedText(), "a b c d e f g");
    }
    QInputMethodEvent method;
    method.setCommitString(QString("h") + QChar(0x2028) + "i");
    QGuiApplication::sendEvent(&subject, &method);
    EXPECT_EQ(subject.document()->blockCount(), 1);
    EXPECT_EQ(subject.storedText().find('\n'), std::string::npos);
}

TEST_F(OddInput, NoOtherButtonMovesAList) {
    script.expect("dlgRecipient", [&](QWidget& dialog) {
        person::showPage(*dialog.findChild<ui::DeviceTabs*>(), 3);
        auto* box = dialog.findChild<QLineEdit*>("txtSMTPAddress");
        auto* list = dialog.findChild<ui::EntryList*>("lstSMTPAddresses");
        for (const char* address : {"a@b\n", "c@d\n"})
            person::type(*box, address);
        const auto press = [&](int row, Qt::MouseButton button) {
            QTest::mouseClick(list->viewport(), button, {}, list->visualItemRect(list->item(row)).center());
        };
        press(0, Qt::LeftButton);
        for (const Qt::MouseButton other : {Qt::MiddleButton, Qt::RightButton, Qt::BackButton}) {
            press(1, other);
            EXPECT_EQ(list->chosenEntry(), 0);
        }
        person::click(dialog, "cmdDeleteSMTPAddress");
        EXPECT_EQ(list->entryText(0), "c@d");
        dialog.close();
    });
    dlgRecipient(nullptr).displayForm();

    // The box names the source only, which events may share.
    const long first = add("Alarm", "5");
    add("Alarm", "6");
    open();
    const auto pressRow = [&](int row, Qt::MouseButton button) {
        QTest::mouseClick(grid->viewport(), button, {}, grid->cellRectangle(row, "EventSource").center());
    };
    const int row = grid->cellValue(2, "EventKey").toInt() == first ? 2 : 3;
    pressRow(row, Qt::LeftButton);
    pressRow(5 - row, Qt::MiddleButton);
    pressRow(5 - row, Qt::RightButton);
    prompts.expect({"Are your sure you want to delete event: Alarm", "Delete Selected Event?",
                    platform::BoxIcon::question, platform::BoxButtons::yesNo},
                   platform::BoxAnswer::yes);
    press("cmdDeleteSelectedEvent");
    EXPECT_EQ(rows("SELECT EventId FROM Events WHERE EventSource = 'Alarm'"), std::vector<std::string>{"6"});

    // The lists of the exclusions take a double click for a move.
    host.setRegistry(uiTest::sourcesKey + std::string("MeridaneCorvane_A"), "EventMessageFile", "x");
    script.expect("dlgExclusions", [&](QWidget& dialog) {
        auto* list = dialog.findChild<ui::TextList*>("lstAvailableSources");
        const QPoint place = list->visualItemRect(list->item(0)).center();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, place);
        QTest::mouseDClick(list->viewport(), Qt::MiddleButton, {}, place);
        EXPECT_EQ(list->count(), 1);
        dialog.close();
    });
    dlgExclusions(nullptr).displayForm();
}

// Everywhere: line ends would forge headers of a mail, lines of the log and texts of boxes.
TEST_F(OddInput, EveryBoxOfOneLineKeepsWhatIsPastedOnOneLine) {
    const QString odd = QString("a@b\r\nc\nd") + QChar(0x2028) + "e";
    const std::string kept = "a@b c d e";
    script.expect("dlgRecipient", [&](QWidget& dialog) {
        paste(*dialog.findChild<QLineEdit*>("txtRecipientName"), odd);
        auto& pages = *dialog.findChild<ui::DeviceTabs*>();
        person::showPage(pages, 3);
        auto* address = dialog.findChild<QLineEdit*>("txtSMTPAddress");
        paste(*address, odd);
        QTest::keyClick(address, Qt::Key_Return);
        person::showPage(pages, 5);
        person::click(dialog, "chkSyslogEnabled");
        paste(*dialog.findChild<QLineEdit*>("txtSyslogHostAddress"), odd);
        QTest::mouseClick(dialog.findChild<QPushButton*>("cmdOk"), Qt::LeftButton);
    });
    open();
    clickNode("keyRecipients");
    press("cmdCreateNewRecipient");
    EXPECT_EQ(value("SELECT RecipientName FROM Recipients"), kept);
    EXPECT_EQ(rows("SELECT DeviceAddress FROM Device ORDER BY DeviceType"),
              (std::vector<std::string>{kept, kept}));

    const long event = add("Alarm", "5");
    window->loadNavigationTree(event);
    paste(*find<QLineEdit>("txtEventTitle"), odd);
    // Dragged in, and by a key.
    auto* file = find<QLineEdit>("txtVoiceMailFileName");
    file->clear();
    QMimeData dragged;
    dragged.setText(odd);
    QDragEnterEvent enter({4, 4}, Qt::CopyAction, &dragged, Qt::LeftButton, {});
    QGuiApplication::sendEvent(file, &enter);
    QDropEvent drop(QPointF(4, 4), Qt::CopyAction, &dragged, Qt::LeftButton, {});
    QGuiApplication::sendEvent(file, &drop);
    QKeyEvent key(QEvent::KeyPress, Qt::Key_unknown, {}, QString(QChar(0x2029)));
    QGuiApplication::sendEvent(file, &key);
    press("cmdEventApply");
    EXPECT_EQ(value("SELECT EventTitle FROM Events WHERE EventKey = " + std::to_string(event)), kept);
    EXPECT_EQ(value("SELECT ContentAttachment FROM Contents WHERE ContentType = 1 AND EventKey = " +
                    std::to_string(event)),
              kept + " ");

    ui::MessageBoxes boxes;
    script.expect("inputBox", [&](QWidget& box) {
        paste(*box.findChild<QLineEdit*>(), odd);
        QTest::keyClick(&box, Qt::Key_Return);
    });
    EXPECT_EQ(boxes.inputBox("Name", "Name", "").value_or(""), kept);
}

TEST(OddInputAlone, AWordWithoutEndCostsAKeyNoSecond) {
    VariableTextBox body(VariableTextBox::Lines::many);
    body.resize(400, 200);
    body.show();
    QElapsedTimer timer;
    timer.start();
    paste(body, QString(100'000, 'w'));
    for (const char key : {'a', 'b', 'c'})
        QTest::keyClick(&body, key);
    EXPECT_EQ(body.storedText().size(), 100'003u);
    // Far above what it takes, and far below the half second that each key took.
    EXPECT_LT(timer.elapsed(), 1500);
    EXPECT_EQ(body.wordWrapMode(), QTextOption::WrapAnywhere);
    body.setStoredText("short again");
    EXPECT_EQ(body.wordWrapMode(), QTextOption::WrapAtWordBoundaryOrAnywhere);
}

TEST(OddInputAlone, ARightClickBeforeAWrappedLineIsOnThatLine) {
    VariableTextBox body(VariableTextBox::Lines::many);
    body.resize(200, 200);
    body.setStoredText("aaaa bbbb cccc dddd eeee ffff gggg hhhh iiii jjjj kkkk");
    body.show();
    const QTextBlock block = body.document()->firstBlock();
    ASSERT_GT(block.layout()->lineCount(), 1);
    const int start = block.layout()->lineAt(1).textStart();
    QTextCursor cursor(body.document());
    cursor.setPosition(start);
    int pressed = -1;
    QObject::connect(&body, &VariableTextBox::menuRequested, &body, [&](int index) { pressed = index; });
    QTest::mouseClick(body.viewport(), Qt::RightButton, {}, QPoint(0, body.cursorRect(cursor).center().y()));
    EXPECT_EQ(pressed, start);
}

TEST(OddInputAlone, AnInsertionBehindItKeepsTheFirstCharactersBlue) {
    VariableTextBox body(VariableTextBox::Lines::many);
    body.colorTokens({"<Type>"});
    body.setStoredText("<Type> is");
    const auto firstIsBlue = [&] {
        const auto formats = body.document()->firstBlock().layout()->formats();
        return !formats.isEmpty() && formats.first().start == 0;
    };
    QTextCursor cursor(body.document());
    cursor.movePosition(QTextCursor::NextCharacter, QTextCursor::KeepAnchor, 1);
    cursor.removeSelectedText();
    ASSERT_TRUE(firstIsBlue()) << "what moves to the front by a deletion keeps its colour";
    body.insertAt(6, "<Type>");
    EXPECT_TRUE(firstIsBlue());
}

TEST_F(OddInput, LongNamesLeaveNoWindowLargerThanTheScreen) {
    addLongSource(255);
    const auto check = [](QWidget& dialog) {
        EXPECT_LT(dialog.width(), 900);
        EXPECT_LT(dialog.minimumSizeHint().width(), 900);
        dialog.close();
    };
    for (const char* name : {"dlgEvent", "dlgAddExclusion"})
        script.expect(name, check);
    dlgEvent(nullptr).displayForm();
    dlgAddExclusion(nullptr).displayForm();

    ui::MessageBoxes boxes;
    std::string lines;
    for (int i = 0; i < 1000; ++i)
        lines += "line\n";
    std::string wide;
    for (int i = 0; i < 20'000; ++i)
        wide += "\xf0\x9d\x95\x8e";  // beyond 16 bits
    for (const std::string& name : {std::string(200, 'N'), std::string(100'000, 'W'), lines, wide}) {
        script.expect("messageBox", [&](QWidget& box) {
            const QRect screen = box.screen()->availableGeometry();
            EXPECT_LT(box.width(), 900);
            EXPECT_LT(box.height(), screen.height());
            const QString text = static_cast<QMessageBox&>(box).text();
            EXPECT_TRUE(text.startsWith("Delete ") && text.endsWith(" or not?")) << qPrintable(text);
            EXPECT_TRUE(text.isValidUtf16());
            person::click(*static_cast<QMessageBox&>(box).button(QMessageBox::No));
        });
        boxes.messageBox({"Delete " + name + " or not?", "Title", platform::BoxIcon::question,
                          platform::BoxButtons::yesNo});
        script.expect("inputBox", [](QWidget& box) {
            EXPECT_LT(box.height(), box.screen()->availableGeometry().height());
            QTest::keyClick(&box, Qt::Key_Escape);
        });
        boxes.inputBox(name, "Title", name);
    }
    // The whole text is a click away, and Escape still answers.
    script.expect("messageBox", [&](QWidget& box) {
        EXPECT_EQ(static_cast<QMessageBox&>(box).detailedText().count("line"), 1000);
        for (QAbstractButton* button : box.findChildren<QAbstractButton*>())
            if (button->text().startsWith("Show"))
                person::click(*button);
        EXPECT_LT(box.height(), box.screen()->availableGeometry().height());
        QTest::keyClick(&box, Qt::Key_Escape);
    });
    EXPECT_EQ(boxes.messageBox({lines, "Title", platform::BoxIcon::information, platform::BoxButtons::ok}),
              platform::BoxAnswer::ok);
}

TEST_F(OddInput, ASourceThatAnExclusionCannotHoldIsToldAndNotOffered) {
    addLongSource(51);
    script.expect("dlgAddExclusion", [&](QWidget& dialog) {
        auto* sources = dialog.findChild<QComboBox*>("comboEventSource");
        auto* sign = dialog.findChild<ui::LimitsSign*>();
        sources->setFocus();
        QTest::keyClicks(sources, "W");
        EXPECT_FALSE(dialog.findChild<QPushButton*>("cmdOk")->isEnabled());
        EXPECT_TRUE(sign->isVisible());
        QTest::keyClick(sources, Qt::Key_Home);
        EXPECT_TRUE(dialog.findChild<QPushButton*>("cmdOk")->isEnabled());
        EXPECT_FALSE(sign->isVisible());
        dialog.close();
    });
    dlgAddExclusion(nullptr).displayForm();
    const std::string product = "MeridaneCorvane_";
    for (const std::string& source : {product + "A", product + std::string(35, 'W')})
        host.setRegistry(uiTest::sourcesKey + source, "EventMessageFile", "x");
    script.expect("dlgExclusions", [&](QWidget& dialog) {
        QTest::mouseClick(dialog.findChild<QPushButton*>("cmdExclusionButtons_0"), Qt::LeftButton);
        EXPECT_EQ(dialog.findChild<ui::TextList*>("lstAvailableSources")->count(), 1);
        QTest::mouseClick(dialog.findChild<QPushButton*>("cmdOk"), Qt::LeftButton);
    });
    dlgExclusions(nullptr).displayForm();
    EXPECT_EQ(value("SELECT EventSource FROM Exclusions"), product + "A");
}

TEST(OddInputAlone, EveryControlGetsItsDesignedFontBack) {
    QWidget window;
    auto* frame = new QWidget(&window);
    auto* label = new QLabel(frame);
    auto* body = new VariableTextBox(VariableTextBox::Lines::many, frame);
    const auto families = [&] {
        QStringList all;
        for (const QWidget* each :
             {&window, frame, static_cast<QWidget*>(label), static_cast<QWidget*>(body)})
            all << each->font().family();
        return all;
    };
    const QStringList designed = families();
    core::gLanguageId = 1041;  // Japanese
    ui::setFormFonts(window);
    EXPECT_NE(families(), designed);
    core::gLanguageId = 1033;
    ui::setFormFonts(window);
    EXPECT_EQ(families(), designed);
}

}  // namespace
