#include "server/clipboardEvent.h"

#include <array>
#include <optional>

#include "core/procedure.h"
#include "platform/machine/caseFold.h"

namespace mdlUtility {

namespace {

constexpr std::string_view lineEnd = "\r\n";
// Type, source, category, id, date, time, user, computer, and a description of its label and a line at least.
constexpr std::size_t fewestLines = 10;
constexpr std::size_t typeLine = 0, sourceLine = 1, idLine = 3;

using Lines = std::array<std::string_view, fewestLines>;

// The first lines of a text; the last one holds what is left. Nothing when there are too few.
std::optional<Lines> firstLines(std::string_view text) {
    Lines lines;
    for (std::size_t i = 0; i + 1 < lines.size(); ++i) {
        const std::size_t end = text.find(lineEnd);
        if (end == std::string_view::npos)
            return std::nullopt;
        lines[i] = text.substr(0, end);
        text.remove_prefix(end + lineEnd.size());
    }
    lines.back() = text;
    return lines;
}

// What stands behind the one colon of a line, without tabs; blanks stay. Nothing for a line with no colon or
// with several, so a source with a colon in its name is refused.
std::optional<std::string> valueOf(std::string_view line) {
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos || line.find(':', colon + 1) != std::string_view::npos)
        return std::nullopt;
    std::string value(line.substr(colon + 1));
    std::erase(value, '\t');
    return value;
}

// Audit events and whatever else the viewer may know come through as errors.
std::int16_t typeOfWord(std::string_view word) {
    for (const std::string_view warning : {"warning", "avertissement", "warnung"})
        if (word == warning)
            return 1;
    for (const std::string_view information : {"information", "informations", "informationen"})
        if (word == information)
            return 2;
    return 0;
}

}  // namespace

bool checkEventFromClipboardText(std::string_view text, std::string& source, std::string& eventId,
                                 std::int16_t& eventType) {
    return core::procedure("mdlUtility", "checkEventFromClipboardText", false,
                           [&](core::Frame&, bool& recognised) {
        const std::optional<Lines> lines = firstLines(text);
        if (!lines)
            return;
        const std::optional<std::string> type = valueOf((*lines)[typeLine]);
        if (!type)
            return;
        eventType = typeOfWord(platform::foldCase(*type));
        std::optional<std::string> found = valueOf((*lines)[sourceLine]);
        if (!found)
            return;
        source = std::move(*found);
        std::optional<std::string> id = valueOf((*lines)[idLine]);
        if (!id)
            return;
        eventId = std::move(*id);
        recognised = true;
    });
}

}  // namespace mdlUtility
