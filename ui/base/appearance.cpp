#include "ui/base/appearance.h"

#include <QApplication>
#include <QIcon>
#include <QPainter>
#include <QPalette>
#include <QProxyStyle>
#include <QStyleFactory>
#include <QStyleOption>
#include <cmath>

// Outside of every namespace, where the resources' own function stands.
static void initResources() {
    Q_INIT_RESOURCE(ui);  // a static library's resources are not there by themselves
}

namespace ui {

namespace {

QColor mixture(const QColor& first, const QColor& second, float shareOfSecond) {
    const auto mixed = [&](float a, float b) { return a + (b - a) * shareOfSecond; };
    return QColor::fromRgbF(mixed(first.redF(), second.redF()), mixed(first.greenF(), second.greenF()),
                            mixed(first.blueF(), second.blueF()));
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

    // On a dark ground the style's own edges of boxes and options, a shade darker than it, cannot be seen.
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override {
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

// Relative luminance of a colour, 0 to 1.
double luminance(const QColor& color) {
    const auto linear = [](double channel) {
        return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

double contrast(const QColor& a, const QColor& b) {
    const double lighter = std::max(luminance(a), luminance(b));
    const double darker = std::min(luminance(a), luminance(b));
    return (lighter + 0.05) / (darker + 0.05);
}

// The first mixture of the two, from `grey` on, that can be read on the background.
QColor readableGrey(const QColor& grey, const QColor& text, const QColor& background) {
    constexpr double readable = 4.5;
    constexpr int steps = 20;
    for (int i = 0; i < steps; ++i) {
        const QColor mixed = mixture(grey, text, static_cast<float>(i) / steps);
        if (contrast(mixed, background) >= readable)
            return mixed;
    }
    return text;
}

}  // namespace

void applyAppearance() {
    initResources();
    QApplication::setStyle(new ConsoleStyle);    // which the application owns; the analyzer cannot see that
    QPalette palette = QApplication::palette();  // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks)
    // Inactive events are told in grey, so grey is text to be read here and not decoration.
    palette.setColor(QPalette::Disabled, QPalette::Text,
                     readableGrey(palette.color(QPalette::Disabled, QPalette::Text),
                                  palette.color(QPalette::Active, QPalette::Text),
                                  palette.color(QPalette::Active, QPalette::Base)));
    QApplication::setPalette(palette);
}

}  // namespace ui
