// The one failure type of the program, with the numbers that the log prints and that a procedure's own
// cases compare with.
#pragma once

#include <exception>
#include <string>
#include <string_view>

namespace platform {

// Numbers of the failures that the layer raises, as signed 32-bit values.
enum FailureNumber : long {
    invalidProcedureCall = 5,
    overflow = 6,
    typeMismatch = 13,
    fileNotFound = 53,
    fileAlreadyExists = 58,
    diskFull = 61,
    permissionDenied = 70,
    pathFileAccessError = 75,
    pathNotFound = 76,
    objectNotSet = 91,
    invalidUseOfNull = 94,
    objectRequired = 424,
    cannotCreateObject = 429,
    keyAlreadyExists = 457,
    noCurrentRecord = 3021,
    updatingNotSupported = 3251,
    itemNotFound = 3265,
    objectClosed = 3704,
    objectOpen = 3705,
    connectionClosed = 3709,
    elementNotFound = 35601,
    keyNotUnique = 35602,
    providerError = -2147467259,
    statementFailed = -2147217900,
    tableMissing = -2147217865,
    columnMissing = -2147217904,
    textTooLong = -2147217887,
    constraintViolated = -2147217873,
    rowNotLocated = -2147217864,
};

class Failure : public std::exception {
  public:
    // `description` is the text for the log; `source` says who raised it and may stay empty.
    Failure(long number, std::string description, std::string source = {});

    long number() const noexcept { return number_; }
    const std::string& description() const noexcept { return description_; }
    const std::string& source() const noexcept { return source_; }
    const char* what() const noexcept override { return description_.c_str(); }

  private:
    long number_;
    std::string description_;
    std::string source_;
};

// The standard description of `number`; empty for numbers whose description is the engine's own text.
std::string_view standardDescription(long number);

// A failure with the standard description, followed by " (detail)" when a detail is given.
Failure makeFailure(long number, std::string_view detail = {});

// Maps an errno of a file operation on `path` to its failure; this is the only place that does.
// A missing file whose folder is missing too becomes pathNotFound.
Failure failureFromErrno(int error, const std::string& path);

}  // namespace platform
