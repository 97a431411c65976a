// The list of all recipients, and how they come and go.
#include "recipientPanesFixture.h"

namespace {

using namespace uiTest;

TEST_F(RecipientPanes, ListShowsTheCountsOfTheKindsThatAreOffered) {
    showList();
    const std::vector<std::pair<const char*, long>> columns = {
        {"VoicemailDevice", 1}, {"PagerDevice", 2},  {"EmailDevice", 3},   {"SMTPDevice", 4},
        {"SNMPTrapDevice", 5},  {"SyslogDevice", 6}, {"FailoverDevice", 7}};
    ASSERT_EQ(grid->gridRowCount(), 3);
    int others = 0;
    for (int row = 1; row <= 3; ++row) {
        const long key = static_cast<long>(grid->cellValue(row, "RecipientKey").toLongLong());
        EXPECT_EQ(grid->cellValue(row, "RecipientActive").toBool(), key != 3);
        for (const auto& [column, type] : columns) {
            const long count = mdlDatabase::countDevices(type, key);
            const int place = static_cast<int>(type) + 2;
            const bool listKind = type == 2 || type == 4;
            EXPECT_EQ(grid->cellText(row, column), listKind ? std::to_string(count) : "") << column;
            EXPECT_EQ(grid->item(row - 1, place)->icon().isNull(), listKind || count == 0) << column;
            EXPECT_EQ(grid->isColumnHidden(place), type == 2 || type == 7);
            others += row == 1 ? grid->columnWidth(place) : 0;
        }
    }
    EXPECT_EQ(grid->cellText(3, "RecipientName"), "Cy");
    EXPECT_EQ(grid->columnWidth(2), grid->width() - others - grid->columnWidth(0) + ui::pixels(200));
    EXPECT_FALSE(find<QPushButton>("cmdDeleteSelectedRecipient")->isEnabled());
    window->resize(1200, 700);
    EXPECT_EQ(grid->columnWidth(2), grid->width() - others - grid->columnWidth(0) + ui::pixels(200));

    run("DELETE FROM Recipients");
    clickNode("keyRecipients");
    EXPECT_EQ(grid->gridRowCount(), 0);
    EXPECT_FALSE(find<QPushButton>("cmdDeleteSelectedRecipient")->isEnabled());
}

TEST_F(RecipientPanes, ActiveColumnWritesAtOnceAndOthersDoNot) {
    showList();
    clickCell(1, "RecipientActive");
    EXPECT_EQ(active(1), "0");
    EXPECT_FALSE(grid->cellValue(1, "RecipientActive").toBool());
    EXPECT_EQ(tree->selectedKey(), "keyRecipients");
    EXPECT_TRUE(find<QPushButton>("cmdDeleteSelectedRecipient")->isEnabled());
    clickCell(3, "RecipientActive");
    EXPECT_EQ(active(3), "-1");
    clickCell(1, "RecipientName");
    QTest::mouseClick(grid->horizontalHeader()->viewport(), Qt::LeftButton, {}, QPoint(5, 5));
    EXPECT_EQ(active(1), "0");
    grid->setCurrentGridCell(1, "RecipientActive");
    const int before = grid->cellValue(1, "RecipientActive").toBool();
    QTest::keyClick(grid, Qt::Key_Space);
    EXPECT_NE(grid->cellValue(1, "RecipientActive").toBool(), before) << "by keyboard";

    clickNode("keyRecipients");
    QTest::mouseDClick(grid->viewport(), Qt::LeftButton, {},
                       grid->cellRectangle(3, "RecipientName").center());
    EXPECT_EQ(tree->selectedKey(), "RecipientKey:3");
    EXPECT_EQ(visiblePane(), 3);
}

TEST_F(RecipientPanes, RecipientsAreCreatedAndDeletedFromEveryPlace) {
    openDirectory();
    showList();
    script.expect("dlgRecipient", [](QWidget& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    press("cmdCreateNewRecipient");
    EXPECT_EQ(value("SELECT Count(*) FROM Recipients"), "3");
    script.expect("dlgRecipient", [](QWidget& dialog) {
        person::type(*dialog.findChild<QLineEdit*>("txtRecipientName"), "Dan");
        person::showPage(*dialog.findChild<ui::DeviceTabs*>(), 4);
        person::click(dialog, "chkSNMPTrapEnabled");
        person::click(dialog, "cmdOk");
    });
    chooseMenu("mnuFileNewRecipient");
    EXPECT_EQ(tree->selectedKey(), "RecipientKey:4");
    EXPECT_EQ(visiblePane(), 3);
    EXPECT_EQ(value("SELECT Count(*) FROM AddressDetails WHERE AddressType = 5"), "2") << "rebuilt";

    EXPECT_TRUE(find<QAction>("mnuFileDelete")->isEnabled());
    prompts.expect(deleteQuestion("Dan"), BoxAnswer::no);
    chooseMenu("mnuFileDelete");
    EXPECT_EQ(tree->selectedKey(), "RecipientKey:4");
    prompts.expect(deleteQuestion("Dan"), BoxAnswer::yes);
    chooseMenu("mnuFileDelete");
    EXPECT_EQ(tree->selectedKey(), "keyRecipients");
    EXPECT_FALSE(tree->contains("RecipientKey:4"));
    prompts.expect(deleteQuestion("Cy"), BoxAnswer::yes);
    script.expectMenu("mnuPopupDeleteRecipient");
    QTest::mouseClick(tree->viewport(), Qt::RightButton, {}, placeOf("RecipientKey:3"));
    EXPECT_EQ(grid->gridRowCount(), 2);
    clickCell(2, "RecipientName");
    prompts.expect(deleteQuestion("Ben"), BoxAnswer::yes);
    QTest::mouseClick(find<QPushButton>("cmdDeleteSelectedRecipient"), Qt::LeftButton);
    EXPECT_EQ(value("SELECT RecipientName FROM Recipients"), "Ana");
    EXPECT_EQ(grid->gridRowCount(), 1);
    script.expectMenu("mnuPopupNewRecipient");
    script.expect("dlgRecipient", [](QWidget& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    QTest::mouseClick(tree->viewport(), Qt::RightButton, {}, placeOf("keyRecipients"));
    EXPECT_TRUE(script.finished());
    EXPECT_TRUE(prompts.finished());
    EXPECT_EQ(host.countInLog("ERROR"), 0);
}

}  // namespace
