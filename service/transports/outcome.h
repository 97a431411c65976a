// What became of an attempt to send.
#pragma once

#include <string>

namespace service {

enum class Result {
    delivered,   // the receiver has it
    handedOver,  // it left in a way that nobody confirms
    tryAgain,    // it may work later
    refused,     // it will never work like this
};

struct Outcome {
    Result result = Result::tryAgain;
    std::string answer;  // the receiver's words, or the reason; one line for the history
};

}  // namespace service
