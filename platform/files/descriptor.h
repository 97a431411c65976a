// Owner of a file descriptor.
#pragma once

#include <unistd.h>

#include <utility>

namespace platform {

class Descriptor {
  public:
    explicit Descriptor(int value = -1) noexcept : value_(value) {}
    Descriptor(Descriptor&& other) noexcept : value_(other.release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(value_, other.value_);
        return *this;
    }
    ~Descriptor() {
        if (value_ >= 0)
            ::close(value_);
    }

    explicit operator bool() const noexcept { return value_ >= 0; }
    int get() const noexcept { return value_; }
    int release() noexcept { return std::exchange(value_, -1); }

  private:
    int value_;
};

}  // namespace platform
