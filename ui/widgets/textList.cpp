#include "ui/widgets/textList.h"

#include <algorithm>

#include "platform/failure.h"
#include "ui/base/text.h"
#include "ui/widgets/leftButton.h"

namespace ui {

TextList::TextList(QWidget* parent) : QListWidget(parent) {
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setUniformItemSizes(true);
    chooseByLeftButtonOnly(*this);
    connect(this, &QListWidget::itemDoubleClicked, this,
            [this](QListWidgetItem* item) { emit rowDoubleClicked(row(item)); });
}

void TextList::addText(const std::string& text) {
    addItem(fromUtf8(text));
}

void TextList::addLockedText(const std::string& text, const QString& tip) {
    addItem(fromUtf8(text));
    QListWidgetItem& added = *item(count() - 1);
    added.setFlags(Qt::NoItemFlags);
    added.setToolTip(tip.toHtmlEscaped());
}

bool TextList::isLocked(int row) const {
    return !(rowItem(row).flags() & Qt::ItemIsEnabled);
}

QListWidgetItem& TextList::rowItem(int row) const {
    QListWidgetItem* found = item(row);
    if (!found)
        throw platform::makeFailure(platform::invalidProcedureCall, std::to_string(row));
    return *found;
}

std::string TextList::textAt(int row) const {
    return toUtf8(rowItem(row).text());
}

std::vector<std::string> TextList::texts() const {
    std::vector<std::string> result;
    result.reserve(static_cast<std::size_t>(count()));
    for (int i = 0; i < count(); ++i)
        result.push_back(textAt(i));
    return result;
}

std::vector<int> TextList::selectedRows() const {
    std::vector<int> rows;
    for (const QModelIndex& index : selectionModel()->selectedRows())
        rows.push_back(index.row());
    std::sort(rows.begin(), rows.end());
    return rows;
}

void TextList::moveTo(TextList& other, const std::vector<int>& rows) {
    QStringList moved;
    for (const int row : rows)
        moved.append(rowItem(row).text());
    for (auto row = rows.rbegin(); row != rows.rend(); ++row)
        delete takeItem(*row);
    other.addItems(moved);
}

}  // namespace ui
