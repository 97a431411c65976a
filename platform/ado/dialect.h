// Reading of statement texts for platform/ado: just enough of the language to find literals, names and
// where the FROM of a statement stands. The engine alone judges whether a statement is right.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/ado/ado.h"

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

std::string_view trimmed(std::string_view text) noexcept;

// A name between double quotes.
std::string quotedName(std::string_view name);

// True when nothing but blanks, comments and semicolons is left.
bool nothingToRun(std::string_view rest);

// A translated SELECT with the row id as a last column named `idColumn`; empty for statements whose
// rows are not rows of one table (DISTINCT, GROUP BY, joins, compounds).
std::string withRowId(std::string_view translated, std::string_view idColumn);

// The statement as a reader wants it, with each number in the place of its "?".
std::string spelledOut(const Query& query);

}  // namespace platform::ado
