// A text that must not be found afterwards: a password on its way from the keyboard to the hash.
#pragma once

#include <cstddef>
#include <string_view>

namespace platform {

// One buffer of one owner. Its page is locked into memory where the system allows it, left out of core files
// and of child processes, and wiped when the text is changed, moved away or destroyed. While any secret lives
// the process writes no core file at all, for copies on their way (key events, hashing) lie elsewhere.
class Secret {
  public:
    Secret();
    explicit Secret(std::string_view text);
    Secret(Secret&& other) noexcept;
    Secret& operator=(Secret&& other) noexcept;
    ~Secret();

    std::string_view view() const noexcept { return {bytes_, size_}; }
    std::size_t size() const noexcept { return size_; }
    bool empty() const noexcept { return size_ == 0; }

    // Puts `text` in place of `count` bytes from `position` on. Raises 5 when the place is outside of the
    // text or the result is longer than `capacity`; the text stays as it was then.
    void replace(std::size_t position, std::size_t count, std::string_view text);
    void append(std::string_view text) { replace(size_, 0, text); }
    void clear() noexcept;

    static constexpr std::size_t capacity = 4096;  // bytes

  private:
    void release() noexcept;

    char* bytes_ = nullptr;
    std::size_t size_ = 0;
};

}  // namespace platform
