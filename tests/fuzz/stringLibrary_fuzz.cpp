// String libraries: every string of a library that opens is valid text within the length asked for.

#include "fuzz.h"
#include "platform/files/textStream.h"
#include "platform/libraries/peFile.h"
#include "platform/libraries/stringLibrary.h"

namespace {

constexpr std::uint32_t stringsPerBlock = 16;
constexpr std::size_t mostBlocks = 4;  // a run shall take microseconds

// UTF-16 units of a valid UTF-8 text: one for each character, a second one for those of four bytes.
std::size_t unitCount(std::string_view text) {
    std::size_t count = 0;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        count += ((byte & 0xC0) != 0x80 ? 1u : 0u) + (byte >= 0xF0 ? 1u : 0u);
    }
    return count;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto library = platform::StringLibrary::parse({data, size});
    const auto blocks = platform::peResources({data, size}, platform::ResourceType::stringTable);
    fuzz::insist(!library || blocks, "a library has a string table");
    if (!library)
        return 0;
    for (std::size_t i = 0; i < std::min(blocks->size(), mostBlocks); ++i) {
        const std::uint32_t first = ((*blocks)[i].id - 1) * stringsPerBlock;
        for (std::uint32_t id = first; id != first + stringsPerBlock; ++id) {
            for (const std::size_t limit : {1u, 1200u}) {
                const std::string text = library->loadString(id, limit);
                fuzz::insist(platform::isValidUtf8(text), "a string is UTF-8");
                fuzz::insist(unitCount(text) <= limit, "a string keeps to its length");
            }
        }
    }
    return 0;
}
