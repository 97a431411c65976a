// The main window on a large installation against bare tables and trees of the toolkit's own, which show the
// same rows of the same database.

#include <QApplication>
#include <algorithm>
#include <cstdlib>

#include "bench/bareWindows.h"
#include "bench/driving.h"
#include "bench/largeInstallation.h"
#include "bench/rows.h"
#include "core/classLog.h"
#include "ui/dialogs/dlgEditRecipients.h"
#include "ui/panes/paneMonitoredEvents.h"
#include "ui/panes/paneRecipients.h"
#include "ui/shell/frmMain.h"
#include "ui/widgets/keyedGrid.h"

namespace bench {

namespace {

constexpr int rounds = 9;
constexpr double reach = 1.5;
constexpr double choiceReach = 1.3;
constexpr long shownEvent = 5;

// What an action leaves to be laid out and painted belongs to it.
double painted(const std::function<void()>& action) {
    return secondsOf([&] {
        action();
        QApplication::processEvents();
    });
}

class Windows {
  public:
    Windows(Table& table, const LargeInstallation& place)
        : table_(table),
          peerLog_(place.peerLog()),
          peer_(place.database(), place.directory(), peerLog_),
          bareTree_(peer_),
          bareEvents_(peer_.engine()),
          bareRecipients_(peer_.engine()) {
        window_.loadNavigationTree();
        window_.show();
        bareTree_.resize(window_.tvNavigation->size());
        bareTree_.show();
    }

    void treeRows() {
        bareTree_.rebuild();
        insist(window_.tvNavigation->count() == bareTree_.count(), "both trees have the same nodes");
        table_.compare(
            {"tree rebuild, 1,000 events, 5,000 recipients", 1, Show::timePerUnit, rounds, reach},
            {"ours", [&] { return painted([&] { window_.loadNavigationTree(); }); }},
            {"bare Qt tree, same statements", [&] { return painted([&] { bareTree_.rebuild(); }); }});
    }

    void eventRows() {
        window_.selectNode("keyMonitoredEvents");
        auto& pane = findPane<paneMonitoredEvents>(window_);
        showBeside(bareEvents_, findControl<ui::KeyedGrid>(window_, "vsflexgridMonitoredEvents"));
        table_.compare({"fill the grid of 1,000 events", 1, Show::timePerUnit, rounds, reach},
                       {"ours", [&] { return painted([&] { pane.displayEvents(); }); }},
                       {"bare Qt table, same rows", [&] { return painted([&] { bareEvents_.fill(); }); }});
    }

    void recipientRows() {
        window_.selectNode("keyRecipients");
        auto& pane = findPane<paneRecipients>(window_);
        auto& grid = findControl<ui::KeyedGrid>(window_, "vsflexgridAllRecipients");
        showBeside(bareRecipients_, grid);
        table_.compare(
            {"fill the grid of 5,000 recipients", 1, Show::timePerUnit, rounds, reach},
            {"ours", [&] { return painted([&] { pane.displayAllRecipients(); }); }},
            {"bare Qt table, same rows", [&] { return painted([&] { bareRecipients_.fill(); }); }});
        insist(grid.rowCount() == bareRecipients_.rowCount(), "both grids have the same rows");
        table_.compare({"scroll through 5,000 recipients", 1, Show::timePerUnit, rounds, reach},
                       {"ours", [&] { return scrollThrough(grid); }},
                       {"bare Qt table, same rows", [&] { return scrollThrough(bareRecipients_); }});
        toggleRow(grid);
    }

    void selectionRows() {
        BareSelection bare(peer_);
        dlgEditRecipients dialog(&window_);
        auto& tree = findControl<ui::KeyedTree>(dialog, "tvRecipients");
        const Side peer{"bare Qt dialog, one query", [&] {
                            return openUntilPainted(bare, *bare.tree().viewport(), [&] {
                                bare.fill(shownEvent);
                                bare.exec();
                            });
                        }};
        const Side ours{"ours", [&] {
                            return openUntilPainted(dialog, *tree.viewport(),
                                                    [&] { dialog.displayForm(shownEvent, "an event"); });
                        }};
        ours.run();
        peer.run();
        insist(tree.count() == bare.count(), "both dialogs have the same nodes");
        table_.compare({"open the choice of 5,000 recipients", 1, Show::timePerUnit, rounds, choiceReach},
                       ours, peer);
    }

  private:
    static void showBeside(BareTable& bare, const QWidget& ours) {
        bare.resize(ours.size());
        bare.show();
    }

    // Both write the row's recipient, build the tree anew and fill the grid anew.
    void toggleRow(ui::KeyedGrid& grid) {
        constexpr int row = recipientCount / 2;
        const auto ours = [&] {
            grid.setCurrentGridCell(row, "RecipientActive");
            return pressKey(grid, Qt::Key_Space);
        };
        const Side peer{"bare Qt table and tree, same statements", [&] {
                            return painted([&] {
                                bareRecipients_.toggle(row - 1);
                                bareTree_.rebuild();
                                bareRecipients_.fill();
                                bareRecipients_.setCurrentCell(row - 1, 0);
                            });
                        }};
        table_.compare(
            {"switch one of 5,000 recipients on or off", 1, Show::timePerUnit, rounds, choiceReach},
            {"ours", ours}, peer);
    }

    Table& table_;
    std::filesystem::path peerLog_;
    Peer peer_;
    frmMain window_;
    BareTree bareTree_;
    BareEvents bareEvents_;
    BareRecipients bareRecipients_;
};

}  // namespace

void windowRows(Table& table, const std::filesystem::path& folder) {
    const LargeInstallation place(folder);
    Windows windows(table, place);
    windows.treeRows();
    windows.eventRows();
    windows.selectionRows();
    windows.recipientRows();
}

}  // namespace bench
