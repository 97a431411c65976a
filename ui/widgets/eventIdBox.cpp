#include "ui/widgets/eventIdBox.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QValidator>
#include <algorithm>

#include "ui/base/text.h"

namespace ui {

namespace {

bool isDigit(QChar character) {
    return character >= u'0' && character <= u'9';
}

// Lets the row's own text pass besides digits; what is pasted or dropped is held to it, too.
class IdValidator : public QValidator {
  public:
    explicit IdValidator(EventIdBox& box) : QValidator(&box), box_(box) {}

    State validate(QString& input, int&) const override {
        return input == box_.itemText(0) || std::all_of(input.cbegin(), input.cend(), isDigit) ? Acceptable
                                                                                               : Invalid;
    }

  private:
    EventIdBox& box_;
};

}  // namespace

EventIdBox::EventIdBox(QWidget* parent) : QComboBox(parent) {
    setEditable(true);
    setInsertPolicy(QComboBox::NoInsert);
    setCompleter(nullptr);
    setValidator(new IdValidator(*this));
    lineEdit()->installEventFilter(this);
    lineEdit()->setMaxLength(std::numeric_limits<int>::max());
}

void EventIdBox::setAllText(const QString& text) {
    const QSignalBlocker captionIsNoChange(*this);
    const bool shown = count() == 0 || showsAll();
    const QString id = currentText();
    clear();
    addItem(text);
    if (shown)
        showAll();
    else
        showId(id);
}

void EventIdBox::showAll() {
    setCurrentIndex(0);
}

void EventIdBox::showId(const QString& id) {
    setCurrentIndex(-1);
    setEditText(id);
}

bool EventIdBox::showsAll() const {
    return count() > 0 && currentText() == itemText(0);
}

std::string EventIdBox::idText() const {
    return showsAll() ? "-1" : toUtf8(currentText());
}

bool EventIdBox::hasId() const {
    bool isNumber = false;
    currentText().toInt(&isNumber);
    return isNumber || showsAll();
}

bool EventIdBox::eventFilter(QObject* watched, QEvent* event) {
    if (watched == lineEdit() && event->type() == QEvent::KeyPress) {
        const auto& key = static_cast<const QKeyEvent&>(*event);
        const QString typed = key.text();
        const bool printable = !typed.isEmpty() && typed.front().isPrint();
        if (printable && !isDigit(typed.front()))
            return true;
        // The row's text is one thing: a digit takes its place, and backspace takes all of it.
        if (showsAll() && (printable || key.key() == Qt::Key_Backspace))
            lineEdit()->selectAll();
    }
    return QComboBox::eventFilter(watched, event);
}

}  // namespace ui
