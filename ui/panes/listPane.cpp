#include "ui/panes/listPane.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "ui/base/controls.h"

namespace ui {

void layOutListPane(QWidget& pane, QLabel& caption, KeyedGrid& grid, QPushButton& create,
                    QPushButton& remove) {
    QFont bold = caption.font();
    bold.setBold(true);
    caption.setFont(bold);
    caption.setBuddy(&grid);
    auto* layout = new QVBoxLayout(&pane);
    layout->setContentsMargins(6, 4, 6, 6);
    layout->addWidget(&caption);
    layout->addWidget(&grid, 1);
    layout->addLayout(buttonRow({}, {&create, &remove}));
}

void addRecords(core::Frame& frame, KeyedGrid& grid, platform::Recordset& records,
                const std::function<std::vector<KeyedGrid::Cell>(const platform::Recordset&)>& makeRow) {
    const KeyedGrid::Fill fill(grid);
    while (records.state() == platform::ObjectState::open && !records.EOF_()) {
        frame.step([&] { grid.addRow(makeRow(records)); });
        frame.step([&] { records.moveNext(); });
    }
}

void closeRecords(platform::Recordset& records) {
    if (records.state() == platform::ObjectState::open)
        records.close();
}

}  // namespace ui
