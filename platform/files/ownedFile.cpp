#include "platform/files/ownedFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

namespace platform::files {

Descriptor openOwnedFile(const Path& path, int flags) {
    // Relative to its folder, so that a new file gets the owner of the very folder that it is in.
    const Path above = path.has_parent_path() ? path.parent_path() : ".";
    const Descriptor folder(::open(above.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!folder)
        return Descriptor();
    const std::string name = path.filename().string();
    flags |= O_CLOEXEC | O_NOFOLLOW;
    Descriptor file(::openat(folder.get(), name.c_str(), flags | O_CREAT | O_EXCL, 0600));
    if (!file)
        return errno == EEXIST ? Descriptor(::openat(folder.get(), name.c_str(), flags)) : Descriptor();
    if (!giveToOwnerOf(folder, file)) {
        // The next one would find it there and leave it the superuser's.
        const int error = errno;
        ::unlinkat(folder.get(), name.c_str(), 0);
        errno = error;
        return Descriptor();
    }
    return file;
}

bool giveToOwnerOf(const Descriptor& folder, const Descriptor& file) {
    struct stat owner {};
    return ::geteuid() != 0 ||
           (::fstat(folder.get(), &owner) == 0 && ::fchown(file.get(), owner.st_uid, owner.st_gid) == 0);
}

}  // namespace platform::files
