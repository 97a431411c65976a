#include "ui/widgets/gridLook.h"

#include <QHeaderView>
#include <QTableView>

#include "ui/widgets/cellTip.h"
#include "ui/widgets/leftButton.h"

namespace ui {

void giveGridLook(QTableView& grid) {
    grid.setSelectionBehavior(QAbstractItemView::SelectRows);
    grid.setSelectionMode(QAbstractItemView::SingleSelection);
    chooseByLeftButtonOnly(grid);
    showTipByKey(grid);
    grid.setAlternatingRowColors(true);
    grid.setShowGrid(false);
    grid.setWordWrap(false);
    grid.setTabKeyNavigation(false);
    grid.setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    grid.verticalHeader()->hide();
    grid.verticalHeader()->setDefaultSectionSize(grid.fontMetrics().height() + 10);
}

}  // namespace ui
