// The service's own entry in the host's registry.
#pragma once

namespace service {

// Writes the service's key: its program, to be started by hand until the manager is told otherwise. What the
// key holds already besides stays. Raises platform::Failure.
void registerService();

}  // namespace service
