#include "ui/base/appearance.h"

#include <QApplication>
#include <QIcon>
#include <QPainter>
#include <QPalette>
#include <QProxyStyle>
#include <QStyleFactory>
#include <QStyleOption>
#include <QToolTip>
#include <QWidget>
#include <algorithm>

#include "ui/base/contrast.h"

// Outside of every namespace, where the resources' own function stands.
static void initResources() {
    Q_INIT_RESOURCE(ui);  // a static library's resources are not there by themselves
}

namespace ui {

namespace {

// The grounds that the style makes of the colour of buttons: it lightens dark ones, and they get lighter
// towards their upper edge.
Grounds buttonGrounds(const QColor& button) {
    const QColor lower = button.lighter(100 + std::max(1, (180 - qGray(button.rgb())) / 6));
    return {button, lower, lower.lighter(118)};
}

// The ground, moved as far away from the text as it takes to read the text on all that the style makes of it.
QColor groundFor(const QColor& text, const QColor& ground, Grounds (*made)(const QColor&)) {
    constexpr int steps = 20;
    const QColor away = farthestFrom({text});
    for (int i = 0; i < steps; ++i) {
        const QColor moved = mixture(ground, away, static_cast<float>(i) / steps);
        if (lowestContrast(text, made(moved)) >= readableContrast)
            return moved;
    }
    return away;
}

// A row that is chosen is a little lighter at one edge and darker at the other.
Grounds shaded(const QColor& ground) {
    constexpr int shade = 103;
    return {ground, ground.lighter(shade), ground.darker(shade)};
}

// A list, tree or grid that does not have the focus. The lists of boxes that have popped up have it always.
bool isViewAside(const QWidget* widget) {
    return widget && !widget->hasFocus() && widget->window()->windowType() != Qt::Popup;
}

class ConsoleStyle : public QProxyStyle {
  public:
    ConsoleStyle() : QProxyStyle(QStyleFactory::create("Fusion")) {}

    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override {
        switch (metric) {
            case PM_MessageBoxIconSize:
                return 40;
            case PM_LayoutHorizontalSpacing:
            case PM_LayoutVerticalSpacing:
                return 8;
            case PM_LayoutLeftMargin:
            case PM_LayoutTopMargin:
            case PM_LayoutRightMargin:
            case PM_LayoutBottomMargin:
                return 12;
            case PM_TreeViewIndentation:
                return 18;
            default:
                return QProxyStyle::pixelMetric(metric, option, widget);
        }
    }

    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                           const QWidget* widget) const override {
        QSize result = QProxyStyle::sizeFromContents(type, option, size, widget);
        if (type == CT_PushButton)
            result += QSize(16, 4);
        else if (type == CT_ComboBox || type == CT_LineEdit)
            result.rheight() += 4;
        else if (type == CT_MenuItem)
            result += QSize(12, 4);
        else if (type == CT_ItemViewItem)
            result.rheight() = std::max(result.height(), option->fontMetrics.height() + 6);
        return result;
    }

    QIcon standardIcon(StandardPixmap icon, const QStyleOption* option,
                       const QWidget* widget) const override {
        switch (icon) {
            case SP_MessageBoxCritical:
                return QIcon(":/icons/boxCritical.svg");
            case SP_MessageBoxWarning:
                return QIcon(":/icons/boxExclamation.svg");
            case SP_MessageBoxInformation:
                return QIcon(":/icons/boxInformation.svg");
            case SP_MessageBoxQuestion:
                return QIcon(":/icons/boxQuestion.svg");
            default:
                return QProxyStyle::standardIcon(icon, option, widget);
        }
    }

    // A chosen row keeps its icon's own colours: a tint of the highlight would hide the icon on it.
    QPixmap generatedIconPixmap(QIcon::Mode mode, const QPixmap& pixmap,
                                const QStyleOption* option) const override {
        return mode == QIcon::Selected ? pixmap : QProxyStyle::generatedIconPixmap(mode, pixmap, option);
    }

    // Only the part that has the focus looks as if it had it.
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override {
        const auto* item = qstyleoption_cast<const QStyleOptionViewItem*>(option);
        if (element != CE_ItemViewItem || !item || !isViewAside(widget))
            return QProxyStyle::drawControl(element, option, painter, widget);
        QStyleOptionViewItem aside = *item;
        aside.state &= ~State_Active;
        QProxyStyle::drawControl(element, &aside, painter, widget);
    }

    // On a dark ground the style's own edges of boxes and options, a shade darker than it, cannot be seen.
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override {
        const auto* item = qstyleoption_cast<const QStyleOptionViewItem*>(option);
        if (element == PE_PanelItemViewRow && item && isViewAside(widget)) {
            QStyleOptionViewItem aside = *item;
            aside.state &= ~State_Active;
            return QProxyStyle::drawPrimitive(element, &aside, painter, widget);
        }
        QProxyStyle::drawPrimitive(element, option, painter, widget);
        const bool isOption = element == PE_IndicatorRadioButton;
        if (!isOption && element != PE_IndicatorCheckBox)
            return;
        const QColor ground = option->palette.color(QPalette::Base);
        const QColor text = option->palette.color(QPalette::Text);
        if (ground.lightness() >= text.lightness())
            return;
        const QRectF edge = QRectF(option->rect).adjusted(0.5, 0.5, -0.5, -0.5);
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setBrush(Qt::NoBrush);
        painter->setPen(mixture(ground, text, 0.5F));
        isOption ? painter->drawEllipse(edge) : painter->drawRect(edge);
        painter->restore();
    }

    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* result) const override {
        // Buttons carry their words alone.
        if (hint == SH_DialogButtonBox_ButtonsHaveIcons)
            return 0;
        return QProxyStyle::styleHint(hint, option, widget, result);
    }
};

void makeTextsReadable(QPalette& palette, QPalette::ColorGroup group) {
    const auto color = [&](QPalette::ColorRole role) { return palette.color(group, role); };
    const auto settle = [&](QPalette::ColorRole text, const Grounds& grounds) {
        palette.setColor(group, text, readable(color(text), grounds));
    };
    const QColor base = color(QPalette::Base);
    // Every second row has a ground of its own, which is to be near the other's.
    if (lowestContrast(farthestFrom({base}), {color(QPalette::AlternateBase)}) < readableContrast)
        palette.setColor(group, QPalette::AlternateBase, base);
    const QColor rows = color(QPalette::AlternateBase);
    settle(QPalette::Text, {base, rows});
    // The bar of the menus has the ground of the window and the text of the lists.
    palette.setColor(group, QPalette::Window,
                     groundFor(color(QPalette::Text), color(QPalette::Window), shaded));
    settle(QPalette::WindowText, {color(QPalette::Window)});
    settle(QPalette::PlaceholderText, {base});
    settle(QPalette::Link, {base, rows});
    settle(QPalette::LinkVisited, {base, rows});
    settle(QPalette::ToolTipText, {color(QPalette::ToolTipBase)});
    // Between the grounds of a button of a middle grey there is no colour for its text.
    const QColor onButton = farthestFrom({buttonGrounds(color(QPalette::Button)).back()});
    palette.setColor(group, QPalette::Button, groundFor(onButton, color(QPalette::Button), buttonGrounds));
    settle(QPalette::ButtonText, buttonGrounds(color(QPalette::Button)));
    palette.setColor(group, QPalette::Highlight,
                     groundFor(color(QPalette::HighlightedText), color(QPalette::Highlight), shaded));
}

}  // namespace

QPalette readablePalette(QPalette palette) {
    // What is chosen in a part that does not have the focus is only tinted.
    constexpr float tint = 0.3F;
    palette.setColor(QPalette::Inactive, QPalette::Highlight,
                     mixture(palette.color(QPalette::Active, QPalette::Base),
                             palette.color(QPalette::Active, QPalette::Highlight), tint));
    palette.setColor(QPalette::Inactive, QPalette::HighlightedText,
                     farthestFrom({palette.color(QPalette::Inactive, QPalette::Highlight)}));
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled})
        makeTextsReadable(palette, group);
    return palette;
}

void applyAppearance() {
    initResources();
    QApplication::setStyle(new ConsoleStyle);  // which the application owns; the analyzer cannot see that
    const QPalette asked = QApplication::palette();  // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks)
    // Inactive events are told in grey, and so are buttons that wait: grey is text to be read here too.
    QApplication::setPalette(readablePalette(asked));
    QToolTip::setPalette(readablePalette(QToolTip::palette()));
}

}  // namespace ui
