#include "platform/machine/host.h"

#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace platform {

std::string computerName() {
    std::array<char, 256> name{};
    return ::gethostname(name.data(), name.size() - 1) == 0 ? name.data() : std::string();
}

namespace host {

namespace {
std::filesystem::path chosenFolder;
}

std::filesystem::path folder() {
    if (!chosenFolder.empty())
        return chosenFolder;
    if (const char* named = std::getenv("QLN_HOST"); named && *named)
        return named;
    return program::installationRoot() / "Host";
}

void setFolder(std::filesystem::path folder) {
    chosenFolder = std::move(folder);
}

std::filesystem::path registryFile() {
    return folder() / "registry.reg";
}

std::filesystem::path servicesFolder() {
    return folder() / "services";
}

std::filesystem::path accountsFile() {
    return folder() / "accounts";
}

std::filesystem::path eventLogsFolder() {
    return folder() / "eventlogs";
}

std::filesystem::path directoryDatabase() {
    return folder() / "CorvaneDb.db";
}

std::filesystem::path menuFolder() {
    return folder() / "menu";
}

std::filesystem::path runFolder() {
    return folder() / "run";
}

}  // namespace host

namespace program {

namespace {
std::filesystem::path chosenFile;
std::string commandLineText;
std::string windowTitle = "QLNAdmin";
Ender enderInUse = nullptr;
}  // namespace

std::filesystem::path file() {
    if (!chosenFile.empty())
        return chosenFile;
    std::error_code error;
    std::filesystem::path running = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::filesystem::path("QLNAdmin") : running;
}

std::filesystem::path folder() {
    return file().parent_path();
}

std::filesystem::path installationRoot() {
    return folder().parent_path();
}

std::string name() {
    return file().stem().string();
}

void setFile(std::filesystem::path file) {
    chosenFile = std::move(file);
}

const std::string& commandLine() {
    return commandLineText;
}

void setCommandLine(int argc, const char* const* argv) {
    commandLineText.clear();
    // Without the program's own path, in whose folders a word is no argument.
    for (int i = 1; i < argc; ++i) {
        if (i > 1)
            commandLineText += ' ';
        commandLineText += argv[i];
    }
}

const std::string& title() {
    return windowTitle;
}

std::string setTitle(std::string title) {
    return std::exchange(windowTitle, std::move(title));
}

void setEnder(Ender ender) {
    enderInUse = ender;
}

void end(int exitCode) {
    std::fflush(nullptr);
    if (enderInUse) {
        enderInUse(exitCode);
        std::abort();  // an ender that returns leaves nothing to go on with
    }
    _exit(exitCode);
}

}  // namespace program

}  // namespace platform
