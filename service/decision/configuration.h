// The configuration database as the service has it open: read again when somebody has changed it.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <memory>

#include "service/decision/monitoring.h"

namespace service {

class Configuration {
  public:
    explicit Configuration(std::filesystem::path file);

    // What the database says by now. Raises platform::Failure for one that cannot be read; the next call
    // tries again. The reference holds until then.
    const Monitoring& current();
    // Open for reading and writing. Raises platform::Failure.
    platform::Connection& connection();
    // The database was changed through connection().
    void forget() noexcept { isRead_ = false; }

  private:
    void open();
    std::int64_t version();

    std::filesystem::path file_;
    std::unique_ptr<platform::Connection> connection_;
    ino_t fileNumber_ = 0;
    Monitoring monitoring_;
    bool isRead_ = false;
    std::int64_t readVersion_ = 0;
};

}  // namespace service
