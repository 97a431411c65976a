// The list for an event's id: its one row stands for all ids, anything else is digits.
#pragma once

#include <QComboBox>
#include <string>

namespace ui {

class EventIdBox : public QComboBox {
    Q_OBJECT

  public:
    explicit EventIdBox(QWidget* parent = nullptr);

    // The row's text; a row that is shown stays shown. No change of the id.
    void setAllText(const QString& text);
    void showAll();
    void showId(const QString& id);
    // What is shown as text; "-1" for the row.
    std::string idText() const;
    // True for the row, and for digits that are a number of 32 bits.
    bool hasId() const;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    bool showsAll() const;
};

}  // namespace ui
