// The command line of qlnhost, taken apart.
#pragma once

#include <deque>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>

namespace qlnhost {

// The command line is not one that the tool understands; the text says what is wrong with it.
class UsageError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

class Arguments {
  public:
    Arguments(int argc, const char* const* argv);

    bool empty() const noexcept { return words_.empty(); }
    // The next word that is no option; raises UsageError "missing WHAT".
    std::string take(std::string_view what);
    // The next word if there is one.
    std::string takeOr(std::string otherwise);
    // Takes "--name" out, wherever it stands; false when it is not there.
    bool flag(std::string_view name);
    // Takes "--name VALUE" or "--name=VALUE" out; raises UsageError without a value.
    std::string option(std::string_view name, std::string otherwise);
    // Raises UsageError when something is left.
    void finish() const;

  private:
    std::deque<std::string> words_;
};

// A whole number from 0 to `highest`; raises UsageError.
unsigned long parseNumber(std::string_view text, unsigned long highest, std::string_view what);

}  // namespace qlnhost
