#include "platform/ado/dialect.h"

#include <algorithm>
#include <array>

#include "platform/ado/ado.h"
#include "platform/machine/caseFold.h"
#include "platform/machine/clock.h"

namespace platform {

namespace ado {

namespace {

bool isBlank(char c) noexcept {
    return c == ' ' || (c >= '\t' && c <= '\r');
}
bool isDigit(char c) noexcept {
    return c >= '0' && c <= '9';
}
bool isHexDigit(char c) noexcept {
    return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}
bool isWordCharacter(char c) noexcept {
    return isDigit(c) || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' || c == '$' ||
           static_cast<unsigned char>(c) >= 0x80;
}
// 12, 0x1F, 5e3 and the 5e of 5e-3.
bool isNumber(std::string_view word) {
    if (word.size() > 2 && word[0] == '0' && foldAscii(word[1]) == 'x')
        return std::all_of(word.begin() + 2, word.end(), isHexDigit);
    const std::size_t digits = std::min(word.find_first_not_of("0123456789"), word.size());
    if (digits == word.size())
        return true;
    return foldAscii(word[digits]) == 'e' && std::all_of(word.begin() + digits + 1, word.end(), isDigit);
}

std::size_t pastClosing(std::string_view source, std::size_t from, std::string_view closing) {
    const std::size_t found = source.find(closing, from);
    return found == std::string_view::npos ? source.size() : found + closing.size();
}

// A doubled quote inside stands for one; reading it as the end and a new beginning gives the same extent.
std::size_t quotedEnd(std::string_view source, std::size_t start, char closing) {
    std::size_t end = pastClosing(source, start + 1, std::string_view(&closing, 1));
    while (closing != ']' && end < source.size() && source[end] == closing)
        end = pastClosing(source, end + 1, std::string_view(&closing, 1));
    return end;
}

}  // namespace

// The end of the blanks and comments that begin at the present position.
std::size_t Lexer::blankEnd() const {
    std::size_t end = position_;
    while (end < source_.size()) {
        if (isBlank(source_[end]))
            ++end;
        else if (source_.compare(end, 2, "--") == 0)
            end = pastClosing(source_, end, "\n");
        else if (source_.compare(end, 2, "/*") == 0)
            end = pastClosing(source_, end + 2, "*/");
        else
            break;
    }
    return end;
}

bool Lexer::next(Token& token) {
    if (position_ >= source_.size())
        return false;
    const char first = source_[position_];
    std::size_t end = blankEnd();
    token.kind = TokenKind::blank;
    if (end == position_) {
        end = position_ + 1;
        token.kind = TokenKind::symbol;
        if (first == '\'') {
            token.kind = TokenKind::text;
            end = quotedEnd(source_, position_, first);
        } else if (first == '"' || first == '`' || first == '[') {
            token.kind = TokenKind::name;
            end = quotedEnd(source_, position_, first == '[' ? ']' : first);
        } else if (first == '#' && source_.find('#', end) != std::string_view::npos) {
            token.kind = TokenKind::date;
            end = pastClosing(source_, end, "#");
        } else if (isWordCharacter(first) || first == '?' || first == ':' || first == '@') {
            // The sign of a parameter belongs to its word, so that its digits are no table name.
            token.kind = TokenKind::word;
            while (end < source_.size() && isWordCharacter(source_[end]))
                ++end;
        }
    }
    token.text = source_.substr(position_, end - position_);
    position_ = end;
    return true;
}

std::string_view trimmed(std::string_view text) noexcept {
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

std::string quotedName(std::string_view name) {
    std::string result = "\"";
    for (const char c : name)
        result.append(c == '"' ? 2 : 1, c);
    return result + '"';
}

bool nothingToRun(std::string_view rest) {
    Lexer lexer(rest);
    Token token{};
    while (lexer.next(token)) {
        if (token.kind != TokenKind::blank && token.text != ";")
            return false;
    }
    return true;
}

std::string withRowId(std::string_view translated, std::string_view idColumn) {
    static constexpr std::array<std::string_view, 7> notOneRowEach{"DISTINCT", "GROUP",  "HAVING",   "JOIN",
                                                                   "UNION",    "EXCEPT", "INTERSECT"};
    std::string result;
    int depth = 0;
    bool first = true;
    bool done = false;
    Lexer lexer(translated);
    for (Token token{}; lexer.next(token);) {
        if (token.text == "(")
            ++depth;
        else if (token.text == ")")
            --depth;
        if (token.kind != TokenKind::blank) {
            if (first && !equalsIgnoringAsciiCase(token.text, "SELECT"))
                return {};
            first = false;
        }
        if (depth == 0 && token.kind == TokenKind::word) {
            for (const std::string_view word : notOneRowEach) {
                if (equalsIgnoringAsciiCase(token.text, word))
                    return {};
            }
            if (!done && equalsIgnoringAsciiCase(token.text, "FROM")) {
                result += ", rowid AS " + quotedName(idColumn) + ' ';
                done = true;
            }
        }
        result += token.text;
    }
    return done ? result : std::string();
}

std::string spelledOut(const Query& query) {
    std::string result;
    std::size_t number = 0;
    Lexer lexer(query.text);
    for (Token token{}; lexer.next(token);) {
        if (token.text == "?" && number < query.numbers.size())
            result += std::to_string(query.numbers[number++]);
        else
            result += token.text;
    }
    return result;
}

}  // namespace ado

namespace {

[[noreturn]] void refuse(std::string_view why, std::string_view statement) {
    throw Failure(statementFailed, std::string(why) + " [" + std::string(statement) + "]", "SQLite");
}

std::string dateLiteral(std::string_view literal, std::string_view statement) {
    LocalTime moment{};
    if (!parseMoment(ado::trimmed(literal.substr(1, literal.size() - 2)), moment))
        refuse("no date: " + std::string(literal), statement);
    return '\'' + storedForm(moment) + '\'';
}

}  // namespace

std::string translateStatement(std::string_view statement) {
    if (statement.find('\0') != std::string_view::npos)
        refuse("zero character in the statement", statement.substr(0, statement.find('\0')));
    std::string result;
    result.reserve(statement.size() + 16);
    const char* copied = statement.data();
    const auto replace = [&](std::string_view token, const std::string& by) {
        result.append(copied, token.data()).append(by);
        copied = token.data() + token.size();
    };
    ado::Lexer lexer(statement);
    bool ended = false;
    for (ado::Token token{}; lexer.next(token);) {
        // Refused before the engine sees any of it: it runs some pragmas while it only prepares them.
        if (ended && token.kind != ado::TokenKind::blank && token.text != ";")
            refuse("more than one statement", statement);
        ended = ended || token.text == ";";
        if (token.kind == ado::TokenKind::date)
            replace(token.text, dateLiteral(token.text, statement));
        else if (token.kind == ado::TokenKind::word && ado::isDigit(token.text[0]) &&
                 !ado::isNumber(token.text))
            replace(token.text, ado::quotedName(token.text));
    }
    return result.append(copied, statement.data() + statement.size());
}

}  // namespace platform
