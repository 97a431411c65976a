#include "server/compareVersions.h"

#include <cstdlib>
#include <string>

namespace mdlUtility {

std::array<long, 4> parseVersion(std::string_view version) {
    std::array<long, 4> numbers{};
    std::size_t count = 0;
    std::string collected;
    const auto endNumber = [&] {
        if (count < numbers.size())
            numbers[count++] = std::strtol(collected.c_str(), nullptr, 10);
        collected.clear();
    };
    for (const char c : version) {
        if (c == '(' || c == '.' || c == ')')
            endNumber();
        else
            collected += c;
    }
    endNumber();
    return numbers;
}

int compareVersions(std::string_view a, std::string_view b) {
    const auto first = parseVersion(a);
    const auto second = parseVersion(b);
    for (std::size_t i = 0; i < first.size(); ++i)
        if (first[i] != second[i])
            return first[i] > second[i] ? 1 : -1;
    return 0;
}

}  // namespace mdlUtility
