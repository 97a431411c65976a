// The legacy notifier's work: it reads which events its own database names.
#pragma once

#include <string>

#include "service/program/serviceLog.h"
#include "service/program/work.h"

namespace service {

class LegacyWatch : public Work {
  public:
    // The folder holds the database and takes the log.
    explicit LegacyWatch(std::string folder);

    void begin() override;
    // Tells in the log how many events the database names, whenever that changes.
    std::chrono::milliseconds look() override;
    void end() override;

  private:
    std::string folder_;
    ServiceLog log_;
    long watched_ = -1;
};

}  // namespace service
