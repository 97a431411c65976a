#include "ui/widgets/secretEdit.h"

#include <string.h>

#include <QApplication>
#include <QSignalBlocker>
#include <QValidator>
#include <array>

#include "ui/base/text.h"

namespace ui {

namespace {

constexpr QChar standIn(0xE000);  // for private use: no key or text brings it
constexpr std::size_t unitSize = sizeof(char16_t);
constexpr int longestPassword = 256;

std::string_view bytesOf(const QChar* units, qsizetype count) {
    return {reinterpret_cast<const char*>(units), static_cast<std::size_t>(count) * unitSize};
}

char16_t unitAt(std::string_view bytes, std::size_t index) {
    char16_t unit = 0;
    ::memcpy(&unit, bytes.data() + index * unitSize, unitSize);
    return unit;
}

void appendUtf8(platform::Secret& text, char32_t character) {
    std::array<char, 4> bytes{};
    std::size_t size = 0;
    const auto put = [&](char32_t value) { bytes[size++] = static_cast<char>(value); };
    const auto follow = [&](int shift) { put(0x80 | (character >> shift & 0x3F)); };
    if (character < 0x80) {
        put(character);
    } else if (character < 0x800) {
        put(0xC0 | character >> 6);
        follow(0);
    } else if (character < 0x10000) {
        put(0xE0 | character >> 12);
        follow(6);
        follow(0);
    } else {
        put(0xF0 | character >> 18);
        follow(12);
        follow(6);
        follow(0);
    }
    text.append({bytes.data(), size});
    ::explicit_bzero(bytes.data(), bytes.size());
}

}  // namespace

// A text that brings the stand-in's own character cannot be told from the stand-ins, so it is not taken. Nor
// is one of several lines, or one that does not fit: a part of it would be another password.
class SecretEdit::OwnStandInsOnly : public QValidator {
  public:
    explicit OwnStandInsOnly(SecretEdit& box) : QValidator(&box), box_(box) {}

    State validate(QString& shown, int&) const override {
        return shown.count(standIn) <= box_.count() - box_.selected_ && shown.size() <= longestPassword &&
                       onOneLine(shown) == shown
                   ? Acceptable
                   : Invalid;
    }

  private:
    const SecretEdit& box_;
};

SecretEdit::SecretEdit(QWidget* parent) : QLineEdit(parent) {
    setEchoMode(QLineEdit::Password);
    setValidator(new OwnStandInsOnly(*this));
    setDragEnabled(false);
    connect(this, &QLineEdit::selectionChanged, this, [this] { selected_ = selectionLength(); });
    connect(this, &QLineEdit::inputRejected, this, [] { QApplication::beep(); });
    connect(this, &QLineEdit::textChanged, this, [this] { absorb(); });
}

// Units that are kept.
qsizetype SecretEdit::count() const {
    return static_cast<qsizetype>(units_.size() / unitSize);
}

// Whatever changed the box (keys, input method, clipboard): what is no stand-in is new, and what lay between
// the stand-ins before and behind it is gone. When nothing is new, something was removed where the cursor is.
void SecretEdit::absorb() {
    QString shown = text();
    const int cursor = cursorPosition();
    qsizetype before = 0;
    while (before < shown.size() && shown[before] == standIn)
        ++before;
    qsizetype behind = 0;
    while (behind < shown.size() - before && shown[shown.size() - 1 - behind] == standIn)
        ++behind;
    if (before == shown.size()) {
        before = cursor;
        behind = shown.size() - cursor;
    }
    const qsizetype added = shown.size() - before - behind;
    const auto place = static_cast<std::size_t>(before) * unitSize;
    const auto kept = static_cast<std::size_t>(before + behind) * unitSize;
    units_.replace(place, units_.size() - kept, bytesOf(shown.constData() + before, added));
    showStandIns(shown.size(), cursor);
    // The box has let go of this copy, so what is wiped is what it held.
    ::explicit_bzero(shown.data(), static_cast<std::size_t>(shown.size()) * unitSize);
}

void SecretEdit::showStandIns(qsizetype count, int cursor) {
    const QSignalBlocker ownChange(this);
    selected_ = 0;
    setText(QString(count, standIn));
    setCursorPosition(cursor);
}

platform::Secret SecretEdit::take() {
    platform::Secret utf8;
    const std::string_view units = units_.view();
    const std::size_t count = units.size() / unitSize;
    for (std::size_t i = 0; i < count; ++i) {
        char32_t character = unitAt(units, i);
        if (QChar::isHighSurrogate(character) && i + 1 < count && QChar::isLowSurrogate(unitAt(units, i + 1)))
            character = QChar::surrogateToUcs4(static_cast<char16_t>(character), unitAt(units, ++i));
        appendUtf8(utf8, character);
    }
    wipe();
    return utf8;
}

void SecretEdit::wipe() {
    units_.clear();
    showStandIns(0, 0);
}

}  // namespace ui
