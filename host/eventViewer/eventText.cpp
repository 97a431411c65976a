#include "host/eventViewer/eventText.h"

#include "platform/machine/clock.h"

namespace viewer {

namespace {

enum Column {
    typeColumn,
    dateColumn,
    timeColumn,
    sourceColumn,
    categoryColumn,
    idColumn,
    userColumn,
    computerColumn
};

// A line feed that stands alone gets its carriage return.
std::string withLineEnds(const std::string& text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\n' && (i == 0 || text[i - 1] != '\r'))
            result += '\r';
        result += text[i];
    }
    return result;
}

}  // namespace

std::size_t typeIndex(std::uint16_t type) {
    switch (type) {
        case 1:
            return 0;
        case 2:
            return 1;
        case 8:
            return 3;
        case 16:
            return 4;
        default:
            return 2;
    }
}

std::array<std::string, 8> columnTexts(const platform::EventRecord& event, const Texts& texts) {
    platform::LocalTime moment{};
    const bool readable = platform::parseMoment(event.time, moment);
    return {texts.types[typeIndex(event.type)],
            readable ? platform::shortDate(moment) : event.time,
            readable ? platform::longTime(moment) : std::string(),
            event.source,
            event.category == 0 ? texts.noCategory : "(" + std::to_string(event.category) + ")",
            std::to_string(event.id),
            event.user.empty() ? texts.noUser : event.user,
            event.computer};
}

std::string copiedText(const platform::EventRecord& event, const Texts& texts) {
    const auto columns = columnTexts(event, texts);
    constexpr std::array<Column, 8> order{typeColumn, sourceColumn, categoryColumn, idColumn,
                                          dateColumn, timeColumn,   userColumn,     computerColumn};
    std::string text;
    for (std::size_t line = 0; line < order.size(); ++line)
        text += texts.copiedLabels[line] + columns[order[line]] + "\r\n";
    return text + texts.copiedLabels.back() + "\r\n" + withLineEnds(event.description) + "\r\n";
}

}  // namespace viewer
