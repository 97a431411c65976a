#include "ui/widgets/listFinder.h"

#include <QApplication>
#include <QBoxLayout>
#include <QGridLayout>
#include <QHeaderView>
#include <QListView>
#include <QShortcut>
#include <QTableView>
#include <QTreeView>
#include <algorithm>
#include <utility>

#include "core/state.h"
#include "ui/widgets/keyedTree.h"

namespace ui {

namespace {

FindTexts presentTexts() {
    return findTexts(languageOf(core::gLanguageId));
}

bool isHidden(const QAbstractItemView& view, const QModelIndex& row) {
    if (const auto* tree = qobject_cast<const QTreeView*>(&view))
        return tree->isRowHidden(row.row(), row.parent());
    if (const auto* table = qobject_cast<const QTableView*>(&view))
        return table->isRowHidden(row.row());
    const auto* list = qobject_cast<const QListView*>(&view);
    return list && list->isRowHidden(row.row());
}

void setHidden(QAbstractItemView& view, const QModelIndex& row, bool hidden) {
    if (auto* tree = qobject_cast<QTreeView*>(&view))
        tree->setRowHidden(row.row(), row.parent(), hidden);
    else if (auto* table = qobject_cast<QTableView*>(&view))
        table->setRowHidden(row.row(), hidden);
    else if (auto* list = qobject_cast<QListView*>(&view))
        list->setRowHidden(row.row(), hidden);
}

bool matches(const QAbstractItemView& view, const QModelIndex& row, const QString& text) {
    const auto* table = qobject_cast<const QTableView*>(&view);
    const int columns = table ? row.model()->columnCount(row.parent()) : 1;
    for (int column = 0; column < columns; ++column)
        if ((!table || !table->isColumnHidden(column)) &&
            row.siblingAtColumn(column).data(Qt::DisplayRole).toString().contains(text, Qt::CaseInsensitive))
            return true;
    return false;
}

// All rows from the first, each node before what is below it.
void collect(const QAbstractItemModel& model, const QModelIndex& parent, QModelIndexList& rows) {
    for (int row = 0; row < model.rowCount(parent); ++row) {
        const QModelIndex index = model.index(row, 0, parent);
        rows << index;
        if (model.hasChildren(index))
            collect(model, index, rows);
    }
}

QModelIndexList rowsOf(const QAbstractItemView& view) {
    QModelIndexList rows;
    if (view.model())
        collect(*view.model(), {}, rows);
    return rows;
}

struct Counts {
    qsizetype shown = 0;
    qsizetype all = 0;
};

// Hides what neither matches nor stands above or below what does.
class Hiding {
  public:
    // `known` says of each row, in their order, whether it is hidden; when it is of other rows the view is
    // asked, which is slow.
    Hiding(QAbstractItemView& view, const QString& text, std::vector<bool>& known)
        : view_(view), text_(text), known_(known) {}

    // Gives how many rows are left.
    Counts show() {
        const Counts counts = show({}, text_.isEmpty());
        known_ = std::move(hidden_);
        return counts;
    }

  private:
    Counts show(const QModelIndex& parent, bool all) {
        Counts counts;
        const QAbstractItemModel& model = *view_.model();
        for (int row = 0; row < model.rowCount(parent); ++row) {
            const QModelIndex index = model.index(row, 0, parent);
            const std::size_t place = hidden_.size();
            hidden_.push_back(false);
            const bool isMatch = all || matches(view_, index, text_);
            Counts below;
            if (model.hasChildren(index))
                below = show(index, isMatch);
            const bool isShown = isMatch || below.shown > 0;
            hidden_[place] = !isShown;
            const bool was = place < known_.size() ? known_[place] : isHidden(view_, index);
            if (was == isShown)
                setHidden(view_, index, !isShown);
            counts.shown += (isShown ? 1 : 0) + below.shown;
            counts.all += 1 + below.all;
        }
        return counts;
    }

    QAbstractItemView& view_;
    const QString& text_;
    std::vector<bool>& known_;
    std::vector<bool> hidden_;
};

// A tree that is as wide as its longest line measures this many lines at each change. While lines come and go
// with each key those about the ones in sight have to do; 0 is for a view that is no tree.
int setMeasuredLines(QAbstractItemView& view, int lines) {
    auto* const tree = qobject_cast<QTreeView*>(&view);
    if (!tree)
        return 0;
    const int before = tree->header()->resizeContentsPrecision();
    tree->header()->setResizeContentsPrecision(lines);
    return before;
}

// The tree whose selection the window follows.
KeyedTree* choosingTree(QAbstractItemView* view) {
    auto* tree = qobject_cast<KeyedTree*>(view);
    return tree && tree->isChosenByMoving() ? tree : nullptr;
}

// A search only marks nodes of a tree whose nodes open something; where it ends is opened, unless the window
// stood there before.
void chooseFound(QAbstractItemView* view, std::string& before) {
    KeyedTree* const tree = choosingTree(view);
    if (!tree || tree->selectedKey() == before)
        return;
    before = tree->selectedKey();
    tree->chooseSelected();
}

}  // namespace

ListFinder::ListFinder(QWidget& window, std::function<void(QWidget&)> place)
    : QObject(&window), window_(window) {
    bar_ = new FindBar(presentTexts(),
                       {[this](const QString& text, FindBar::Step step) { return find(text, step); },
                        [this](const QString& text) { filter(text); }, [this] { close(); }},
                       &window);
    bar_->hide();
    bar_->dropMnemonics();
    place(*bar_);
    connect(new QShortcut(QKeySequence::Find, &window), &QShortcut::activated, this, &ListFinder::open);
    whileOpen_ = bar_->takeStepKeys();
    for (QShortcut* key : whileOpen_)
        key->setEnabled(false);
    again_.setSingleShot(true);
    connect(&again_, &QTimer::timeout, this, &ListFinder::filterAgain);
    connect(qApp, &QApplication::focusChanged, this, &ListFinder::followFocus);
}

void ListFinder::relabel() {
    bar_->setTexts(presentTexts());
}

// The list that has the focus, else the one that was searched last, else the first in sight.
QAbstractItemView* ListFinder::wanted() const {
    for (QWidget* widget = QApplication::focusWidget(); widget; widget = widget->parentWidget())
        if (auto* view = qobject_cast<QAbstractItemView*>(widget); view && view->window() == &window_)
            return view;
    if (last_ && last_->isVisible())
        return last_;
    for (QAbstractItemView* view : window_.findChildren<QAbstractItemView*>())
        if (view->isVisible() && view->window() == &window_ && !qobject_cast<QHeaderView*>(view))
            return view;
    return nullptr;
}

void ListFinder::open() {
    QAbstractItemView* const view = wanted();
    if (!view)
        return;
    if (view != view_ || !bar_->isVisible()) {
        bar_->finish();
        attach(*view);
    }
    relabel();
    bar_->show();
    for (QShortcut* key : whileOpen_)
        key->setEnabled(true);
    emit roomChanged();
    bar_->focusLine();
    view->scrollTo(view->currentIndex());
}

void ListFinder::attach(QAbstractItemView& view) {
    detach();
    view_ = &view;
    last_ = &view;
    constexpr int fewLines = 100;
    measuredLines_ = setMeasuredLines(view, fewLines);
    bar_->setSubject(view.accessibleName());
    if (const KeyedTree* tree = choosingTree(view_))
        before_ = tree->selectedKey();
    // Rows that come later, or all of them anew, are to be held against the filter too.
    const auto again = [this] {
        hidden_.clear();
        again_.start(0);
    };
    const QAbstractItemModel* const model = view.model();
    watches_ = {connect(model, &QAbstractItemModel::rowsInserted, this, again),
                connect(model, &QAbstractItemModel::rowsRemoved, this, again),
                connect(model, &QAbstractItemModel::modelReset, this, again),
                connect(model, &QAbstractItemModel::layoutChanged, this, again),
                // A click, a rebuild or an answer of Cancel takes the window elsewhere while the bar is open.
                connect(view.selectionModel(), &QItemSelectionModel::currentChanged, this, [this] {
                    if (const KeyedTree* tree = choosingTree(view_); tree && !isMarking_)
                        before_ = tree->selectedKey();
                })};
}

void ListFinder::detach() {
    for (const QMetaObject::Connection& watch : std::exchange(watches_, {}))
        disconnect(watch);
    if (view_)
        setMeasuredLines(*view_, measuredLines_);
    view_ = nullptr;
    before_.clear();
    hidden_.clear();
}

void ListFinder::close() {
    const QPointer<QAbstractItemView> view = view_;
    std::string before = before_;
    detach();
    bar_->hide();
    for (QShortcut* key : whileOpen_)
        key->setEnabled(false);
    emit roomChanged();
    if (!view)
        return;
    view->scrollTo(view->currentIndex());
    chooseFound(view, before);
    if (view)
        view->setFocus(Qt::OtherFocusReason);
}

bool ListFinder::find(const QString& text, FindBar::Step step) {
    if (!view_)
        return false;
    const QModelIndexList rows = rowsOf(*view_);
    const qsizetype count = rows.size();
    const qsizetype at = rows.indexOf(view_->currentIndex().siblingAtColumn(0));
    const qsizetype forward = step == FindBar::Step::previous ? -1 : 1;
    // What was typed may stay where it is.
    qsizetype row = step == FindBar::Step::typed ? std::max<qsizetype>(at, 0)
                    : at < 0 && forward < 0      ? count - 1
                                                 : at + forward;
    for (qsizetype i = 0; i < count; ++i, row += forward) {
        const QModelIndex& index = rows[(row % count + count) % count];
        if (!matches(*view_, index, text) || isHidden(*view_, index))
            continue;
        const int column = std::max(view_->currentIndex().column(), 0);
        const QModelIndex cell = index.siblingAtColumn(column);
        isMarking_ = true;
        view_->setCurrentIndex(cell.isValid() ? cell : index);
        isMarking_ = false;
        view_->scrollTo(view_->currentIndex());
        return true;
    }
    return false;
}

void ListFinder::filter(const QString& text) {
    if (!view_ || !view_->model())
        return;
    view_->setUpdatesEnabled(false);
    const Counts counts = Hiding(*view_, text, hidden_).show();
    view_->setUpdatesEnabled(true);
    bar_->showCounts(counts.shown, counts.all);
}

void ListFinder::filterAgain() {
    if (view_ && !bar_->filterText().isEmpty())
        filter(bar_->filterText());
}

// Whoever goes elsewhere than to the tree finds it where the window stands. A press on the tree chooses by
// itself.
void ListFinder::followFocus(QWidget* old, QWidget* now) {
    if (!bar_->isVisible() || !old || !now || !bar_->isAncestorOf(old) || bar_->isAncestorOf(now) ||
        now->window() != &window_)
        return;
    if (now == view_ && QApplication::mouseButtons() == Qt::NoButton)
        chooseFound(view_, before_);
    else
        takeBack();
}

void ListFinder::takeBack() {
    KeyedTree* const tree = choosingTree(view_);
    if (tree && tree->contains(before_) && tree->selectedKey() != before_)
        tree->mark(before_);
}

void addFinder(QWidget& dialog) {
    new ListFinder(dialog, [&dialog](QWidget& bar) {
        if (auto* box = qobject_cast<QBoxLayout*>(dialog.layout()))
            box->addWidget(&bar);
        else if (auto* grid = qobject_cast<QGridLayout*>(dialog.layout()))
            grid->addWidget(&bar, grid->rowCount(), 0, 1, -1);
    });
}

}  // namespace ui
