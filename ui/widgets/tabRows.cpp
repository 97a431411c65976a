#include "ui/widgets/tabRows.h"

#include <QAbstractButton>
#include <QButtonGroup>
#include <QFrame>
#include <QGridLayout>
#include <QStackedWidget>
#include <QStyleOptionTab>
#include <QStylePainter>
#include <algorithm>

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

}  // namespace

TabRows::TabRows(int tabsPerRow, QWidget* parent)
    : QWidget(parent),
      tabsPerRow_(tabsPerRow),
      rows_(new QGridLayout),
      group_(new QButtonGroup(this)),
      pages_(new QStackedWidget) {
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
    whole->addLayout(rows_);
    whole->addWidget(frame, 1);
    connect(group_, &QButtonGroup::idToggled, this, [this](int index, bool on) {
        if (!on)
            return;
        pages_->setCurrentIndex(index);
        emit currentChanged(index);
    });
}

int TabRows::addTab(QWidget* page) {
    const int index = pages_->addWidget(page);
    auto* button = new TabButton(this);
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
