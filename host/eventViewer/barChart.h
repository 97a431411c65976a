// A small chart: a bar for each day, and in it how much of it was told.
#pragma once

#include <QWidget>
#include <vector>

class QPainter;

namespace viewer {

class BarChart : public QWidget {
  public:
    struct Bar {
        QString name;
        std::size_t records = 0;
        std::size_t notifications = 0;
    };
    BarChart(const QString& records, const QString& notifications, QWidget* parent);
    void setBars(std::vector<Bar> bars);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    void paintBar(QPainter& painter, const QRect& place, std::size_t value, std::size_t most,
                  const QColor& color) const;

    QString records_;
    QString notifications_;
    std::vector<Bar> bars_;
};

}  // namespace viewer
