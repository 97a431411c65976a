#include "platform/ado/oneSelect.h"

#include <algorithm>
#include <array>
#include <string>

#include "platform/ado/ado.h"
#include "platform/ado/dialect.h"
#include "platform/machine/caseFold.h"

namespace platform::ado {

namespace {

// Words that begin a statement of their own in one server's language or another's, or make a SELECT write.
constexpr std::array<std::string_view, 46> foreignWords{
    "ALTER",       "ANALYZE",  "BACKUP", "BEGIN",   "BULK",       "CALL",    "CHECKPOINT", "CLOSE",
    "COMMIT",      "COPY",     "CREATE", "DBCC",    "DEALLOCATE", "DECLARE", "DELETE",     "DENY",
    "DO",          "DROP",     "EXEC",   "EXECUTE", "FETCH",      "GOTO",    "GRANT",      "IF",
    "INSERT",      "INTO",     "KILL",   "LOCK",    "MERGE",      "OPEN",    "PRINT",      "RAISERROR",
    "RECONFIGURE", "RESTORE",  "REVERT", "REVOKE",  "ROLLBACK",   "SAVE",    "SET",        "SHUTDOWN",
    "THROW",       "TRUNCATE", "UPDATE", "USE",     "WAITFOR",    "WHILE"};
// What a further SELECT of the same statement stands behind.
constexpr std::array<std::string_view, 6> setOperators{"(", "UNION", "ALL", "EXCEPT", "INTERSECT", "MINUS"};

[[noreturn]] void refuse(std::string_view why, std::string_view statement) {
    throw Failure(statementFailed, std::string(why) + " [" + std::string(statement) + "]", "ODBC");
}

bool contains(const auto& words, std::string_view word) {
    return std::ranges::any_of(words,
                               [&](std::string_view each) { return equalsIgnoringAsciiCase(each, word); });
}

// A literal whose extent every server sees alike: it ends, holds no backslash, and has no letter before it
// that would change its rules.
void checkLiteral(const Token& token, TokenKind before, std::string_view statement) {
    const bool ends = token.text.size() > 1 && token.text.front() == token.text.back() &&
                      std::ranges::count(token.text, token.text.front()) % 2 == 0;
    if (!ends)
        refuse("a text without its end", statement);
    if (token.text.find('\\') != std::string_view::npos)
        refuse("a backslash in a text", statement);
    if (before != TokenKind::blank && before != TokenKind::symbol)
        refuse("a text close behind a word", statement);
}

void checkWord(std::string_view word, std::string_view before, std::string_view statement) {
    if (contains(foreignWords, word))
        refuse("no part of a SELECT: " + std::string(word), statement);
    if (equalsIgnoringAsciiCase(word, "SELECT") && !before.empty() && !contains(setOperators, before))
        refuse("more than one statement", statement);
    if (word.find_first_of("$?:@") != std::string_view::npos)
        refuse("no name: " + std::string(word), statement);
}

void checkToken(const Token& token, std::string_view before, TokenKind kindBefore,
                std::string_view statement) {
    constexpr std::string_view signs = ".,()=<>!+-*/%;";
    if (token.text.front() == '\'' || token.text.front() == '"')
        checkLiteral(token, kindBefore, statement);
    else if (token.kind == TokenKind::word)
        checkWord(token.text, before, statement);
    else if (token.kind == TokenKind::blank
                 ? token.text.find_first_of("-/") != std::string_view::npos
                 : token.kind != TokenKind::symbol || signs.find(token.text) == std::string_view::npos)
        refuse("a sign that servers read differently: " + std::string(token.text), statement);
}

}  // namespace

void requireOneSelect(std::string_view statement) {
    if (statement.find('\0') != std::string_view::npos)
        refuse("zero character in the statement", statement.substr(0, statement.find('\0')));
    std::string_view before;  // the last token that is no blank
    TokenKind kindBefore = TokenKind::blank;
    Lexer lexer(statement);
    for (Token token{}; lexer.next(token); kindBefore = token.kind) {
        if (before == ";" && token.kind != TokenKind::blank)
            refuse("more than one statement", statement);
        if (before.empty() && token.kind == TokenKind::word && !equalsIgnoringAsciiCase(token.text, "SELECT"))
            throw Failure(providerError, "the directory is read-only [" + std::string(statement) + "]",
                          "ODBC");
        checkToken(token, before, kindBefore, statement);
        if (token.kind != TokenKind::blank)
            before = token.text;
    }
    if (before.empty())
        refuse("no statement", statement);
}

}  // namespace platform::ado
