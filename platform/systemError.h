// Last-error numbers of the system, as its calls for services and processes give them and the log prints
// them.
#pragma once

#include <cstdint>

#include "platform/failure.h"

namespace platform {

enum SystemError : std::uint32_t {
    noError = 0,
    errorFileNotFound = 2,
    errorPathNotFound = 3,
    errorAccessDenied = 5,
    errorInvalidHandle = 6,
    errorGeneralFailure = 31,
    errorInvalidParameter = 87,
    errorBadRegistry = 1009,
    errorServiceRequestTimeout = 1053,
    errorServiceAlreadyRunning = 1056,
    errorInvalidServiceAccount = 1057,
    errorServiceDisabled = 1058,
    errorServiceDoesNotExist = 1060,
    errorServiceCannotAcceptControl = 1061,
    errorServiceNotActive = 1062,
    errorServiceLogonFailed = 1069,
    errorServiceMarkedForDelete = 1072,
};

// The last-error number that stands for a failure of a file or process operation.
inline std::uint32_t systemError(const Failure& failure) {
    switch (failure.number()) {
        case fileNotFound:
            return errorFileNotFound;
        case pathNotFound:
            return errorPathNotFound;
        case permissionDenied:
            return errorAccessDenied;
        case invalidProcedureCall:
            return errorInvalidParameter;
        default:
            return errorGeneralFailure;
    }
}

}  // namespace platform
