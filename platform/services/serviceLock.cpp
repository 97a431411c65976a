#include "platform/services/serviceLock.h"

#include <fcntl.h>

#include <cerrno>

#include "platform/failure.h"
#include "platform/files/files.h"
#include "platform/files/ownedFile.h"
#include "platform/machine/caseFold.h"
#include "platform/machine/host.h"

namespace platform {

namespace {

// Bytes of the lock file that stand for the two locks; the file itself is empty.
constexpr long handlePlace = 0;
constexpr long startPlace = 1;

}  // namespace

std::string foldedServiceName(std::string_view keyName) {
    return foldAscii(keyName);
}

void ensureServicesFolder() {
    if (files::folderExists(host::servicesFolder())) {
        files::requireOwnFolder(host::servicesFolder());
        return;
    }
    try {
        files::createFolder(host::servicesFolder());
    } catch (const Failure& failure) {
        // Another service may have been faster.
        if (failure.number() != fileAlreadyExists)
            throw;
    }
}

ServiceLock::ServiceLock(std::string_view keyName) {
    ensureServicesFolder();
    const std::string path = (host::servicesFolder() / (foldedServiceName(keyName) + ".lock")).string();
    file_ = files::openOwnedFile(path, O_RDWR);
    if (!file_)
        throw failureFromErrno(errno, path);
}

bool ServiceLock::lock(short type, long place, bool waits) const {
    struct flock range {};
    range.l_type = type;
    range.l_whence = SEEK_SET;
    range.l_start = place;
    range.l_len = 1;
    // Locks of this opened file, not of the process: two handles in one process are two.
    while (::fcntl(file_.get(), waits ? F_OFD_SETLKW : F_OFD_SETLK, &range) != 0)
        if (errno != EINTR)
            return false;
    return true;
}

void ServiceLock::holdHandle() {
    lock(F_RDLCK, handlePlace, true);
}

bool ServiceLock::isLastHandle() {
    return lock(F_WRLCK, handlePlace, false);
}

void ServiceLock::beginStart() {
    lock(F_WRLCK, startPlace, true);
}

void ServiceLock::endStart() {
    lock(F_UNLCK, startPlace, false);
}

}  // namespace platform
