// Lets a test see the end of the process instead of dying of it.
#pragma once

namespace support {

// Thrown in place of the process's end. No std::exception, so that nothing on the way takes it for a failure.
struct ProcessEnded {
    int exitCode;
};

// While it lives, platform::program::end throws ProcessEnded.
class CatchProcessEnd {
  public:
    CatchProcessEnd();
    ~CatchProcessEnd();
    CatchProcessEnd(const CatchProcessEnd&) = delete;
    CatchProcessEnd& operator=(const CatchProcessEnd&) = delete;
};

}  // namespace support
