#include "host/eventViewer/barChart.h"

#include <QLocale>
#include <QPainter>
#include <algorithm>
#include <utility>

#include "ui/base/contrast.h"

namespace viewer {

namespace {

constexpr int heightInLines = 9;

}  // namespace

BarChart::BarChart(const QString& records, const QString& notifications, QWidget* parent)
    : QWidget(parent), records_(records), notifications_(notifications) {}

// Whoever cannot see the bars hears their numbers.
void BarChart::setBars(std::vector<Bar> bars) {
    bars_ = std::move(bars);
    QStringList words;
    for (const Bar& bar : bars_)
        words << QString("%1: %2 %3, %4 %5")
                     .arg(bar.name)
                     .arg(bar.records)
                     .arg(records_)
                     .arg(bar.notifications)
                     .arg(notifications_);
    setAccessibleDescription(words.join("; "));
    setToolTip(words.join('\n'));
    update();
}

QSize BarChart::sizeHint() const {
    constexpr int charactersOfDay = 9;
    return {7 * charactersOfDay * fontMetrics().averageCharWidth(),
            heightInLines * fontMetrics().lineSpacing()};
}

void BarChart::paintBar(QPainter& painter, const QRect& place, std::size_t value, std::size_t most,
                        const QColor& color) const {
    const int line = fontMetrics().lineSpacing();
    const int room = place.height() - line;
    const int height =
        static_cast<int>(static_cast<double>(room) * static_cast<double>(value) / static_cast<double>(most));
    const QRect bar(place.left(), place.bottom() - height + 1, place.width(), height);
    painter.fillRect(bar, color);
    painter.setPen(palette().color(QPalette::Text));
    painter.drawText(QRect(place.left() - place.width(), bar.top() - line, 3 * place.width(), line),
                     Qt::AlignHCenter | Qt::AlignBottom, QLocale().toString(static_cast<qulonglong>(value)));
}

void BarChart::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(QPalette::Base));
    if (bars_.empty())
        return;
    const int line = fontMetrics().lineSpacing();
    std::size_t most = 1;
    for (const Bar& bar : bars_)
        most = std::max({most, bar.records, bar.notifications});
    const QColor ofRecords = palette().color(QPalette::Highlight);
    // On any ground unlike it and unlike the first kind of bar.
    const QColor ofNotifications =
        ui::mixture(palette().color(QPalette::Text), palette().color(QPalette::Base), 0.5F);
    const int legend = line + line / 2;
    int x = line / 2;
    for (const auto& [color, name] : {std::pair{ofRecords, records_}, {ofNotifications, notifications_}}) {
        painter.fillRect(QRect(x, line / 4, line * 2 / 3, line * 2 / 3), color);
        painter.setPen(palette().color(QPalette::Text));
        painter.drawText(QRect(x + line, 0, width(), line), Qt::AlignLeft | Qt::AlignVCenter, name);
        x += 2 * line + fontMetrics().horizontalAdvance(name);
    }
    const int width1 = width() / static_cast<int>(bars_.size());
    for (std::size_t i = 0; i < bars_.size(); ++i) {
        const QRect day(static_cast<int>(i) * width1, legend, width1, height() - legend);
        const int bar = width1 / 4;
        const int barsHeight = day.height() - line - 4;
        paintBar(painter, {day.left() + bar, day.top(), bar, barsHeight}, bars_[i].records, most, ofRecords);
        paintBar(painter, {day.left() + 2 * bar + 2, day.top(), bar, barsHeight}, bars_[i].notifications,
                 most, ofNotifications);
        painter.setPen(palette().color(QPalette::Text));
        painter.drawText(QRect(day.left(), day.bottom() - line, width1, line), Qt::AlignCenter,
                         bars_[i].name);
    }
}

}  // namespace viewer
