#include "platform/files/textStream.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <string>

#include "platform/failure.h"
#include "platform/files/ownedFile.h"

namespace platform {

void TextStream::open(const std::filesystem::path& path) {
    close();
    // A pipe without a reader is refused at once instead of waited for; a link is somebody else's file.
    file_ = files::openOwnedFile(path, O_WRONLY | O_APPEND | O_NONBLOCK);
    struct stat status {};
    if (!file_ || ::fstat(file_.get(), &status) != 0)
        throw failureFromErrno(errno, path.string());
    if (!S_ISREG(status.st_mode) && !S_ISCHR(status.st_mode)) {
        close();
        throw makeFailure(pathFileAccessError, path.string() + " is no file that can be written");
    }
}

void TextStream::close() noexcept {
    file_ = Descriptor();
    torn_ = false;
}

void TextStream::write(std::string_view text) {
    if (!isOpen())
        throw makeFailure(objectRequired);
    if (!isValidUtf8(text))
        throw makeFailure(invalidProcedureCall);
    // What a full disk cut off ends as a line of its own, so that the next line is whole.
    if (torn_)
        writeAll("\n");
    writeAll(text);
}

void TextStream::writeAll(std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = ::write(file_.get(), text.data(), text.size());
        if (written < 0 && errno != EINTR)
            throw failureFromErrno(errno, "");
        if (written <= 0)
            continue;
        text.remove_prefix(static_cast<std::size_t>(written));
        torn_ = !text.empty();
    }
}

bool isValidUtf8(std::string_view text) noexcept {
    // The lowest code point of a sequence by its number of continuation bytes; below it the form is too long.
    constexpr unsigned lowest[] = {0, 0x80, 0x800, 0x10000};
    for (std::size_t i = 0; i < text.size();) {
        // Nearly all text is ASCII: eight characters at a time while none has its highest bit set.
        if (std::uint64_t eight = 0; text.size() - i >= sizeof(eight)) {
            std::memcpy(&eight, text.data() + i, sizeof(eight));
            if ((eight & 0x8080808080808080u) == 0) {
                i += sizeof(eight);
                continue;
            }
        }
        const auto lead = static_cast<unsigned char>(text[i++]);
        if (lead < 0x80)
            continue;
        const unsigned more = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
        if (lead < 0xC2 || lead > 0xF4 || more > text.size() - i)
            return false;
        unsigned code = lead & (0x3Fu >> more);
        for (unsigned k = 0; k < more; ++k) {
            const auto next = static_cast<unsigned char>(text[i++]);
            if ((next & 0xC0) != 0x80)
                return false;
            code = code << 6 | (next & 0x3Fu);
        }
        if (code < lowest[more] || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF))
            return false;
    }
    return true;
}

}  // namespace platform
