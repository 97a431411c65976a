// The log of a service: a text file to which each line goes with the moment of its writing.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace service {

class ServiceLog {
  public:
    // Keeps a line for the next flush.
    void add(std::string_view text);
    // Writes what was kept to the end of `file`, creating it; an empty name means that no log is wanted.
    // Beyond 10 MB the file is put aside, five generations of it. Raises platform::Failure: what was kept
    // stays for the next flush, up to a megabyte; of more, the log tells how many lines are lost.
    void flush(const std::string& file);

  private:
    std::string kept_;
    std::size_t lost_ = 0;  // lines for which there was no room
};

}  // namespace service
