#include "service/sources/folderWatch.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <utility>

namespace service {

FolderWatch::FolderWatch(std::filesystem::path folder)
    : folder_(std::move(folder)), notify_(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK)) {
    drain();
}

void FolderWatch::drain() noexcept {
    if (!notify_)
        return;
    std::array<char, 4096> events{};
    while (::read(notify_.get(), events.data(), events.size()) > 0) {
    }
    // Asked again each time: the same folder stays watched, one in its place is watched from now on.
    const auto watch = [&] {
        return ::inotify_add_watch(notify_.get(), folder_.c_str(),
                                   IN_MODIFY | IN_CREATE | IN_MOVED_TO | IN_DELETE | IN_ONLYDIR) >= 0;
    };
    bool isWatched = watch();
    if (!isWatched && aboveWatch_ < 0) {
        aboveWatch_ = ::inotify_add_watch(notify_.get(), folder_.parent_path().c_str(),
                                          IN_CREATE | IN_MOVED_TO | IN_ONLYDIR);
        isWatched = watch();  // it may have come meanwhile
    }
    if (isWatched && aboveWatch_ >= 0)
        ::inotify_rm_watch(notify_.get(), std::exchange(aboveWatch_, -1));
}

}  // namespace service
