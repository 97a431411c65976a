// The service's life: start pending, running, stop pending, gone.
#pragma once

namespace service {

// Runs as the service that the manager started it for, or as HbQlnSvc when started by hand, until it is told
// to stop; gives the exit code. Raises platform::Failure when it cannot write its state.
int run();

}  // namespace service
