// The look that all grids of rows share.
#pragma once

class QTableView;

namespace ui {

// Whole rows are chosen, one at a time and by the left button only; every other row is tinted; no lines, no
// row numbers, no wrapped texts. The Tab key leaves the grid, Ctrl+F1 shows the tip of
// what is chosen.
void giveGridLook(QTableView& grid);

}  // namespace ui
