// The service's life: start pending, running, stop pending, gone.
#pragma once

#include <string>

#include "service/program/behaviour.h"
#include "service/program/work.h"

namespace service {

// Runs as the service that the manager started it for, or under `keyName` when started by hand, and does its
// work until it is told to stop; gives the exit code. Raises platform::Failure when it cannot write its
// state.
int run(std::string keyName, const Settings& settings, Work& work);

}  // namespace service
