#include <array>
#include <charconv>
#include <cmath>
#include <limits>

#include "platform/ado/ado.h"
#include "platform/ado/dialect.h"
#include "platform/ado/statement.h"
#include "platform/machine/caseFold.h"
#include "platform/machine/characters.h"
#include "platform/machine/clock.h"

namespace platform {

namespace {

std::string realText(double number) {
    // Fixed notation of the largest double has 309 digits.
    std::array<char, 1100> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number == 0 ? 0.0 : number,
                                   std::chars_format::fixed);
    return std::string(buffer.data(), end.ptr);
}

double realNumber(std::string_view text) {
    text = ado::trimmed(text);
    if (text.starts_with('+') && !text.starts_with("+-"))
        text.remove_prefix(1);
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (text.empty() || end != text.data() + text.size() || error == std::errc::invalid_argument ||
        !std::isfinite(number))
        throw makeFailure(typeMismatch);
    if (error == std::errc::result_out_of_range)
        throw makeFailure(overflow);
    return number;
}

template <typename Type>
std::int64_t checkedRange(std::int64_t number) {
    if (number < std::numeric_limits<Type>::min() || number > std::numeric_limits<Type>::max())
        throw makeFailure(overflow);
    return number;
}

std::int64_t integerOf(const Value& value) {
    if (const auto* text = std::get_if<std::string>(&value))
        return ado::wholeNumber(*text);
    if (const auto* real = std::get_if<double>(&value))
        return ado::rounded(*real);
    return std::get<std::int64_t>(value);
}

std::string momentOf(const Value& value) {
    LocalTime moment{};
    const auto* text = std::get_if<std::string>(&value);
    if (!text || !parseMoment(ado::trimmed(*text), moment))
        throw makeFailure(typeMismatch);
    return storedForm(moment);
}

}  // namespace

std::string valueText(const Value& value) {
    if (const auto* integer = std::get_if<std::int64_t>(&value))
        return std::to_string(*integer);
    if (const auto* real = std::get_if<double>(&value))
        return realText(*real);
    const auto* text = std::get_if<std::string>(&value);
    return text ? *text : std::string();
}

namespace ado {

std::int64_t wholeNumber(std::string_view text) {
    text = trimmed(text);
    if (text.starts_with('+') && !text.starts_with("+-"))
        text.remove_prefix(1);
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (text.empty() || end != text.data() + text.size() || error == std::errc::invalid_argument)
        throw makeFailure(typeMismatch);
    if (error == std::errc::result_out_of_range)
        throw makeFailure(overflow);
    return number;
}

std::int64_t rounded(double number) {
    const double whole = std::nearbyint(number);
    // Written this way round, because it is false for "not a number" as well.
    if (!(std::fabs(whole) < 9.2e18))
        throw makeFailure(overflow);
    return static_cast<std::int64_t>(whole);
}

std::int64_t booleanOf(const Value& value) {
    if (const auto* text = std::get_if<std::string>(&value)) {
        const std::string_view word = trimmed(*text);
        if (equalsIgnoringAsciiCase(word, "true"))
            return -1;
        if (equalsIgnoringAsciiCase(word, "false"))
            return 0;
        return realNumber(word) != 0 ? -1 : 0;
    }
    if (const auto* real = std::get_if<double>(&value))
        return *real != 0 ? -1 : 0;
    return std::get<std::int64_t>(value) != 0 ? -1 : 0;
}

long longOf(const Value& value) {
    if (std::holds_alternative<Null>(value))
        throw makeFailure(invalidUseOfNull);
    if (const auto* integer = std::get_if<std::int64_t>(&value))
        return static_cast<long>(checkedRange<std::int32_t>(*integer));
    const auto* text = std::get_if<std::string>(&value);
    return static_cast<long>(
        checkedRange<std::int32_t>(rounded(text ? realNumber(*text) : std::get<double>(value))));
}

void setKind(Field& field, std::string_view declaredType) {
    const std::size_t bracket = std::min(declaredType.find('('), declaredType.size());
    const std::string_view word = trimmed(declaredType.substr(0, bracket));
    const auto is = [&](std::string_view name) { return equalsIgnoringAsciiCase(word, name); };
    if (is("INTEGER") || is("LONG"))
        field.kind = FieldKind::integer;
    else if (is("SHORT"))
        field.kind = FieldKind::shortInteger;
    else if (is("BOOLEAN"))
        field.kind = FieldKind::boolean;
    else if (is("DATETIME"))
        field.kind = FieldKind::date;
    else if (is("TEXT"))
        field.kind = FieldKind::text;
    if (field.kind == FieldKind::text && bracket < declaredType.size()) {
        const char* begin = declaredType.data() + bracket + 1;
        std::from_chars(begin, declaredType.data() + declaredType.size(), field.limit);
    }
}

Value converted(const Field& field, Value value) {
    if (std::holds_alternative<Null>(value))
        return value;
    switch (field.kind) {
        case FieldKind::integer:
            return checkedRange<std::int32_t>(integerOf(value));
        case FieldKind::shortInteger:
            return checkedRange<std::int16_t>(integerOf(value));
        case FieldKind::boolean:
            return booleanOf(value);
        case FieldKind::date:
            return momentOf(value);
        case FieldKind::text: {
            std::string text = valueText(value);
            if (field.limit != 0 && countCharacters(text) > field.limit)
                throw makeFailure(textTooLong);
            return text;
        }
        case FieldKind::other:
            break;
    }
    return value;
}

std::string searchKey(const Value& value) {
    return std::holds_alternative<std::string>(value) ? foldAscii(std::get<std::string>(value))
                                                      : valueText(value);
}

}  // namespace ado

}  // namespace platform
