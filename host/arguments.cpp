#include "host/arguments.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace qlnhost {

Arguments::Arguments(int argc, const char* const* argv) : words_(argv + (argc > 0 ? 1 : 0), argv + argc) {}

std::string Arguments::take(std::string_view what) {
    if (words_.empty())
        throw UsageError("missing " + std::string(what));
    if (words_.front().starts_with("--"))
        throw UsageError("unknown option " + words_.front());
    std::string word = std::move(words_.front());
    words_.pop_front();
    return word;
}

std::string Arguments::takeOr(std::string otherwise) {
    return words_.empty() ? std::move(otherwise) : take("word");
}

bool Arguments::flag(std::string_view name) {
    const auto word = std::ranges::find(words_, name);
    if (word == words_.end())
        return false;
    words_.erase(word);
    return true;
}

std::string Arguments::option(std::string_view name, std::string otherwise) {
    const std::string withValue = std::string(name) + "=";
    const auto word = std::ranges::find_if(words_, [&](const std::string& candidate) {
        return candidate == name || candidate.starts_with(withValue);
    });
    if (word == words_.end())
        return otherwise;
    if (*word != name) {
        std::string value = word->substr(withValue.size());
        words_.erase(word);
        return value;
    }
    if (word + 1 == words_.end())
        throw UsageError("missing value of " + std::string(name));
    std::string value = *(word + 1);
    words_.erase(word, word + 2);
    return value;
}

void Arguments::finish() const {
    if (!words_.empty())
        throw UsageError((words_.front().starts_with("--") ? "unknown option " : "unexpected ") +
                         words_.front());
}

unsigned long parseNumber(std::string_view text, unsigned long highest, std::string_view what) {
    const bool hexadecimal = text.starts_with("0x");
    const std::string_view digits = hexadecimal ? text.substr(2) : text;
    unsigned long number = 0;
    const auto [end, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), number, hexadecimal ? 16 : 10);
    if (digits.empty() || error != std::errc{} || end != digits.data() + digits.size() || number > highest)
        throw UsageError(std::string(what) + " is a whole number up to " + std::to_string(highest) +
                         ", not '" + std::string(text) + "'");
    return number;
}

}  // namespace qlnhost
