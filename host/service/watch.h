// The service's work: it looks for monitored events in the event logs.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "host/service/serviceLog.h"
#include "host/service/work.h"
#include "platform/ado/ado.h"
#include "platform/machine/eventLog.h"

namespace service {

class Watch : public Work {
  public:
    // `pause` between two looks; 0 leaves it to the setting "PollingInterval" of the database.
    Watch(std::string databaseFile, std::chrono::milliseconds pause);

    // What the event logs hold already is not news.
    void begin() override;
    // Reads the new records of the event logs, then what the database says about them, and tells in the log,
    // the file of the setting "OutputFilePath", whom it would notify.
    std::chrono::milliseconds look() override;
    void end() override;

  private:
    struct EventLog {
        const char* name;
        std::size_t seen = 0;  // records that were dealt with
    };
    std::vector<platform::EventRecord> news();

    std::string databaseFile_;
    std::chrono::milliseconds pause_;
    std::array<EventLog, 2> eventLogs_{{{"Application"}, {"System"}}};
    ServiceLog log_;
    std::string logFile_;
    bool inTouch_ = false;  // the database has been read since the start
    bool everything_ = false;
};

}  // namespace service
