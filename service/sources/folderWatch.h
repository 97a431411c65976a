// Tells at once that something in a folder was written.
#pragma once

#include <filesystem>

#include "platform/files/descriptor.h"

namespace service {

// Without it nothing is missed: the folder is looked at anyway, only later. So nothing here raises.
class FolderWatch {
  public:
    explicit FolderWatch(std::filesystem::path folder);

    // Readable when there is news; -1 when the system does not tell.
    int descriptor() const noexcept { return notify_.get(); }
    // Takes notice of the news so far, and begins to watch a folder that has come to be.
    void drain() noexcept;

  private:
    std::filesystem::path folder_;
    platform::Descriptor notify_;
    int aboveWatch_ = -1;  // of the folder above, as long as this one is not there
};

}  // namespace service
