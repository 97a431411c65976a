// What a service does while it runs.
#pragma once

#include <chrono>

namespace service {

class Work {
  public:
    virtual ~Work() = default;
    // Comes before the service reports that it runs. Raises platform::Failure.
    virtual void begin() {}
    // One look; gives the time until the next one. Raises platform::Failure: the look is made again later.
    virtual std::chrono::milliseconds look() = 0;
    // A descriptor that becomes readable when a look is worth making before its time; -1 for none.
    virtual int descriptor() const noexcept { return -1; }
    // Comes when the service is told to stop. Raises platform::Failure.
    virtual void end() {}
};

}  // namespace service
