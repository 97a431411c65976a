// What the panes that list all things of one kind have in common: a caption over a grid, the buttons that
// create one and delete the selected one, and the filling row by row.
#pragma once

#include <functional>

#include "core/procedure.h"
#include "platform/ado/ado.h"
#include "ui/widgets/keyedGrid.h"

class QLabel;
class QPushButton;

namespace ui {

// Lays the pane out; the caption becomes the grid's buddy, in bold letters.
void layOutListPane(QWidget& pane, QLabel& caption, KeyedGrid& grid, QPushButton& create,
                    QPushButton& remove);

// Adds a row for each record in steps of the caller's frame; nothing when the records could not be opened.
void addRecords(core::Frame& frame, KeyedGrid& grid, platform::Recordset& records,
                const std::function<std::vector<KeyedGrid::Cell>(const platform::Recordset&)>& makeRow);
// Closes records that are open.
void closeRecords(platform::Recordset& records);

}  // namespace ui
