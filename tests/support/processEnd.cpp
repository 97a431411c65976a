#include "support/processEnd.h"

#include "platform/machine/host.h"

namespace support {

CatchProcessEnd::CatchProcessEnd() {
    platform::program::setEnder([](int exitCode) { throw ProcessEnded{exitCode}; });
}

CatchProcessEnd::~CatchProcessEnd() {
    platform::program::setEnder(nullptr);
}

}  // namespace support
