// The commands of qlnhost. Each reads its own arguments, prints its answer, and gives the exit code: 0 when
// it did what it was asked, 1 when what was asked for is not there. They raise platform::Failure and
// UsageError.
#pragma once

#include <filesystem>
#include <string>

#include "host/arguments.h"
#include "platform/services/serviceManager.h"
#include "service/inspection/installationFiles.h"

namespace qlnhost {

int createCommand(Arguments& arguments);
// The rest of create, for the host that stands for this machine.
int createMachineCommand(Arguments& arguments, const std::filesystem::path& kit);
int sourcesCommand(Arguments& arguments);
int updateCommand(Arguments& arguments);
int registryCommand(Arguments& arguments);
int directoryCommand(Arguments& arguments);
int eventsCommand(Arguments& arguments);
int explainCommand(Arguments& arguments);
int notificationsCommand(Arguments& arguments);
int mailCommand(Arguments& arguments);
int transportsCommand(Arguments& arguments);
int servicesCommand(Arguments& arguments);
int accountsCommand(Arguments& arguments);

using service::databaseFile;
using service::outboxFile;

// The folder of a new tree, from the arguments; raises UsageError for one whose name no command line can
// hold.
std::string takeTreeFolder(Arguments& arguments);

// A handle that may start and stop a service.
platform::Service openService(const std::string& name);
// Starts a service of the host and waits, half a minute at most, until it runs; false says on standard error
// why it does not. Raises platform::Failure.
bool startService(const std::string& name);

}  // namespace qlnhost
