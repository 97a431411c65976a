#include "platform/libraries/chmStructure.h"

#include <algorithm>
#include <set>
#include <string_view>

#include "platform/failure.h"

namespace platform {

namespace {

constexpr std::uint64_t mostUnpacked = 64ull << 20;  // bytes
constexpr std::uint32_t mostBlocks = 4096;           // of the directory
constexpr std::uint32_t frameLength = 0x8000;        // bytes of a compressed frame when unpacked
constexpr std::uint32_t packedSlack = 6144;          // a frame that does not shrink may grow by so much
constexpr int none = -1;
constexpr std::string_view dataSpace = "::DataSpace/Storage/MSCompressed/";
constexpr std::string_view resetTable =
    "Transform/{7FC28940-9D31-11D0-9B27-00A0C91E9C7C}/InstanceData/ResetTable";

class Checker {
  public:
    Checker(Bytes file, const std::string& name) : file_(file), name_(name) {}

    std::vector<ChmObject> objects() {
        readHeader();
        readDirectory();
        checkIndex(root_, 0);
        checkPlaces();
        return std::move(objects_);
    }

  private:
    [[noreturn]] void refuse(const std::string& reason) const {
        throw makeFailure(pathFileAccessError, name_ + ": " + reason);
    }

    Bytes part(Bytes whole, std::uint64_t offset, std::uint64_t size, const char* what) const {
        const auto found = slice(whole, offset, size);
        if (!found)
            refuse(std::string(what) + " reaches beyond its end");
        return *found;
    }

    template <class Number>
    Number number(Bytes bytes, std::uint64_t offset) const {
        const auto value = littleEndian<Number>(bytes, offset);
        if (!value)
            refuse("the file is cut short");
        return *value;
    }

    bool begins(Bytes bytes, std::string_view signature) const {
        return bytes.size() >= signature.size() &&
               std::equal(signature.begin(), signature.end(), bytes.begin(),
                          [](char a, std::uint8_t b) { return static_cast<std::uint8_t>(a) == b; });
    }

    // A number in groups of seven bits, the highest first.
    std::uint64_t packedNumber(Bytes bytes, std::uint64_t& at) const {
        std::uint64_t value = 0;
        for (int groups = 0;; ++groups) {
            if (at >= bytes.size() || groups == 9)
                refuse("a number of the directory does not end");
            const std::uint8_t byte = bytes[static_cast<std::size_t>(at++)];
            value = value << 7 | (byte & 0x7F);
            if (!(byte & 0x80))
                return value;
        }
    }

    std::string packedName(Bytes bytes, std::uint64_t& at) const {
        constexpr std::uint64_t longestName = 512;
        const std::uint64_t length = packedNumber(bytes, at);
        if (length > longestName)
            refuse("a name of the directory is too long");
        const Bytes name = part(bytes, at, length, "a name of the directory");
        at += length;
        return {name.begin(), name.end()};
    }

    void readHeader() {
        if (!begins(file_, "ITSF"))
            refuse("not a compiled help file");
        if (number<std::uint32_t>(file_, 4) != 3)
            refuse("a version of the format that is not known");
        if (number<std::uint32_t>(file_, 8) != 0x60)
            refuse("the header has another length than the format gives it");
        const Bytes directory = part(file_, number<std::uint64_t>(file_, 0x48),
                                     number<std::uint64_t>(file_, 0x50), "the directory");
        const auto data = number<std::uint64_t>(file_, 0x58);
        if (data > file_.size())
            refuse("the data lie beyond the end");
        data_ = file_.subspan(static_cast<std::size_t>(data));

        if (!begins(directory, "ITSP") || number<std::uint32_t>(directory, 4) != 1)
            refuse("no directory where the header points");
        const auto headerLength = number<std::uint32_t>(directory, 8);
        blockLength_ = number<std::uint32_t>(directory, 0x10);
        root_ = number<std::int32_t>(directory, 0x1C);
        head_ = number<std::int32_t>(directory, 0x20);
        blockCount_ = number<std::uint32_t>(directory, 0x2C);
        if (headerLength != 0x54 || blockLength_ < 0x100 || blockLength_ > 0x10000 || blockCount_ == 0 ||
            blockCount_ > mostBlocks)
            refuse("the directory's own measures cannot be");
        blocks_ = part(directory, headerLength, std::uint64_t{blockLength_} * blockCount_, "the directory");
        if (root_ == none)
            root_ = head_;
    }

    // The block, cut where its free space begins.
    Bytes block(int index, std::string_view signature) const {
        if (index < 0 || static_cast<std::uint32_t>(index) >= blockCount_)
            refuse("the directory points to a block that is not there");
        const Bytes bytes = blocks_.subspan(static_cast<std::size_t>(index) * blockLength_, blockLength_);
        if (!begins(bytes, signature))
            refuse("a block of the directory is of another kind");
        const auto freeSpace = number<std::uint32_t>(bytes, 4);
        if (freeSpace > blockLength_ - 0x14)
            refuse("a block of the directory has more free space than room");
        return bytes.first(blockLength_ - freeSpace);
    }

    void readDirectory() {
        std::uint32_t visited = 0;
        for (int index = head_; index != none;) {
            if (++visited > blockCount_)
                refuse("the directory runs in circles");
            const Bytes bytes = block(index, "PMGL");
            for (std::uint64_t at = 0x14; at < bytes.size();) {
                ChmObject object;
                object.path = packedName(bytes, at);
                const std::uint64_t section = packedNumber(bytes, at);
                if (section > 1)
                    refuse("an object lies in a section that is not known");
                object.compressed = section == 1;
                object.offset = packedNumber(bytes, at);
                object.length = packedNumber(bytes, at);
                objects_.push_back(std::move(object));
            }
            index = number<std::int32_t>(bytes, 0x10);
        }
    }

    // The tree over the directory's blocks, by which the library looks names up.
    void checkIndex(int index, int depth) {
        constexpr int deepest = 8;
        if (depth > deepest || !indexSeen_.insert(index).second)
            refuse("the directory's index runs in circles");
        if (index >= 0 && static_cast<std::uint32_t>(index) < blockCount_ &&
            begins(blocks_.subspan(static_cast<std::size_t>(index) * blockLength_), "PMGL")) {
            block(index, "PMGL");
            return;
        }
        const Bytes bytes = block(index, "PMGI");
        for (std::uint64_t at = 8; at < bytes.size();) {
            packedName(bytes, at);
            const std::uint64_t child = packedNumber(bytes, at);
            checkIndex(child < blockCount_ ? static_cast<int>(child) : none, depth + 1);
        }
    }

    // The compression's own object of that name, which lies in the plain section.
    std::optional<Bytes> compressionPart(std::string_view name) const {
        for (const ChmObject& object : objects_)
            if (object.path == std::string(dataSpace).append(name)) {
                if (object.compressed)
                    refuse("the compression describes itself compressed");
                return part(data_, object.offset, object.length, "the compression's description");
            }
        return std::nullopt;
    }

    // Bytes of the compressed section when unpacked; 0 without one.
    std::uint64_t unpackedLength() const {
        const auto content = compressionPart("Content");
        const auto control = compressionPart("ControlData");
        const auto table = compressionPart(resetTable);
        if (!content || !control || !table)
            return 0;
        checkControl(*control);
        const auto frames = number<std::uint32_t>(*table, 4);
        const auto offsets = number<std::uint32_t>(*table, 0xC);
        const auto unpacked = number<std::uint64_t>(*table, 0x10);
        const auto packed = number<std::uint64_t>(*table, 0x18);
        if (number<std::uint32_t>(*table, 0) != 2 || number<std::uint64_t>(*table, 0x20) != frameLength)
            refuse("a compression that is not known");
        const std::uint64_t needed = (unpacked + frameLength - 1) / frameLength;
        // Some compilers list the end as one frame more.
        if (unpacked > mostUnpacked || packed > content->size() || frames < needed || frames > needed + 1)
            refuse("the compression's measures cannot be");
        const Bytes places = part(*table, offsets, std::uint64_t{frames} * 8, "the table of frames");
        std::uint64_t before = 0;
        for (std::uint32_t i = 0; i <= frames; ++i) {
            const std::uint64_t place = i < frames ? number<std::uint64_t>(places, i * 8ull) : packed;
            if (place < before || place > packed || place - before > frameLength + packedSlack)
                refuse("the table of frames is out of order");
            before = place;
        }
        return unpacked;
    }

    void checkControl(Bytes control) const {
        if (control.size() < 0x18 || !begins(control.subspan(4), "LZXC"))
            refuse("a compression that is not known");
        const std::uint64_t unit = number<std::uint32_t>(control, 8) == 2 ? frameLength : 1;
        const std::uint64_t interval = number<std::uint32_t>(control, 0xC) * unit;
        const std::uint64_t window = number<std::uint32_t>(control, 0x10) * unit;
        const auto windowsPerReset = number<std::uint32_t>(control, 0x14);
        const bool power = window >= 1u << 15 && window <= 1u << 21 && (window & (window - 1)) == 0;
        if (!power || interval == 0 || interval > 1u << 24 || interval % (window / 2) != 0 ||
            windowsPerReset == 0 || windowsPerReset > 64)
            refuse("the compression's window cannot be");
    }

    void checkPlaces() const {
        const std::uint64_t unpacked = unpackedLength();
        for (const ChmObject& object : objects_) {
            const std::uint64_t size = object.compressed ? unpacked : data_.size();
            if (object.offset > size || object.length > size - object.offset || object.length > mostUnpacked)
                refuse("the object " + object.path + " lies outside the file");
        }
    }

    Bytes file_;
    const std::string& name_;
    Bytes data_;
    Bytes blocks_;
    std::uint32_t blockLength_ = 0;
    std::uint32_t blockCount_ = 0;
    int root_ = none;
    int head_ = none;
    std::set<int> indexSeen_;
    std::vector<ChmObject> objects_;
};

}  // namespace

std::vector<ChmObject> chmDirectory(Bytes file, const std::string& name) {
    return Checker(file, name).objects();
}

}  // namespace platform
