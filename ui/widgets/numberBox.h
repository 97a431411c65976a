// A box for one whole number; empty is allowed.
#pragma once

#include <QLineEdit>
#include <cstdint>
#include <limits>
#include <optional>

namespace ui {

class NumberBox : public QLineEdit {
    Q_OBJECT

  public:
    // Digits with an optional sign, within the limits, are all that can be typed or pasted.
    NumberBox(long long lowest, long long highest, QWidget* parent = nullptr);

    bool isEmpty() const { return text().isEmpty(); }
    // True when the text is a whole number within the limits.
    bool hasNumber() const { return !isEmpty() && hasAcceptableInput(); }
    // True when the number is one that a narrower type holds.
    template <class Integer>
    bool fits() const {
        return hasNumber() &&
               isWithin(std::numeric_limits<Integer>::min(), std::numeric_limits<Integer>::max());
    }
    // The number as a narrower type holds it. Raises 13 when there is no number, 6 when it is out of that
    // type's range.
    template <class Integer>
    Integer numberAs() const {
        return static_cast<Integer>(
            numberWithin(std::numeric_limits<Integer>::min(), std::numeric_limits<Integer>::max()));
    }
    // A text from elsewhere as the box would show its number; nothing when it is no number within the limits.
    std::optional<QString> numberFrom(const QString& text) const;

  private:
    bool isWithin(long long lowest, long long highest) const;
    long long numberWithin(long long lowest, long long highest) const;
};

}  // namespace ui
