// Version records: the package note of an ELF file and the version resource of a library.

#include "fuzz.h"
#include "platform/files/textStream.h"
#include "platform/libraries/versionRecord.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto record = platform::parseVersionRecord({data, size});
    if (record)
        fuzz::insist(platform::isValidUtf8(record->productName), "a product's name is UTF-8");
    return 0;
}
