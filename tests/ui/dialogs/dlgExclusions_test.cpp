#include "ui/dialogs/dlgExclusions.h"

#include <gtest/gtest.h>

#include <QPushButton>
#include <functional>

#include "support/mainWindowFixture.h"
#include "ui/widgets/textList.h"

namespace {

using Lines = std::vector<std::string>;

class ExclusionsDialog : public uiTest::MainWindow {
  protected:
    ExclusionsDialog() {
        for (const char* source :
             {"MeridaneCorvane_A", "MeridaneCorvane_B", "MeridaneCorvane_C", "MeridaneCorvane_D's"})
            host.setRegistry(uiTest::sourcesKey + std::string(source), "EventMessageFile", source);
        run("INSERT INTO Exclusions VALUES(0, 'MeridaneCorvane_B', 5), (1, 'Elsewhere', -1);");
    }

    void work(const std::function<void()>& action) {
        script.expect("All Corvane Errors Exclusions", [&](QWidget& shown) {
            available = shown.findChild<ui::TextList*>("lstAvailableSources");
            excluded = shown.findChild<ui::TextList*>("lstExcludedSources");
            press = [&shown](const std::string& name) {
                QTest::mouseClick(shown.findChild<QPushButton*>(QString::fromStdString(name)),
                                  Qt::LeftButton);
            };
            action();
        });
        dialog.displayForm();
        EXPECT_TRUE(script.finished());
    }
    void move(int index) { press("cmdExclusionButtons_" + std::to_string(index)); }
    static void doubleClick(ui::TextList& list, int row) {
        const QPoint place = list.visualItemRect(list.item(row)).center();
        QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, place);
        QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, place);
    }
    Lines stored() { return rows("SELECT EventSource, EventId FROM Exclusions ORDER BY 1"); }

    dlgExclusions dialog{nullptr};
    ui::TextList* available = nullptr;
    ui::TextList* excluded = nullptr;
    std::function<void(const std::string&)> press;
};

TEST_F(ExclusionsDialog, MovesSourcesBetweenItsLists) {
    work([&] {
        // Only the server's own sources, in the order of the registry; an apostrophe breaks the search.
        EXPECT_EQ(available->texts(),
                  (Lines{"MeridaneCorvane_A", "MeridaneCorvane_C", "MeridaneCorvane_D's"}));
        EXPECT_EQ(excluded->texts(), Lines{"MeridaneCorvane_B"});
        move(1);
        EXPECT_EQ(excluded->count(), 1) << "nothing is selected";
        available->selectAll();
        available->item(1)->setSelected(false);
        move(1);
        EXPECT_EQ(available->texts(), Lines{"MeridaneCorvane_C"});
        EXPECT_EQ(excluded->texts(),
                  (Lines{"MeridaneCorvane_B", "MeridaneCorvane_A", "MeridaneCorvane_D's"}));
        doubleClick(*excluded, 2);
        EXPECT_EQ(available->texts(), (Lines{"MeridaneCorvane_C", "MeridaneCorvane_D's"}));
        doubleClick(*available, 0);
        EXPECT_EQ(excluded->texts().back(), "MeridaneCorvane_C");
        move(3);
        EXPECT_EQ(excluded->count(), 0);
        move(0);
        EXPECT_EQ(available->count(), 0);
        EXPECT_EQ(excluded->count(), 4);
        excluded->clearSelection();
        excluded->item(0)->setSelected(true);
        move(2);
        EXPECT_EQ(available->count(), 1);
        press("cmdCancel");
    });
    EXPECT_EQ(stored(), (Lines{"Elsewhere|-1", "MeridaneCorvane_B|5"}));
    EXPECT_EQ(host.countInLog("ERROR", "displayForm", "Err.Number = 5"), 1);
}

TEST_F(ExclusionsDialog, OkRewritesTheStoreInWholeSources) {
    work([&] { press("cmdOk"); });
    EXPECT_EQ(stored(), Lines{"MeridaneCorvane_B|-1"})
        << "a single id comes back as all ids, and a source of elsewhere is gone";
    work([&] {
        move(3);
        press("cmdOk");
    });
    EXPECT_EQ(stored(), Lines{});
    work([&] {
        EXPECT_EQ(available->count(), 4) << "an empty table leaves all sources available";
        QTest::keyClick(available->window(), Qt::Key_Escape);
    });
}

}  // namespace
