#include "bench/table.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>

namespace bench {

namespace {

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

std::string printed(const char* format, double value) {
    std::array<char, 64> buffer{};
    std::snprintf(buffer.data(), buffer.size(), format, value);
    return buffer.data();
}

std::string timeText(double seconds) {
    if (seconds < 1e-6)
        return printed("%.0f ns", seconds * 1e9);
    if (seconds < 1e-3)
        return printed("%.1f us", seconds * 1e6);
    return printed("%.1f ms", seconds * 1e3);
}

std::string shown(const Row& row, double seconds) {
    return row.show == Show::timePerUnit ? timeText(seconds / row.units)
                                         : printed("%.0f/s", row.units / seconds);
}

}  // namespace

double secondsOf(const std::function<void()>& action) {
    const auto start = std::chrono::steady_clock::now();
    action();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void Table::compare(const Row& row, const Side& ours, const Side& peer) {
    std::fprintf(stderr, "Measuring %s ...\n", row.what.c_str());
    ours.run();
    peer.run();
    std::vector<double> ourTimes;
    std::vector<double> peerTimes;
    for (int round = 0; round < row.rounds; ++round) {
        ourTimes.push_back(ours.run());
        peerTimes.push_back(peer.run());
    }
    results_.push_back({row, peer.name, median(ourTimes), median(peerTimes)});
}

void Table::tell(const std::string& what, double seconds, double reach) {
    longest_.push_back({what, seconds, reach});
}

void Table::print() const {
    if (!results_.empty())
        printCompared();
    if (!longest_.empty())
        std::printf("%-52s %12s %12s\n", "what", "longest", "reach");
    for (const Longest& each : longest_)
        std::printf("%-52s %12s %12s\n", each.what.c_str(), timeText(each.seconds).c_str(),
                    timeText(each.reach).c_str());
}

void Table::printCompared() const {
    std::printf("%-52s %12s %12s %7s %7s  %s\n", "what", "ours", "the peer's", "ratio", "reach", "the peer");
    for (const Result& result : results_) {
        const std::string reach = result.row.reach > 0 ? printed("%.2f", result.row.reach) : "";
        std::printf("%-52s %12s %12s %7.2f %7s  %s\n", result.row.what.c_str(),
                    shown(result.row, result.ourSeconds).c_str(),
                    shown(result.row, result.peerSeconds).c_str(), result.ourSeconds / result.peerSeconds,
                    reach.c_str(), result.peer.c_str());
    }
}

}  // namespace bench
