#include "platform/failure.h"

#include <cerrno>
#include <filesystem>
#include <utility>

namespace platform {

Failure::Failure(long number, std::string description, std::string source)
    : number_(number), description_(std::move(description)), source_(std::move(source)) {}

std::string_view standardDescription(long number) {
    switch (number) {
        case invalidProcedureCall:
            return "Invalid procedure call or argument";
        case overflow:
            return "Overflow";
        case typeMismatch:
            return "Type mismatch";
        case fileNotFound:
            return "File not found";
        case fileAlreadyExists:
            return "File already exists";
        case diskFull:
            return "Disk full";
        case permissionDenied:
            return "Permission denied";
        case pathFileAccessError:
            return "Path/File access error";
        case pathNotFound:
            return "Path not found";
        case objectNotSet:
            return "Object variable or With block variable not set";
        case invalidUseOfNull:
            return "Invalid use of Null";
        case objectRequired:
            return "Object required";
        case cannotCreateObject:
            return "ActiveX component can't create object";
        case keyAlreadyExists:
            return "This key is already associated with an element of this collection";
        case noCurrentRecord:
            return "Either BOF or EOF is True, or the current record has been deleted. Requested operation "
                   "requires a current record.";
        case updatingNotSupported:
            return "Current Recordset does not support updating. This may be a limitation of the provider, "
                   "or of "
                   "the selected locktype.";
        case itemNotFound:
            return "Item cannot be found in the collection corresponding to the requested name or ordinal.";
        case objectClosed:
            return "Operation is not allowed when the object is closed.";
        case objectOpen:
            return "Operation is not allowed when the object is open.";
        case connectionClosed:
            return "The connection cannot be used to perform this operation. It is either closed or invalid "
                   "in "
                   "this context.";
        case elementNotFound:
            return "Element not found";
        case keyNotUnique:
            return "Key is not unique in collection";
        case textTooLong:
            return "The field is too small to accept the amount of data you attempted to add.";
        default:
            return "";
    }
}

Failure makeFailure(long number, std::string_view detail) {
    std::string description(standardDescription(number));
    if (!detail.empty())
        description.append(" (").append(detail).append(")");
    return {number, std::move(description)};
}

Failure failureFromErrno(int error, const std::string& path) {
    switch (error) {
        case ENOENT: {
            const std::filesystem::path folder = std::filesystem::path(path).parent_path();
            std::error_code ignored;
            const bool folderIsThere = folder.empty() || std::filesystem::is_directory(folder, ignored);
            return makeFailure(folderIsThere ? fileNotFound : pathNotFound, path);
        }
        case ENOTDIR:
            return makeFailure(pathNotFound, path);
        case EEXIST:
            return makeFailure(fileAlreadyExists, path);
        case ENOSPC:
        case EDQUOT:
            return makeFailure(diskFull, path);
        case EACCES:
        case EPERM:
        case EROFS:
        case ETXTBSY:
        case EBUSY:
            return makeFailure(permissionDenied, path);
        default:
            return makeFailure(pathFileAccessError, path);
    }
}

}  // namespace platform
