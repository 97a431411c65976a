// The panes of exclusions, the dialog for a new one, and the flows between them.

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QLineEdit>
#include <QRadioButton>

#include "support/mainWindowFixture.h"
#include "ui/dialogs/dlgAddExclusion.h"
#include "ui/widgets/keyedGrid.h"
#include "ui/widgets/limitsSign.h"

namespace {

using platform::BoxAnswer;
using platform::BoxButtons;
using platform::BoxIcon;
using Lines = std::vector<std::string>;

class ExclusionPanes : public uiTest::MainWindow {
  protected:
    void openOn(const std::string& node) {
        open();
        clickNode(node);
        apply = find<QPushButton>("cmdExclusionApply");
        id = find<QWidget>("vsviewportDetails_7")->findChild<QLineEdit*>("tdbnlSpecificEventId");
        for (int i : {0, 1})
            option[i] = find<QWidget>("vsviewportDetails_7")
                            ->findChild<QRadioButton*>("optionEventId_" + QString::number(i));
    }
    Lines exclusions() { return rows("SELECT EventSource, EventId FROM Exclusions ORDER BY ExclusionKey"); }
    // Chooses a source and types an id in the dialog.
    void expectDialog(const std::string& source, const char* typedId) {
        script.expect("dlgAddExclusion", [this, source, typedId](QWidget& dialog) {
            auto& sources = *dialog.findChild<QComboBox*>("comboEventSource");
            EXPECT_EQ(sources.currentIndex(), -1);
            person::chooseRow(sources, sources.findText(QString::fromStdString(source)));
            auto* box = dialog.findChild<QLineEdit*>("tdbnlSpecificEventId");
            QTest::keyClick(box, Qt::Key_A, Qt::ControlModifier);
            QTest::keyClicks(box, typedId);
            const auto signs = dialog.findChild<QWidget*>("Frame1")->findChildren<ui::LimitsSign*>();
            EXPECT_EQ(signs.at(0)->isVisible(), QString(typedId).toInt() > 32767) << "what is lost is told";
            QTest::mouseClick(dialog.findChild<QPushButton*>("cmdOk"), Qt::LeftButton);
        });
    }
    void expectQuestion(const std::string& source, BoxAnswer answer) {
        prompts.expect({"Are your sure you want to delete exclusion:" + source, "Delete Selected Exclusion?",
                        BoxIcon::question, BoxButtons::yesNo},
                       answer);
    }

    QPushButton* apply = nullptr;
    QLineEdit* id = nullptr;
    QRadioButton* option[2] = {};
};

TEST_F(ExclusionPanes, GridListsAllAndDeletesTheCurrentRow) {
    run("INSERT INTO Exclusions VALUES(0, 'Zoned', 70000), (1, 'Alarm', -1), (2, NULL, NULL)");
    openOn("keyExclusions");
    EXPECT_EQ(visiblePane(), 6);
    grid = find<ui::KeyedGrid>("vsflexgridAllExclusions");
    const auto cells = [&] {
        Lines lines;
        for (int row = 1; row <= grid->gridRowCount(); ++row)
            lines.push_back(grid->cellText(row, "EventSource") + "|" + grid->cellText(row, "EventId"));
        return lines;
    };
    EXPECT_EQ(cells(), (Lines{"|", "Alarm|All", "Zoned|70000"}));
    auto& remove = *find<QPushButton>("cmdDeleteSelectedExclusion");
    EXPECT_FALSE(remove.isEnabled());
    const auto clickRow = [&](int row) {
        const QPoint cell = grid->cellRectangle(row, "EventSource").center();
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, cell);
        QTest::mouseDClick(grid->viewport(), Qt::LeftButton, {}, cell);
    };
    clickRow(3);
    EXPECT_TRUE(remove.isEnabled());
    EXPECT_EQ(visiblePane(), 6) << "a double click does nothing";
    expectQuestion("Zoned", BoxAnswer::no);
    press("cmdDeleteSelectedExclusion");
    EXPECT_EQ(visiblePane(), 6);
    expectQuestion("Zoned", BoxAnswer::yes);
    press("cmdDeleteSelectedExclusion");
    EXPECT_EQ(exclusions(), (Lines{"Alarm|-1", "NULL|NULL"}));
    EXPECT_EQ(tree->selectedKey(), "keyMonitoredEvents");
    run("DELETE FROM Exclusions");
    clickNode("keyExclusions");
    EXPECT_EQ(cells(), Lines{});
    EXPECT_FALSE(remove.isEnabled());
    EXPECT_EQ(host.countInLog("Err.Number"), 0);
}

TEST_F(ExclusionPanes, DetailsChangeTheIdAndNothingElse) {
    run("INSERT INTO Exclusions VALUES(0, 'Alarm', -1), (1, 'Backup', 7)");
    openOn("ExclusionKey-0");
    auto& source = *find<QLineEdit>("txtExclusionSource");
    EXPECT_EQ(source.text(), "Alarm");
    EXPECT_TRUE(option[0]->isChecked());
    EXPECT_FALSE(id->isVisible());
    EXPECT_FALSE(apply->isEnabled());
    person::click(*option[1]);
    EXPECT_TRUE(id->isVisible());
    EXPECT_FALSE(apply->isEnabled()) << "with an empty box the button stays as it was";
    QTest::keyClicks(id, "8");
    EXPECT_TRUE(apply->isEnabled());
    QTest::keyClick(id, Qt::Key_Backspace);
    EXPECT_TRUE(apply->isEnabled()) << "an empty text does not switch it off";
    person::click(*apply);
    EXPECT_EQ(exclusions().at(0), "Alarm|-1") << "an empty box is no number";
    EXPECT_EQ(host.countInLog("ERROR", "cmdExclusionApply_Click", "Err.Number = 13 "), 1);
    QTest::keyClicks(id, "21474836487");
    EXPECT_EQ(id->text(), "2147483647") << "the box takes what Apply reads, and no more";
    person::type(source, "not saved");
    person::click(*apply);
    EXPECT_EQ(exclusions().at(0), "Alarm|2147483647");
    EXPECT_EQ(tree->selectedKey(), "ExclusionKey-0");
    EXPECT_EQ(tree->nodeText("ExclusionKey-0"), "Alarm (2147483647)");
    EXPECT_EQ(source.text(), "Alarm");
    EXPECT_FALSE(apply->isEnabled());

    person::click(*option[0]);
    EXPECT_FALSE(id->isVisible());
    EXPECT_TRUE(apply->isEnabled());
    // The other exclusion comes without a question, and the change is lost.
    clickNode("ExclusionKey-1");
    EXPECT_EQ(id->text(), "7");
    EXPECT_FALSE(apply->isEnabled());
    clickNode("ExclusionKey-0");
    EXPECT_TRUE(option[1]->isChecked());
    EXPECT_EQ(exclusions().at(0), "Alarm|2147483647");

    run("DELETE FROM Exclusions WHERE ExclusionKey = 0");
    person::click(*option[0]);
    person::click(*apply);
    EXPECT_EQ(exclusions(), Lines{"Backup|7"}) << "an exclusion that is gone is not written";
}

TEST_F(ExclusionPanes, CreatesFromEveryPlaceAndReadsTheIdAs16Bits) {
    openOn("keyExclusions");
    expectDialog("Backup", "32767");
    press("cmdCreateNewExclusion");
    EXPECT_EQ(tree->nodeText(tree->selectedKey()), "Backup (32767)");
    EXPECT_EQ(visiblePane(), 7);
    expectDialog("Alarm", "32768");
    chooseMenu("mnuFileNewExclusion");
    EXPECT_EQ(exclusions(), Lines{"Backup|32767"});
    EXPECT_EQ(host.countInLog("ERROR", "mnuPopupExclusion_Create_Click", "Err.Number = 6 "), 1);
    script.expectMenu("mnuPopupExclusion_Create");
    script.expect("dlgAddExclusion", [](QWidget& dialog) {
        auto* ok = dialog.findChild<QPushButton*>("cmdOk");
        EXPECT_FALSE(ok->isEnabled()) << "a source is missing";
        EXPECT_TRUE(dialog.findChild<QRadioButton*>("optionEventId_0")->isChecked());
        EXPECT_EQ(dialog.findChild<QLineEdit*>("tdbnlSpecificEventId")->text(), "32768");
        person::chooseRow(*dialog.findChild<QComboBox*>("comboEventSource"), 2);
        QTest::mouseClick(ok, Qt::LeftButton);
    });
    clickNode("keyExclusions", Qt::RightButton);
    EXPECT_EQ(tree->nodeText(tree->selectedKey()), "Cluster (All)");
    EXPECT_EQ(exclusions(), (Lines{"Backup|32767", "Cluster|-1"}));
    script.expect("dlgAddExclusion", [](QWidget& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    clickNode("keyExclusions");
    press("cmdCreateNewExclusion");
    EXPECT_EQ(exclusions().size(), 2u);
}

TEST_F(ExclusionPanes, MenusDeleteTheSelectedExclusion) {
    run("INSERT INTO Exclusions VALUES(0, 'Alarm', -1), (1, 'Backup', 7)");
    openOn("ExclusionKey-0");
    expectQuestion("Alarm", BoxAnswer::yes);
    EXPECT_TRUE(find<QAction>("mnuFileDelete")->isEnabled());
    chooseMenu("mnuFileDelete");
    EXPECT_EQ(tree->selectedKey(), "keyMonitoredEvents");
    expectQuestion("Backup", BoxAnswer::yes);
    script.expectMenu("mnuPopupExclusion_Delete");
    clickNode("ExclusionKey-1", Qt::RightButton);
    EXPECT_EQ(exclusions(), Lines{});
    EXPECT_EQ(visiblePane(), 0);
}

TEST_F(ExclusionPanes, DialogHoldsItsRulesForOkAndImportsACopiedEvent) {
    dlgAddExclusion dialog(nullptr);
    const auto check = [&](const char* name) { return dialog.findChild<QRadioButton*>(name)->isChecked(); };
    auto* ok = dialog.findChild<QPushButton*>("cmdOk");
    auto* box = dialog.findChild<QLineEdit*>("tdbnlSpecificEventId");
    auto* import = dialog.findChild<QPushButton*>("cmdImportFromClipboard");
    const auto copy = [](const char* source, const char* eventId) {
        QApplication::clipboard()->setText(
            QString("Event Type:\tError\r\nEvent Source:\t%1\r\nEvent Category:\t"
                    "None\r\nEvent ID:\t%2\r\nDate:\t\t1\r\nTime:\t\t2\r\nUser:"
                    "\t\t3\r\nComputer:\t4\r\nDescription:\r\ntext")
                .arg(source, eventId));
    };
    script.expect("dlgAddExclusion", [&](QWidget& shown) {
        EXPECT_TRUE(box->isVisible()) << "also with all ids chosen";
        person::click(dialog, "optionEventId_1");
        person::chooseRow(*dialog.findChild<QComboBox*>("comboEventSource"), 0);
        EXPECT_FALSE(ok->isEnabled()) << "an id is missing";
        person::click(dialog, "optionEventId_0");
        EXPECT_TRUE(ok->isEnabled());
        QTest::keyClicks(box, "-12x");
        EXPECT_TRUE(check("optionEventId_1")) << "typing an id chooses it";
        EXPECT_EQ(box->text(), "-12");
        person::click(dialog, "optionEventId_0");
        EXPECT_EQ(box->text(), "-12") << "the text stays";
        copy("cluster", "0042");
        person::click(*import);
        EXPECT_EQ(dialog.eventSource(), "Cluster");
        EXPECT_FALSE(dialog.allEventIds());
        EXPECT_EQ(box->text(), "42");
        copy("cluster", "-32769");
        auto* sign = dialog.findChild<QWidget*>("Frame1")->findChild<ui::LimitsSign*>();
        person::click(*import);
        EXPECT_TRUE(sign->isVisible());
        person::click(dialog, "optionEventId_0");
        EXPECT_FALSE(sign->isVisible()) << "the id does not count";
        copy("cluster", "42");
        person::click(*import);
        EXPECT_FALSE(sign->isVisible());
        copy("Unknown", "5");
        prompts.expect({"Clipboard data does not appear to be Event data.  Please see the 'How to import "
                        "events from the Event Viewer' section in the help file.",
                        "No Event Data Found", BoxIcon::exclamation, BoxButtons::ok},
                       BoxAnswer::ok);
        person::click(*import);
        EXPECT_EQ(box->text(), "42");
        QTest::keyClick(&shown, Qt::Key_Escape);
    });
    dialog.displayForm();
    EXPECT_TRUE(dialog.cancelled);
}

}  // namespace
