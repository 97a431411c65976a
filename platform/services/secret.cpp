#include "platform/services/secret.h"

#include <string.h>
#include <sys/mman.h>
#include <sys/prctl.h>

#include <new>
#include <utility>

#include "platform/failure.h"

namespace platform {

namespace {

int livingSecrets = 0;
int dumpableBefore = 1;

void forbidCoreFiles() {
    if (livingSecrets++ == 0) {
        dumpableBefore = ::prctl(PR_GET_DUMPABLE);
        ::prctl(PR_SET_DUMPABLE, 0);
    }
}

void allowCoreFiles() {
    if (--livingSecrets == 0 && dumpableBefore == 1)
        ::prctl(PR_SET_DUMPABLE, 1);
}

}  // namespace

Secret::Secret() {
    void* const page = ::mmap(nullptr, capacity, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (page == MAP_FAILED)
        throw std::bad_alloc();
    bytes_ = static_cast<char*>(page);
    // Each of these may be refused, by a limit or an old kernel; wiping does not depend on them.
    ::mlock(page, capacity);
    ::madvise(page, capacity, MADV_DONTDUMP);
    ::madvise(page, capacity, MADV_WIPEONFORK);
    forbidCoreFiles();
}

Secret::Secret(std::string_view text) : Secret() {
    replace(0, 0, text);
}

Secret::Secret(Secret&& other) noexcept
    : bytes_(std::exchange(other.bytes_, nullptr)), size_(std::exchange(other.size_, 0)) {}

Secret& Secret::operator=(Secret&& other) noexcept {
    if (this != &other) {
        release();
        bytes_ = std::exchange(other.bytes_, nullptr);
        size_ = std::exchange(other.size_, 0);
    }
    return *this;
}

Secret::~Secret() {
    release();
}

void Secret::release() noexcept {
    if (!bytes_)
        return;
    clear();
    ::munmap(bytes_, capacity);
    bytes_ = nullptr;
    allowCoreFiles();
}

void Secret::replace(std::size_t position, std::size_t count, std::string_view text) {
    if (!bytes_ || position > size_ || count > size_ - position || text.size() > capacity - (size_ - count))
        throw makeFailure(invalidProcedureCall);
    const std::size_t end = position + count;
    const std::size_t newSize = size_ - count + text.size();
    ::memmove(bytes_ + position + text.size(), bytes_ + end, size_ - end);
    text.copy(bytes_ + position, text.size());
    if (newSize < size_)
        ::explicit_bzero(bytes_ + newSize, size_ - newSize);
    size_ = newSize;
}

void Secret::clear() noexcept {
    if (bytes_)
        ::explicit_bzero(bytes_, capacity);
    size_ = 0;
}

}  // namespace platform
