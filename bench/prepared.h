// A statement of the engine's C interface that is prepared once and run again and again, as a careful peer
// does.
#pragma once

#include <string>
#include <string_view>

#include "bench/workplace.h"

namespace bench {

// Ends the program with the engine's text on any failure: a row whose work failed must not be told as a time.
class Prepared {
  public:
    Prepared(const Engine& engine, const std::string& text) : statement_(prepare(engine, text)) {}
    Prepared& bind(int parameter, long value);
    Prepared& bind(int parameter, std::string_view value);
    bool row();  // false at the end, which also resets
    void run();  // to the end
    long number(int column);
    std::string text(int column);
    void reset();

    // The number in the first column of the only row; 0 without a row.
    long one();

  private:
    Statement statement_;
};

}  // namespace bench
