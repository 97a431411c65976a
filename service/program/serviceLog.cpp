#include "service/program/serviceLog.h"

#include <utility>

#include "platform/files/textStream.h"
#include "platform/machine/clock.h"

namespace service {

void ServiceLog::add(std::string_view text) {
    const std::string moment = platform::storedForm(platform::localTime(platform::clock().now()));
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        kept_.append(moment).append("  ").append(text.substr(0, end)).append("\n");
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
}

void ServiceLog::flush(const std::string& file) {
    const std::string lines = std::exchange(kept_, {});
    if (lines.empty() || file.empty())
        return;
    platform::TextStream stream;
    stream.open(file);
    stream.write(lines);
}

}  // namespace service
