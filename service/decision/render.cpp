#include "service/decision/render.h"

#include <array>
#include <cstddef>
#include <string_view>
#include <utility>

#include "platform/machine/clock.h"

namespace service {

namespace {

// The text with its insertion variables filled in.
std::string filledIn(std::string text, const MonitoredEvent& event, const platform::EventRecord& record) {
    platform::LocalTime time{};
    const bool timed = platform::parseMoment(record.time, time);
    const std::array<std::pair<std::string_view, std::string>, 10> variables{{
        {"<Type>", typeName(record.type)},
        {"<Source>", record.source},
        {"<Category>", std::to_string(record.category)},
        {"<Event>", std::to_string(record.id)},
        {"<Date>", timed ? platform::shortDate(time) : record.time},
        {"<Time>", timed ? platform::longTime(time) : std::string()},
        {"<User>", record.user},
        {"<Computer>", record.computer},
        {"<Notes>", event.title},
        {"<Description>", record.description},
    }};
    for (std::size_t at = text.find('<'); at != std::string::npos; at = text.find('<', at))
        // What stands in the place of a variable is not looked through again.
        at += [&]() -> std::size_t {
            for (const auto& [name, value] : variables)
                if (text.compare(at, name.size(), name) == 0) {
                    text.replace(at, name.size(), value);
                    return value.size();
                }
            return 1;
        }();
    return text;
}

// A line break in a variable must not become one of a header.
std::string onOneLine(std::string text) {
    for (const std::string_view end : {"\r\n", "\xE2\x80\xA8", "\xE2\x80\xA9", "\xC2\x85", "\r", "\n"})
        for (std::size_t at = text.find(end); at != std::string::npos; at = text.find(end, at))
            text.replace(at++, end.size(), " ");
    return text;
}

}  // namespace

std::string typeName(unsigned type) {
    return type == 1 ? "Error" : type == 2 ? "Warning" : "Information";
}

Rendered render(const MonitoredEvent& event, const platform::EventRecord& record, DeviceKind kind,
                const std::string& closing) {
    const bool isVoice = kind == DeviceKind::voiceMail;
    Rendered rendered{onOneLine(filledIn(event.mail.subject, event, record)),
                      filledIn(event.mail.body, event, record), (isVoice ? event.voice : event.mail).priority,
                      isVoice ? event.voice.voiceFile : std::string()};
    if (!closing.empty())
        rendered.body += (rendered.body.empty() || rendered.body.ends_with('\n') ? "" : "\r\n") + closing;
    return rendered;
}

}  // namespace service
