// A real server that a test starts for itself, and certificates for it.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace support {

// A program that runs until this goes. Its output goes to a file.
class Receiver {
  public:
    // Starts `arguments[0]`, found in the path.
    Receiver(const std::vector<std::string>& arguments, std::filesystem::path output);
    ~Receiver();
    Receiver(const Receiver&) = delete;
    Receiver& operator=(const Receiver&) = delete;

    // What it has printed by now.
    std::string output() const;
    // The first line that it prints, ten seconds at most; fails the test without one.
    std::string firstLine() const;

  private:
    std::filesystem::path output_;
    pid_t pid_ = -1;
};

// The servers that the service's transports talk to. Each keeps its files in `folder`, which has to exist;
// the last two may need a moment before they listen.
struct Certificate;
// The mail server of tests/service/receivers: prints its port when it listens, puts each mail into `taken`.
std::unique_ptr<Receiver> startMailServer(const std::filesystem::path& folder,
                                          const std::filesystem::path& taken, const std::string& modes,
                                          const Certificate* certificate = nullptr);
// Prints a line "TRAP ..." for each trap that `configuration` lets in, with all its variables.
std::unique_ptr<Receiver> startTrapReceiver(const std::filesystem::path& folder, const std::string& port,
                                            const std::string& configuration);
// Writes the fields that its own parser finds in each message into `received`, parted by '|'.
std::unique_ptr<Receiver> startSyslogServer(const std::filesystem::path& folder,
                                            const std::filesystem::path& received, const std::string& input);

// A certificate with its key, signed by itself: `name`.crt and `name`.key in a folder.
struct Certificate {
    std::filesystem::path certificate;
    std::filesystem::path key;
};
// For hosts such as "DNS:localhost,IP:127.0.0.1", valid for so many days (negative: expired). Fails the test
// when it cannot be made.
Certificate makeCertificate(const std::filesystem::path& folder, const std::string& name,
                            const std::string& hosts, int days = 2);

}  // namespace support
