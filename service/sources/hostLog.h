// One of the host's event logs as a source: read behind a position, each record once.
#pragma once

#include <cstdint>
#include <string>

#include "service/sources/source.h"

namespace service {

// A position names a place in the file and a fingerprint of what lies before it: a log that was replaced,
// cut, or cleared and filled again beyond the place is read from its beginning, and a copy of the log that
// was put back in its place is not.
class HostLog : public Source {
  public:
    // "Application" or "System"; reads `chunk` bytes at a time, more only for a longer record.
    explicit HostLog(std::string log, std::size_t chunk = 1 << 20);

    std::string name() const override { return log_; }
    std::string end() override;
    Batch read(const std::string& position, std::size_t most) override;

  private:
    std::string log_;
    std::size_t chunk_;
};

}  // namespace service
