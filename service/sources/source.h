// What every source of event records looks like from outside.
#pragma once

#include <cstddef>
#include <string>

#include "service/sources/batch.h"

namespace service {

// Used by one thread. What cannot be read is tried again at the next look.
class Source {
  public:
    virtual ~Source() = default;
    // The name under which its position is kept.
    virtual std::string name() const = 0;
    // The position behind the newest record: where a first start begins. Raises platform::Failure.
    virtual std::string end() = 0;
    // Up to `most` records behind a position. Raises platform::Failure; nothing has been read then.
    virtual Batch read(const std::string& position, std::size_t most) = 0;
    // Readable when there may be news, until the next read(), after which it may be another; -1 for a source
    // that does not tell.
    virtual int descriptor() const noexcept { return -1; }
};

}  // namespace service
