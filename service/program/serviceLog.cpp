#include "service/program/serviceLog.h"

#include <cstdint>
#include <filesystem>
#include <system_error>

#include "platform/files/textStream.h"
#include "platform/machine/clock.h"
#include "service/sources/readableText.h"

namespace service {

namespace {

constexpr std::size_t mostKept = 1 << 20;  // bytes, while they cannot be written
constexpr std::uintmax_t longestFile = 10 << 20;
constexpr int generations = 5;

// A long file makes room: it becomes FILE.1, that FILE.2, and so on; the oldest goes.
void rotate(const std::string& file) {
    std::error_code error;
    if (const auto size = std::filesystem::file_size(file, error); error || size < longestFile)
        return;
    for (int number = generations; number > 0; --number)
        std::filesystem::rename(number > 1 ? file + '.' + std::to_string(number - 1) : file,
                                file + '.' + std::to_string(number), error);
}

}  // namespace

void ServiceLog::add(std::string_view text) {
    const std::string moment = platform::storedForm(platform::localTime(platform::clock().now()));
    std::string line = readableText(text);
    // A line break in what came from outside would begin a line that looks like one of ours.
    for (char& c : line)
        c = static_cast<unsigned char>(c) < ' ' || c == 127 ? ' ' : c;
    if (kept_.size() < mostKept)
        kept_.append(moment).append("  ").append(line).append("\n");
    else
        ++lost_;
}

void ServiceLog::flush(const std::string& file) {
    if (file.empty())
        kept_.clear();
    if (kept_.empty())
        return;
    rotate(file);
    platform::TextStream stream;
    stream.open(file);
    stream.write(lost_ == 0 ? kept_ : kept_ + std::to_string(lost_) + " further lines are lost\n");
    kept_.clear();
    lost_ = 0;
}

}  // namespace service
