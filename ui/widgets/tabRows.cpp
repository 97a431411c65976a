#include "ui/widgets/tabRows.h"

#include <QAbstractButton>
#include <QAccessibleWidget>
#include <QButtonGroup>
#include <QFrame>
#include <QGridLayout>
#include <QStackedWidget>
#include <QStyleOptionTab>
#include <QStylePainter>
#include <algorithm>

#include "ui/base/controls.h"

namespace ui {

namespace {

// A tab as the style draws it. The chosen one is told by its weight too.
class TabButton : public QAbstractButton {
  public:
    explicit TabButton(QWidget* parent) : QAbstractButton(parent) {
        setCheckable(true);
        setFocusPolicy(Qt::TabFocus);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    }

    // The style draws a tab open towards its page; one that stands in a row behind is to be closed.
    void setBehind(bool behind) {
        behind_ = behind;
        update();
    }

    QSize sizeHint() const override {
        constexpr int margin = 12;
        QFont bold = font();
        bold.setBold(true);
        const QSize text = QFontMetrics(bold).size(Qt::TextShowMnemonic, this->text());
        return {text.width() + 2 * margin, text.height() + margin};
    }

    // A long caption takes its column's width from the others.
    QSize minimumSizeHint() const override { return sizeHint(); }

  protected:
    void paintEvent(QPaintEvent*) override {
        QStyleOptionTab option;
        option.initFrom(this);
        option.state &= ~QStyle::State_HasFocus;
        option.shape = QTabBar::RoundedNorth;
        option.position = QStyleOptionTab::OnlyOneTab;
        option.text = text();
        if (isChecked())
            option.state |= QStyle::State_Selected;
        if (hasFocus())
            option.state |= QStyle::State_HasFocus | QStyle::State_KeyboardFocusChange;
        QStylePainter painter(this);
        QFont weighted = font();
        weighted.setBold(isChecked());
        painter.setFont(weighted);
        painter.drawControl(QStyle::CE_TabBarTab, option);
        if (behind_) {
            painter.setPen(palette().color(QPalette::Mid));
            painter.drawLine(rect().bottomLeft(), rect().bottomRight());
        }
    }

  private:
    bool behind_ = false;
};

// The rows of tabs, apart from the pages.
class TabStrip : public QWidget {
  public:
    using QWidget::QWidget;
};

// What a program for disabled people is told: a list of tabs, of which one is chosen.
class AccessibleTab : public QAccessibleWidget {
  public:
    explicit AccessibleTab(QAbstractButton& tab)
        : QAccessibleWidget(&tab, QAccessible::PageTab, QString()), tab_(tab) {}

    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Name ? plainCaption(tab_.text()) : QAccessibleWidget::text(kind);
    }
    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.selectable = true;
        state.selected = tab_.isChecked();
        return state;
    }
    QStringList actionNames() const override { return {pressAction(), setFocusAction()}; }
    void doAction(const QString& action) override {
        if (action == pressAction())
            tab_.click();
        else
            QAccessibleWidget::doAction(action);
    }

  private:
    QAbstractButton& tab_;
};

QAccessibleInterface* makeAccessible(const QString&, QObject* object) {
    if (auto* tab = dynamic_cast<TabButton*>(object))
        return new AccessibleTab(*tab);
    if (auto* strip = dynamic_cast<TabStrip*>(object))
        return new QAccessibleWidget(strip, QAccessible::PageTabList);
    return nullptr;
}

}  // namespace

TabRows::TabRows(int tabsPerRow, QWidget* parent)
    : QWidget(parent),
      tabsPerRow_(tabsPerRow),
      strip_(new TabStrip(this)),
      rows_(new QGridLayout(strip_)),
      group_(new QButtonGroup(this)),
      pages_(new QStackedWidget) {
    strip_->setObjectName("tabStrip");
    QAccessible::installFactory(makeAccessible);  // a second time does nothing
    rows_->setContentsMargins(0, 0, 0, 0);
    rows_->setSpacing(0);
    for (int column = 0; column < tabsPerRow_; ++column)
        rows_->setColumnStretch(column, 1);
    auto* frame = new QFrame(this);
    frame->setFrameShape(QFrame::StyledPanel);
    auto* inside = new QVBoxLayout(frame);
    inside->addWidget(pages_);
    auto* whole = new QVBoxLayout(this);
    whole->setContentsMargins(0, 0, 0, 0);
    whole->setSpacing(0);
    whole->addWidget(strip_);
    whole->addWidget(frame, 1);
    connect(group_, &QButtonGroup::idToggled, this, [this](int index, bool on) {
        if (!on)
            return;
        pages_->setCurrentIndex(index);
        QAccessibleEvent chosen(&tab(index), QAccessible::Selection);
        QAccessible::updateAccessibility(&chosen);
        emit currentChanged(index);
    });
}

int TabRows::addTab(QWidget* page) {
    const int index = pages_->addWidget(page);
    auto* button = new TabButton(strip_);
    group_->addButton(button, index);
    tabs_.push_back(button);
    visible_.push_back(true);
    if (index == 0)
        button->setChecked(true);
    placeTabs();
    return index;
}

void TabRows::placeTabs() {
    const auto shown = static_cast<int>(std::ranges::count(visible_, true));
    const int lastRow = (shown - 1) / tabsPerRow_;
    int place = 0;
    for (std::size_t i = 0; i < tabs_.size(); ++i) {
        rows_->removeWidget(tabs_[i]);
        tabs_[i]->setVisible(visible_[i]);
        if (visible_[i]) {
            rows_->addWidget(tabs_[i], place / tabsPerRow_, place % tabsPerRow_);
            static_cast<TabButton*>(tabs_[i])->setBehind(place / tabsPerRow_ < lastRow);
            ++place;
        }
    }
}

void TabRows::setTabText(int index, const QString& text) {
    tab(index).setText(text);
    pages_->widget(index)->setAccessibleName(plainCaption(text));
}

QString TabRows::tabText(int index) const {
    return tab(index).text();
}

void TabRows::setTabVisible(int index, bool visible) {
    visible_[static_cast<std::size_t>(index)] = visible;
    placeTabs();
}

bool TabRows::isTabVisible(int index) const {
    return visible_[static_cast<std::size_t>(index)];
}

int TabRows::currentIndex() const {
    return pages_->currentIndex();
}

void TabRows::setCurrentIndex(int index) {
    tab(index).setChecked(true);
}

QWidget* TabRows::placeTabsBehind(QWidget* before) {
    for (QAbstractButton* button : tabs_) {
        setTabOrder(before, button);
        before = button;
    }
    return before;
}

}  // namespace ui
