#include "ui/widgets/numberBox.h"

#include <QValidator>

#include "platform/failure.h"
#include "ui/base/text.h"

namespace ui {

namespace {

class WholeNumberValidator : public QValidator {
  public:
    WholeNumberValidator(long long lowest, long long highest, QObject* parent)
        : QValidator(parent), lowest_(lowest), highest_(highest) {}

    State validate(QString& input, int&) const override {
        if (input.isEmpty() || (input == QLatin1String("-") && lowest_ < 0))
            return Intermediate;
        // The conversion would let blanks and a plus sign pass.
        const bool negative = input.startsWith('-');
        for (const QChar c : QStringView(input).sliced(negative ? 1 : 0))
            if (c < u'0' || c > u'9')
                return Invalid;
        bool isNumber = false;
        const long long number = input.toLongLong(&isNumber);
        if (!isNumber)
            return Invalid;
        return number < lowest_ || number > highest_ ? Invalid : Acceptable;
    }

  private:
    long long lowest_;
    long long highest_;
};

}  // namespace

NumberBox::NumberBox(long long lowest, long long highest, QWidget* parent) : QLineEdit(parent) {
    setValidator(new WholeNumberValidator(lowest, highest, this));
}

bool NumberBox::isWithin(long long lowest, long long highest) const {
    const long long number = text().toLongLong();
    return number >= lowest && number <= highest;
}

long long NumberBox::numberWithin(long long lowest, long long highest) const {
    if (!hasNumber())
        throw platform::makeFailure(platform::typeMismatch, toUtf8(text()));
    if (!isWithin(lowest, highest))
        throw platform::makeFailure(platform::overflow, toUtf8(text()));
    return text().toLongLong();
}

std::optional<QString> NumberBox::numberFrom(const QString& text) const {
    QString trimmed = text.trimmed();
    int place = 0;
    if (validator()->validate(trimmed, place) != QValidator::Acceptable)
        return std::nullopt;
    return QString::number(trimmed.toLongLong());
}

}  // namespace ui
