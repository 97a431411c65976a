#include "service/transports/pager.h"

#include <cctype>
#include <string_view>
#include <utility>

namespace service {

namespace {

// The digits and what else is dialled; blanks, hyphens and brackets are for people.
std::string dialled(const std::string& number) {
    std::string result;
    for (const char c : number)
        if (std::isdigit(static_cast<unsigned char>(c)) || c == '+' || c == '*' || c == '#')
            result += c;
    return result;
}

bool beginsCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) != 0x80;
}

}  // namespace

std::string pageText(const std::string& subject, const std::string& body) {
    constexpr std::size_t most = 160;
    std::string line;
    for (const std::string_view text : {std::string_view(subject), std::string_view(body)})
        for (const char c : text.empty() || line.empty() ? std::string(text) : ' ' + std::string(text)) {
            const bool isBlank = static_cast<unsigned char>(c) <= ' ';
            if (!isBlank)
                line += c;
            else if (!line.empty() && line.back() != ' ')
                line += ' ';
        }
    std::size_t characters = 0;
    for (std::size_t i = 0; i < line.size(); ++i)
        if (beginsCharacter(line[i]) && ++characters > most)
            line.resize(i);
    while (line.ends_with(' '))
        line.pop_back();
    return line;
}

Pager::Pager(std::unique_ptr<Transport> mail, std::string gateway)
    : mail_(std::move(mail)), gateway_(std::move(gateway)) {}

Outcome Pager::send(const Message& message, const Deadline& deadline) {
    const std::string number = dialled(message.address);
    if (number.empty())
        return {Result::refused, "No number: " + message.address};
    Message page = message;
    page.address = gateway_;
    if (const std::size_t place = page.address.find(numberPlace); place != std::string::npos)
        page.address.replace(place, std::string_view(numberPlace).size(), number);
    page.subject.clear();
    page.body = pageText(message.subject, message.body);
    page.voiceFile.clear();
    Outcome outcome = mail_->send(page, deadline);
    if (outcome.result == Result::delivered)
        outcome = {Result::handedOver, "Handed over to " + page.address + ": " + outcome.answer};
    return outcome;
}

}  // namespace service
