#include "ui/widgets/keyedGrid.h"

#include <QApplication>
#include <QHeaderView>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyledItemDelegate>
#include <QToolTip>
#include <utility>

#include "platform/failure.h"
#include "ui/base/text.h"
#include "ui/widgets/cellTip.h"
#include "ui/widgets/gridLook.h"

namespace ui {

namespace {

constexpr int valueRole = Qt::UserRole;

// A cell keeps its text and its value; its looks are those of its column, which lives as long as the rows do.
class ValueItem : public QTableWidgetItem {
  public:
    ValueItem(const KeyedGrid::Column& column, const KeyedGrid::Cell& cell)
        : column_(column), text_(shown(column) ? fromUtf8(cell.text) : QString()), value_(cell.value) {
        setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable |
                 (column.checkBox ? Qt::ItemIsUserCheckable : Qt::NoItemFlags));
        if (!value_.isValid())
            value_ = fromUtf8(cell.text);
        // A cell is one line high: line breaks of a long note show as blanks, the tip has the whole text.
        if (text_.contains('\n') || text_.contains('\r')) {
            setToolTip(text_.left(2000).toHtmlEscaped().replace('\n', "<br>"));
            text_ = text_.simplified();
        }
    }

    QVariant data(int role) const override {
        const bool on = role == Qt::DecorationRole && !column_.picture.isNull() && value_.toBool();
        switch (role) {
            case valueRole:
                return value_;
            case Qt::DisplayRole:
                return text_;
            case Qt::TextAlignmentRole:
                return column_.centred ? QVariant(Qt::AlignCenter) : QVariant();
            case Qt::CheckStateRole:
                return column_.checkBox ? QVariant(value_.toBool() ? Qt::Checked : Qt::Unchecked)
                                        : QVariant();
            case Qt::DecorationRole:
                return on ? QVariant(column_.picture) : QVariant();
            case Qt::AccessibleTextRole:
                return spoken();
            default:
                return QTableWidgetItem::data(role);
        }
    }

    // Compares by value, so that numbers and dates do not sort as texts.
    bool operator<(const QTableWidgetItem& other) const override {
        const QVariant theirs = other.data(valueRole);
        if (value_.typeId() == QMetaType::QString)
            return QString::localeAwareCompare(value_.toString(), theirs.toString()) < 0;
        return QVariant::compare(value_, theirs) == QPartialOrdering::Less;
    }

  private:
    // Who cannot see the box or the picture is told what it stands for; whether a box is ticked is its state.
    QVariant spoken() const {
        if (column_.checkBox || (!column_.picture.isNull() && value_.toBool()))
            return fromUtf8(column_.header);
        return column_.picture.isNull() ? QVariant() : QVariant(fromUtf8(column_.header) + ": 0");
    }

    static bool shown(const KeyedGrid::Column& column) { return !column.checkBox && column.picture.isNull(); }

    const KeyedGrid::Column& column_;
    QString text_;
    QVariant value_;
};

// Draws the box of a check-box cell in the cell's middle; the style alone would put it at the left edge.
class CheckBoxDelegate : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        QStyleOptionViewItem cell = option;
        initStyleOption(&cell, index);
        cell.features &= ~QStyleOptionViewItem::HasCheckIndicator;
        cell.text.clear();
        QStyle* style = option.widget->style();
        style->drawControl(QStyle::CE_ItemViewItem, &cell, painter, option.widget);

        QStyleOptionButton box;
        const QSize size = style->subElementRect(QStyle::SE_CheckBoxIndicator, &box, option.widget).size();
        box.rect = QStyle::alignedRect(option.direction, Qt::AlignCenter, size, option.rect);
        box.state = QStyle::State_Enabled;
        box.state |=
            index.data(Qt::CheckStateRole).toInt() == Qt::Checked ? QStyle::State_On : QStyle::State_Off;
        style->drawPrimitive(QStyle::PE_IndicatorCheckBox, &box, painter, option.widget);
    }

    // Whoever hears of a click switches what the box stands for.
    bool editorEvent(QEvent*, QAbstractItemModel*, const QStyleOptionViewItem&, const QModelIndex&) override {
        return false;
    }
};

// Draws a cell's picture in the cell's middle, for the same reason.
class PictureDelegate : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        QStyleOptionViewItem cell = option;
        initStyleOption(&cell, index);
        const QIcon picture = std::exchange(cell.icon, QIcon());
        cell.features &= ~QStyleOptionViewItem::HasDecoration;
        option.widget->style()->drawControl(QStyle::CE_ItemViewItem, &cell, painter, option.widget);
        picture.paint(painter, QStyle::alignedRect(option.direction, Qt::AlignCenter, cell.decorationSize,
                                                   option.rect));
    }
};

// For names that begin alike: their ends tell them apart.
class MiddleElidingDelegate : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;

  protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        option->textElideMode = Qt::ElideMiddle;
    }
};

}  // namespace

KeyedGrid::KeyedGrid(QWidget* parent) : QTableWidget(parent) {
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    giveGridLook(*this);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setDefaultAlignment(Qt::AlignCenter | static_cast<Qt::Alignment>(Qt::TextWordWrap));
    horizontalHeader()->setStretchLastSection(true);
    horizontalHeader()->setSectionsClickable(true);
    connect(horizontalHeader(), &QHeaderView::sectionClicked, this, &KeyedGrid::sortBy);
}

QAbstractItemDelegate* KeyedGrid::delegateFor(const Column& column) {
    if (column.checkBox)
        return new CheckBoxDelegate(this);
    if (!column.picture.isNull())
        return new PictureDelegate(this);
    return column.alikeBeginnings ? new MiddleElidingDelegate(this) : nullptr;
}

void KeyedGrid::setColumns(const std::vector<Column>& columns) {
    setRowCount(0);
    columns_ = columns;
    setColumnCount(static_cast<int>(columns.size()));
    // New rows come in the order of their query, and the first click sorts upwards.
    horizontalHeader()->setSortIndicatorShown(false);
    horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
    for (int i = 0; i < columnCount(); ++i) {
        const Column& column = columns_[static_cast<std::size_t>(i)];
        setHorizontalHeaderItem(i, new QTableWidgetItem(fromUtf8(column.header)));
        setColumnHidden(i, column.hidden);
        delete itemDelegateForColumn(i);
        setItemDelegateForColumn(i, delegateFor(column));
    }
}

void KeyedGrid::setHeaders(const std::vector<Column>& columns) {
    if (columns.size() != columns_.size())
        return;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        columns_[i].header = columns[i].header;
        horizontalHeaderItem(static_cast<int>(i))->setText(fromUtf8(columns[i].header));
    }
    fitColumns();
}

KeyedGrid::Fill::Fill(KeyedGrid& grid) : grid_(grid) {
    grid_.setUpdatesEnabled(false);
    grid_.filled_ = grid_.rowCount();
}

KeyedGrid::Fill::~Fill() {
    grid_.setRowCount(std::exchange(grid_.filled_, notFilling));
    grid_.setUpdatesEnabled(true);
}

void KeyedGrid::addRow(const std::vector<Cell>& cells) {
    const bool filling = filled_ != notFilling;
    const int row = filling ? filled_ : rowCount();
    // During a fill the rows come in ever larger blocks, and no cell is told of by itself: all of the grid is
    // painted after it.
    if (row == rowCount())
        setRowCount(filling ? std::max(64, 2 * row) : row + 1);
    const QSignalBlocker quiet(filling ? model() : nullptr);
    for (std::size_t i = 0; i < columns_.size() && i < cells.size(); ++i)
        setItem(row, static_cast<int>(i), new ValueItem(columns_[i], cells[i]));
    filled_ = filling ? row + 1 : notFilling;
}

void KeyedGrid::fitColumns() {
    resizeColumnsToContents();
    widths_.assign(columns_.size(), {});
    for (int i = 0; i < columnCount(); ++i)
        if (!isColumnHidden(i))
            widths_[static_cast<std::size_t>(i)] = widthOf(i);
    shareWidth();
}

// Width of a section of the header that shows this text on one line.
int KeyedGrid::headerWidth(const QString& text) const {
    constexpr int breathing = 4;
    return horizontalHeader()->fontMetrics().horizontalAdvance(text) +
           2 * style()->pixelMetric(QStyle::PM_HeaderMargin) + breathing;
}

// Of a column that has just been made as wide as its content.
KeyedGrid::Width KeyedGrid::widthOf(int column) const {
    constexpr int breathing = 8;
    Width width{columnWidth(column) + breathing, 0};
    // A line may end behind a hyphen too.
    for (const QString& word : horizontalHeaderItem(column)->text().replace('-', "- ").split(' '))
        width.header = std::max(width.header, headerWidth(word));
    return width;
}

void KeyedGrid::stretchColumn(std::string_view column, int extra) {
    const int wide = columnIndex(column);
    // The last column would take what this one is to get.
    horizontalHeader()->setStretchLastSection(false);
    shareWidth(wide);
    // What the columns are too wide lies beyond the right edge; the last one's text stays within.
    const int last = horizontalHeader()->logicalIndex(columnCount() - 1);
    if (last != wide)
        setColumnWidth(last, columnWidth(last) + 2 * extra);
    int others = 0;
    int narrowest = width();
    for (int i = 0; i < columnCount(); ++i)
        if (i != wide && !isColumnHidden(i)) {
            others += columnWidth(i);
            narrowest = std::min(narrowest, columnWidth(i));
        }
    // Where the others leave too little, the grid scrolls: what tells the rows apart is never the narrowest.
    setColumnWidth(wide, std::max(narrowest + 1, width() - others + extra));
    fitHeader();
}

// Columns get what their content wants as long as that fits. Where it does not, the widest give way first,
// down to the longest words of their headers, so that every column stays in sight; what is cut off then is in
// the cell's tip. One column, if given, does not give way.
void KeyedGrid::shareWidth(int unlimited) {
    if (widths_.size() != columns_.size())
        return;
    const auto share = [&](int column, int limit) {
        const Width& width = widths_[static_cast<std::size_t>(column)];
        return column == unlimited ? width.content : std::max(width.header, std::min(width.content, limit));
    };
    int limit = viewport()->width();
    int total = 0;
    do {
        total = 0;
        for (int i = 0; i < columnCount(); ++i)
            total += share(i, limit);
    } while (total > viewport()->width() && --limit > 0);
    for (int i = 0; i < columnCount(); ++i)
        if (!isColumnHidden(i))
            setColumnWidth(i, share(i, limit));
    fitHeader();
}

// As high as its texts need: those that are wider than their column go on in a second line.
void KeyedGrid::fitHeader() {
    constexpr int margins = 6;
    QHeaderView& header = *horizontalHeader();
    int lines = 1;
    for (int i = 0; i < columnCount(); ++i)
        if (!isColumnHidden(i) && columnWidth(i) < headerWidth(horizontalHeaderItem(i)->text()))
            lines = 2;
    header.setFixedHeight(lines * header.fontMetrics().lineSpacing() + margins);
}

void KeyedGrid::resizeEvent(QResizeEvent* event) {
    QTableWidget::resizeEvent(event);
    if (event->oldSize().width() != event->size().width())
        shareWidth();
}

bool KeyedGrid::viewportEvent(QEvent* event) {
    if (event->type() == QEvent::ToolTip) {
        const auto* help = static_cast<QHelpEvent*>(event);
        const QTableWidgetItem* hit = itemAt(help->pos());
        if (hit && hit->toolTip().isEmpty() && showCutText(*this, *help))
            return true;
    }
    return QTableWidget::viewportEvent(event);
}

int KeyedGrid::columnIndex(std::string_view column) const {
    const QString wanted = fromUtf8(column);
    for (std::size_t i = 0; i < columns_.size(); ++i)
        if (fromUtf8(columns_[i].key).compare(wanted, Qt::CaseInsensitive) == 0)
            return static_cast<int>(i);
    throw platform::makeFailure(platform::itemNotFound, column);
}

QTableWidgetItem& KeyedGrid::cell(int gridRow, std::string_view column) const {
    const int index = columnIndex(column);
    if (gridRow < 1 || gridRow > rowCount())
        throw platform::makeFailure(platform::invalidProcedureCall, std::to_string(gridRow));
    return *item(gridRow - 1, index);
}

std::string KeyedGrid::currentColumnKey() const {
    return currentColumn() < 0 ? std::string() : columns_[static_cast<std::size_t>(currentColumn())].key;
}

QVariant KeyedGrid::cellValue(int gridRow, std::string_view column) const {
    return cell(gridRow, column).data(valueRole);
}

std::string KeyedGrid::cellText(int gridRow, std::string_view column) const {
    return toUtf8(cell(gridRow, column).text());
}

void KeyedGrid::setCurrentGridCell(int gridRow, std::string_view column) {
    setCurrentCell(gridRow - 1, columnIndex(column));
}

QRect KeyedGrid::cellRectangle(int gridRow, std::string_view column) const {
    return visualItemRect(&cell(gridRow, column));
}

// The header has turned its indicator already when it tells of a click.
void KeyedGrid::sortBy(int column) {
    horizontalHeader()->setSortIndicatorShown(true);
    sortItems(column, horizontalHeader()->sortIndicatorOrder());
}

// Handlers refill the grid, so the signals leave after the base class is done with its event.

void KeyedGrid::mouseReleaseEvent(QMouseEvent* event) {
    QTableWidget::mouseReleaseEvent(event);
    const QTableWidgetItem* hit = itemAt(event->position().toPoint());
    // The release that ends a double click is no click of its own.
    if (event->button() != Qt::LeftButton || std::exchange(doubleClicked_, false))
        return;
    if (hit && hit == currentItem())
        emit clicked();
}

void KeyedGrid::mousePressEvent(QMouseEvent* event) {
    doubleClicked_ = false;
    QTableWidget::mousePressEvent(event);
}

void KeyedGrid::mouseDoubleClickEvent(QMouseEvent* event) {
    QTableWidget::mouseDoubleClickEvent(event);
    doubleClicked_ = true;  // only now: on refilled rows the base class takes it for a press
    if (event->button() == Qt::LeftButton && itemAt(event->position().toPoint()))
        emit doubleClicked();
}

void KeyedGrid::keyPressEvent(QKeyEvent* event) {
    QTableWidget::keyPressEvent(event);
    if (!currentItem())
        return;
    if (event->key() == Qt::Key_Space)
        emit clicked();
    else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        emit doubleClicked();
}

}  // namespace ui
