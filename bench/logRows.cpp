// Log lines, one write for each line, against a file sink that is flushed after each line.

#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>

#include "bench/rows.h"
#include "core/classLog.h"

namespace bench {

void logRows(Table& table, const std::filesystem::path& folder) {
    constexpr int lines = 20'000;
    constexpr char tag[] = "[mdlDatabase]getConfigurationSetting";
    constexpr char text[] =
        "Exiting  [mdlDatabase]getConfigurationSetting_0 Start: 52210.13 End: 52210.13 - "
        "Elapsed: 0.0";
    const std::filesystem::path logs = folder / "LOGS";
    core::classLog log(logs);
    const auto ours = [&] {
        return secondsOf([&] {
            for (int i = 0; i < lines; ++i)
                log.log(text, core::logInfo, tag);
        });
    };
    // One thread on both sides, so the sink without a lock; the line has the same parts.
    const auto sink = std::make_shared<spdlog::sinks::basic_file_sink_st>((folder / "peer.log").string());
    spdlog::logger peerLog(tag, sink);
    peerLog.set_pattern("%H:%M:%S %7l:(%45n) %v");
    peerLog.flush_on(spdlog::level::info);
    const auto peer = [&] {
        return secondsOf([&] {
            for (int i = 0; i < lines; ++i)
                peerLog.info(text);
        });
    };
    table.compare({"log lines, each written at once", lines, Show::unitsPerSecond, 9, 1.0}, {"ours", ours},
                  {"spdlog, file sink flushed per line", peer});
}

}  // namespace bench
