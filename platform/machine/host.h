// The machine as the console sees it: a folder with the registry file, service states, accounts, event
// logs, directory database and menu folder. And the program itself: its file, folder and command line.
#pragma once

#include <filesystem>
#include <string>

namespace platform {

// The machine's own name; empty when the system does not say it.
std::string computerName();

namespace host {

// The folder of the host: the environment variable QLN_HOST, or the folder "Host" beside the
// installation root's other folders. It need not exist.
std::filesystem::path folder();
// Replaces the folder for this process; an empty path goes back to the rule above.
void setFolder(std::filesystem::path folder);

// Where each thing of a host lies below its folder.
std::filesystem::path registryFile();       // registry.reg
std::filesystem::path servicesFolder();     // services/<key name>.state
std::filesystem::path accountsFile();       // accounts
std::filesystem::path eventLogsFolder();    // eventlogs/<log>.log
std::filesystem::path directoryDatabase();  // CorvaneDb.db
std::filesystem::path menuFolder();         // menu
std::filesystem::path runFolder();          // run: locks and sockets of running programs

}  // namespace host

namespace program {

// Full path of the running executable's file.
std::filesystem::path file();
// Its folder.
std::filesystem::path folder();
// The parent of its folder.
std::filesystem::path installationRoot();
// File name without folder and extension; "QLNAdmin" for the console.
std::string name();
// Lets a test program pass for a program elsewhere; an empty path goes back to the running one.
void setFile(std::filesystem::path file);

// The command line as one text: the arguments, joined by blanks.
const std::string& commandLine();
// Called once by main().
void setCommandLine(int argc, const char* const* argv);

// The title that the program's windows are found by.
const std::string& title();
// Gives the title until now.
std::string setTitle(std::string title);

// Ends the process at once with the exit code. Tests replace the action; it must not return.
[[noreturn]] void end(int exitCode);
using Ender = void (*)(int exitCode);
void setEnder(Ender ender);

}  // namespace program

}  // namespace platform
