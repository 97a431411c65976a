#include "ui/widgets/keyedTree.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <algorithm>
#include <cstdint>
#include <utility>

#include "platform/failure.h"
#include "ui/base/text.h"
#include "ui/widgets/cellTip.h"

namespace ui {

namespace {

constexpr int nodeIndexRole = Qt::UserRole;

char lowerCase(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// Nearly all keys are plain: those are folded letter by letter, without another text.
bool isPlain(std::string_view key) {
    return std::all_of(key.begin(), key.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

std::string folded(std::string_view key) {
    return toUtf8(fromUtf8(key).toCaseFolded());
}

// FNV-1a in 64 bits, with its two constants.
std::size_t hashOfFolded(std::string_view key) {
    std::uint64_t hash = 14695981039346656037U;
    for (const char c : key)
        hash = (hash ^ static_cast<unsigned char>(lowerCase(c))) * 1099511628211U;
    return hash;
}

QBrush greyedText(const QWidget& tree) {
    return tree.palette().brush(QPalette::Disabled, QPalette::Text);
}

// A text that goes on beyond the right edge ends there in an ellipsis; scrolling sideways brings the rest.
class EdgeElidingDelegate : public QStyledItemDelegate {
  public:
    explicit EdgeElidingDelegate(QAbstractScrollArea& tree) : QStyledItemDelegate(&tree), tree_(tree) {}

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        QStyleOptionViewItem inSight = option;
        inSight.rect.setRight(std::min(option.rect.right(), tree_.viewport()->rect().right()));
        QStyledItemDelegate::paint(painter, inSight, index);
    }

  private:
    QAbstractScrollArea& tree_;
};

}  // namespace

class KeyedTree::Item : public QTreeWidgetItem {
  public:
    QVariant data(int column, int role) const override {
        if (role != Qt::AccessibleDescriptionRole)
            return QTreeWidgetItem::data(column, role);
        const auto* tree = static_cast<const KeyedTree*>(treeWidget());
        return tree && tree->describe_ ? QVariant(fromUtf8(tree->describe_(tree->keyOf(this)))) : QVariant();
    }
};

KeyedTree::KeyedTree(QWidget* parent) : QTreeWidget(parent) {
    header()->hide();
    setColumnCount(1);
    setUniformRowHeights(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setExpandsOnDoubleClick(true);
    setMouseTracking(true);
    viewport()->setMouseTracking(true);
    // Long names scroll sideways.
    header()->setStretchLastSection(false);
    header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    setItemDelegate(new EdgeElidingDelegate(*this));
    // What is scrolled along still shows the ellipses of where it stood.
    connect(horizontalScrollBar(), &QScrollBar::valueChanged, viewport(), qOverload<>(&QWidget::update));
    connect(this, &QTreeWidget::itemExpanded, this,
            [this](QTreeWidgetItem* item) { emit nodeExpanded(keyOf(item)); });
    connect(this, &QTreeWidget::itemCollapsed, this,
            [this](QTreeWidgetItem* item) { emit nodeCollapsed(keyOf(item)); });
    connect(this, &QTreeWidget::itemChanged, this, &KeyedTree::noteCheck);
    showTipByKey(*this, [this] {
        if (!selectedKey().empty())
            emit pointerMoved(visualItemRect(currentItem()).center());  // the tip is that of this node then
    });
}

std::size_t KeyedTree::KeyHash::operator()(std::string_view key) const {
    return isPlain(key) ? hashOfFolded(key) : hashOfFolded(folded(key));
}

bool KeyedTree::SameKey::operator()(std::string_view left, std::string_view right) const {
    if (isPlain(left) && isPlain(right))
        return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                          [](char a, char b) { return lowerCase(a) == lowerCase(b); });
    return folded(left) == folded(right);
}

void KeyedTree::addNode(const NewNode& node) {
    const std::size_t place = order_.size();
    Node& added = order_.emplace_back(Node{node.key, node.info, nullptr});
    if (!index_.try_emplace(added.key, place).second) {
        order_.pop_back();
        throw platform::makeFailure(platform::keyNotUnique, node.key);
    }
    QTreeWidgetItem* parent = node.parent.empty() ? invisibleRootItem() : find(node.parent);
    if (!parent) {
        index_.erase(added.key);
        order_.pop_back();
        throw platform::makeFailure(platform::elementNotFound, node.parent);
    }
    auto item = std::make_unique<Item>();
    item->setText(0, fromUtf8(node.text));
    if (!node.icon.isNull())
        item->setIcon(0, node.icon);
    item->setData(0, nodeIndexRole, static_cast<qulonglong>(place));
    if (node.bold) {
        QFont bold = font();
        bold.setBold(true);
        item->setFont(0, bold);
    }
    if (node.greyed)
        item->setForeground(0, greyedText(*this));
    if (node.checkBox)
        item->setCheckState(0, Qt::Unchecked);
    added.item = item.get();
    parent->addChild(item.release());
}

void KeyedTree::clearNodes() {
    index_.clear();
    order_.clear();
    clear();
}

QTreeWidgetItem* KeyedTree::find(std::string_view key) const {
    const auto found = index_.find(key);
    return found == index_.end() ? nullptr : order_[found->second].item;
}

QTreeWidgetItem& KeyedTree::get(std::string_view key) const {
    QTreeWidgetItem* item = find(key);
    if (!item)
        throw platform::makeFailure(platform::elementNotFound, key);
    return *item;
}

std::string KeyedTree::keyOf(const QTreeWidgetItem* item) const {
    if (!item)
        return {};
    const auto index = item->data(0, nodeIndexRole).toULongLong();
    return index < order_.size() ? order_[index].key : std::string();
}

const std::string& KeyedTree::keyAt(long index) const {
    if (index < 1 || index > count())
        throw platform::makeFailure(platform::elementNotFound, std::to_string(index));
    return order_[static_cast<std::size_t>(index - 1)].key;
}

const classNodeInfo& KeyedTree::info(std::string_view key) const {
    const QTreeWidgetItem& item = get(key);
    return order_[item.data(0, nodeIndexRole).toULongLong()].info;
}

std::string KeyedTree::nodeText(std::string_view key) const {
    return toUtf8(get(key).text(0));
}

void KeyedTree::setNodeText(std::string_view key, const std::string& text) {
    const QScopedValueRollback ours(settingState_, true);
    get(key).setText(0, fromUtf8(text));
}

void KeyedTree::setGreyed(std::string_view key, bool greyed) {
    const QScopedValueRollback ours(settingState_, true);
    get(key).setData(0, Qt::ForegroundRole, greyed ? QVariant(greyedText(*this)) : QVariant());
}

bool KeyedTree::isGreyed(std::string_view key) const {
    return get(key).data(0, Qt::ForegroundRole).isValid();
}

bool KeyedTree::isChecked(std::string_view key) const {
    return get(key).checkState(0) == Qt::Checked;
}

void KeyedTree::setChecked(std::string_view key, bool checked) {
    const QScopedValueRollback ours(settingState_, true);
    get(key).setCheckState(0, checked ? Qt::Checked : Qt::Unchecked);
}

std::string KeyedTree::parentKey(std::string_view key) const {
    return keyOf(get(key).parent());
}

std::vector<std::string> KeyedTree::childKeys(std::string_view key) const {
    const QTreeWidgetItem& item = key.empty() ? *invisibleRootItem() : get(key);
    std::vector<std::string> keys;
    keys.reserve(static_cast<std::size_t>(item.childCount()));
    for (int i = 0; i < item.childCount(); ++i)
        keys.push_back(keyOf(item.child(i)));
    return keys;
}

std::string KeyedTree::selectedKey() const {
    return keyOf(currentItem());
}

void KeyedTree::select(std::string_view key) {
    setCurrentItem(&get(key));
}

void KeyedTree::chooseSelected() {
    if (const std::string key = selectedKey(); !key.empty())
        emit nodeClicked(key);
}

void KeyedTree::mark(std::string_view key) {
    QTreeWidgetItem& item = get(key);
    const bool scrolls = hasAutoScroll();
    setAutoScroll(false);
    setCurrentItem(&item);
    setAutoScroll(scrolls);
    for (const QTreeWidgetItem* parent = item.parent(); parent; parent = parent->parent())
        if (!parent->isExpanded())
            return;
    scrollToItem(&item);
}

void KeyedTree::ensureVisible(std::string_view key) {
    QTreeWidgetItem& item = get(key);
    for (QTreeWidgetItem* parent = item.parent(); parent; parent = parent->parent())
        if (!parent->isExpanded())
            parent->setExpanded(true);
    if (fills_ == 0)
        scrollToItem(&item);
}

void KeyedTree::scrollFullyLeft() {
    horizontalScrollBar()->setValue(horizontalScrollBar()->minimum());
}

std::string KeyedTree::hitTest(const QPoint& position) const {
    return keyOf(itemAt(position));
}

void KeyedTree::resizeEvent(QResizeEvent* event) {
    QTreeWidget::resizeEvent(event);
    // A short name is chosen over the tree's whole width, as a long one is.
    header()->setMinimumSectionSize(viewport()->width());
}

// Handlers may rebuild the tree, so every signal leaves after the base class is done with its event.

void KeyedTree::mousePressEvent(QMouseEvent* event) {
    const QPoint position = event->position().toPoint();
    if (event->button() == Qt::RightButton) {
        emit rightPressed(position);
        return;
    }
    // The base class would move to the node under any other button too, and nobody would hear of it.
    if (event->button() != Qt::LeftButton)
        return;
    chosenKey_ = selectedKey();
    pressedKey_ = hitTest(position);
    QTreeWidget::mousePressEvent(event);
}

// A box that a program for disabled people switches comes outside of any event of the tree.
void KeyedTree::noteCheck(const QTreeWidgetItem* item) {
    if (settingState_ || !item->data(0, Qt::CheckStateRole).isValid())
        return;
    checkedKey_ = keyOf(item);
    if (!inEvent_)
        tellOfCheck();
}

void KeyedTree::tellOfCheck() {
    const std::string key = std::exchange(checkedKey_, {});
    if (!key.empty())
        emit nodeChecked(key);
}

void KeyedTree::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        QTreeWidget::mouseDoubleClickEvent(event);
    else if (event->button() == Qt::RightButton)
        mousePressEvent(event);
}

void KeyedTree::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return;
    {
        const QScopedValueRollback during(inEvent_, true);
        QTreeWidget::mouseReleaseEvent(event);
    }
    tellOfCheck();
    const QPoint position = event->position().toPoint();
    QTreeWidgetItem* item = itemAt(position);
    const std::string key = keyOf(item);
    // Left of the item's own rectangle stands the expander, which chooses nothing.
    const bool onItem = item && position.x() >= visualItemRect(item).left();
    if (onItem && key == pressedKey_)
        emit nodeClicked(key);
    // A press alone moves the selection. Whoever lets go elsewhere has still chosen that node, and its pane
    // must not be another one's.
    else if (currentItem() && selectedKey() != chosenKey_)
        emit nodeClicked(selectedKey());
}

void KeyedTree::mouseMoveEvent(QMouseEvent* event) {
    // The base class would drag the selection along.
    if (!(event->buttons() & Qt::LeftButton))
        QTreeWidget::mouseMoveEvent(event);
    emit pointerMoved(event->position().toPoint());
}

void KeyedTree::keyPressEvent(QKeyEvent* event) {
    const std::string before = selectedKey();
    {
        const QScopedValueRollback during(inEvent_, true);
        QTreeWidget::keyPressEvent(event);
    }
    tellOfCheck();
    const std::string after = selectedKey();
    const bool enters =
        event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter || event->key() == Qt::Key_Space;
    if (!after.empty() && (enterOnly_ ? enters : after != before))
        emit nodeClicked(after);
}

void KeyedTree::focusInEvent(QFocusEvent* event) {
    const bool nothingSelected = selectedItems().isEmpty();
    QTreeWidget::focusInEvent(event);
    // The base class makes the first node current without selecting it, and no key could then choose it.
    const bool byKeyboard =
        event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason;
    if (nothingSelected && byKeyboard && count() > 0) {
        const std::string first = keyAt(1);
        select(first);
        if (!enterOnly_)
            emit nodeClicked(first);
    }
}

void KeyedTree::contextMenuEvent(QContextMenuEvent* event) {
    // The menu key asks for the popup of the selected node; the mouse has its own way above.
    if (event->reason() == QContextMenuEvent::Keyboard && currentItem())
        emit rightPressed(visualItemRect(currentItem()).center());
    event->accept();
}

KeyedTree::Fill::Fill(KeyedTree& tree) : tree_(tree) {
    ++tree_.fills_;
    tree_.setUpdatesEnabled(false);
}

KeyedTree::Fill::~Fill() {
    if (--tree_.fills_ > 0)
        return;
    tree_.setUpdatesEnabled(true);
    if (tree_.currentItem())
        tree_.scrollToItem(tree_.currentItem());
}

}  // namespace ui
