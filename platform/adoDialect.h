// Reading of statement texts for platform/ado: just enough of the language to find literals, names and
// where the FROM of a statement stands. The engine alone judges whether a statement is right.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform::ado {

enum class TokenKind { blank, text, name, word, date, symbol };

struct Token {
    TokenKind kind;
    std::string_view text;  // with its quotes or signs
};

class Lexer {
  public:
    explicit Lexer(std::string_view source) : source_(source) {}
    // False at the end. A literal or comment without its end reaches to the end of the text.
    bool next(Token& token);

  private:
    std::size_t blankEnd() const;

    std::string_view source_;
    std::size_t position_ = 0;
};

bool equalsIgnoringCase(std::string_view left, std::string_view right) noexcept;
// ASCII letters only, as the engine's NOCASE does it.
std::string lowerCase(std::string_view text);
std::string_view trimmed(std::string_view text) noexcept;

// A name between double quotes.
std::string quotedName(std::string_view name);

// A statement whose numbers were taken out, so that it is the same text for each of them.
struct NumberedForm {
    std::string text;
    std::vector<std::int64_t> numbers;  // of its parameters, in their order
};
// Takes out each whole number that is compared with "=" in the WHERE clause of a translated SELECT. Nothing
// for other statements, for one with parameters of its own, and for one that asks for all columns with "*":
// only columns asked for by name stay what they are when somebody changes the table.
std::optional<NumberedForm> takeNumbersOut(std::string_view translated);

// True when nothing but blanks, comments and semicolons is left.
bool nothingToRun(std::string_view rest);

// A translated SELECT with the row id as a last column named `idColumn`; empty for statements whose
// rows are not rows of one table (DISTINCT, GROUP BY, joins, compounds).
std::string withRowId(std::string_view translated, std::string_view idColumn);

}  // namespace platform::ado
