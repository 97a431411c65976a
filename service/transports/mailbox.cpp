#include "service/transports/mailbox.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <exception>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/files/descriptor.h"
#include "service/transports/mailMessage.h"

namespace service {

namespace {

using platform::Descriptor;

[[noreturn]] void fail(const std::string& what) {
    throw std::system_error(errno, std::generic_category(), what);
}

bool isFolderName(std::string_view text) noexcept {
    return !text.starts_with('.') && text.find('/') == std::string_view::npos && text.size() <= 255;
}

// Opens a folder, which is made when it is missing; never through a link.
Descriptor folderIn(int parent, const std::string& name) {
    const bool isNew = ::mkdirat(parent, name.c_str(), 0700) == 0;
    if (!isNew && errno != EEXIST)
        fail(name);
    Descriptor folder(::openat(parent, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!folder || (isNew && ::fsync(parent) != 0))
        fail(name);
    return folder;
}

void writeSynced(int folder, const std::string& name, std::string_view content) {
    constexpr int flags = O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC;
    const Descriptor file(::openat(folder, name.c_str(), flags, 0600));
    if (!file)
        fail(name);
    while (!content.empty()) {
        const ssize_t written = ::write(file.get(), content.data(), content.size());
        if (written < 0 && errno != EINTR)
            fail(name);
        content.remove_prefix(written > 0 ? static_cast<std::size_t>(written) : 0);
    }
    if (::fsync(file.get()) != 0)
        fail(name);
}

void putInto(int mailbox, const std::string& name, const std::string& mail) {
    const Descriptor unfinished = folderIn(mailbox, "tmp");
    const Descriptor arrived = folderIn(mailbox, "new");
    folderIn(mailbox, "cur");
    try {
        writeSynced(unfinished.get(), name, mail);
        if (::renameat(unfinished.get(), name.c_str(), arrived.get(), name.c_str()) != 0)
            fail(name);
    } catch (...) {
        ::unlinkat(unfinished.get(), name.c_str(), 0);
        throw;
    }
    if (::fsync(arrived.get()) != 0)
        fail("new");
}

std::string fileName(const Message& message) {
    const auto second = std::chrono::system_clock::to_time_t(message.created);
    return std::to_string(second) + "." + nameOfKey(message.key) + ".localhost";
}

}  // namespace

Mailbox::Mailbox(std::filesystem::path mailFolder, std::string from)
    : mailFolder_(std::move(mailFolder)), from_(std::move(from)) {}

Outcome Mailbox::send(const Message& message, const Deadline& deadline) {
    if (!isMailAddress(message.address) || !isFolderName(message.address))
        return {Result::refused, "The address cannot be the name of a mailbox."};
    if (deadline.isOver())
        return {Result::tryAgain, "There was no time left."};
    try {
        const std::string mail = mailMessage(message, from_);
        const Descriptor host(::open(mailFolder_.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (!host)
            fail(mailFolder_.parent_path());
        const Descriptor root = folderIn(host.get(), mailFolder_.filename());
        putInto(folderIn(root.get(), message.address).get(), fileName(message), mail);
        return {Result::delivered, "In the host's mailbox"};
    } catch (const std::system_error& failure) {
        const int error = failure.code().value();
        const bool isForGood = error == ENOTDIR || error == ELOOP || error == ENAMETOOLONG;
        return {isForGood ? Result::refused : Result::tryAgain, std::string("Mailbox: ") + failure.what()};
    } catch (const std::exception& failure) {
        return {Result::tryAgain, std::string("Mailbox: ") + failure.what()};
    }
}

}  // namespace service
