#include "support/receiver.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <thread>

extern char** environ;

namespace support {

Receiver::Receiver(const std::vector<std::string>& arguments, std::filesystem::path output)
    : output_(std::move(output)) {
    std::vector<char*> words;
    for (const std::string& each : arguments)
        words.push_back(const_cast<char*>(each.c_str()));
    words.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, output_.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    posix_spawn_file_actions_adddup2(&actions, 1, 2);
    EXPECT_EQ(::posix_spawnp(&pid_, words[0], &actions, nullptr, words.data(), environ), 0) << arguments[0];
    posix_spawn_file_actions_destroy(&actions);
}

Receiver::~Receiver() {
    if (pid_ <= 0)
        return;
    ::kill(pid_, SIGKILL);
    ::waitpid(pid_, nullptr, 0);
}

std::string Receiver::output() const {
    std::ifstream stream(output_);
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::string Receiver::firstLine() const {
    for (int i = 0; i < 2000; ++i) {
        const std::string text = output();
        if (const std::size_t end = text.find('\n'); end != std::string::npos)
            return text.substr(0, end);
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    ADD_FAILURE() << "the server did not start";
    return {};
}

std::unique_ptr<Receiver> startMailServer(const std::filesystem::path& folder,
                                          const std::filesystem::path& taken, const std::string& modes,
                                          const Certificate* certificate) {
    std::filesystem::create_directories(taken);
    std::vector<std::string> arguments{"/usr/bin/python3", MAIL_SERVER, taken.string(), modes};
    if (certificate)
        arguments.insert(arguments.end(), {certificate->certificate.string(), certificate->key.string()});
    return std::make_unique<Receiver>(arguments, folder / "mailServer.out");
}

std::unique_ptr<Receiver> startTrapReceiver(const std::filesystem::path& folder, const std::string& port,
                                            const std::string& configuration) {
    const std::string file = (folder / "trapd.conf").string();
    std::ofstream(file) << configuration;
    ::setenv("SNMP_PERSISTENT_DIR", folder.c_str(), 1);
    return std::make_unique<Receiver>(
        std::vector<std::string>{"snmptrapd", "-f", "-Lo", "-n", "-OnQUe", "-C", "-c", file, "-M",
                                 MIB_FOLDERS, "-m", "QUILLON-MIB", "-F", "TRAP %W|%v\n",
                                 "udp:127.0.0.1:" + port},
        folder / "trapd.out");
}

std::unique_ptr<Receiver> startSyslogServer(const std::filesystem::path& folder,
                                            const std::filesystem::path& received, const std::string& input) {
    const std::string file = (folder / "rsyslog.conf").string();
    std::ofstream(file) << "global(workDirectory=\"" << folder.string() << "\" maxMessageSize=\"64k\")\n"
                        << "template(name=\"t\" type=\"string\" string=\"%pri%|%timestamp:::date-rfc3339%|"
                           "%hostname%|%app-name%|%procid%|%msgid%|%structured-data%|%msg%\\n\")\n"
                        << input << "\naction(type=\"omfile\" file=\"" << received.string()
                        << "\" template=\"t\")\n";
    return std::make_unique<Receiver>(std::vector<std::string>{"/usr/sbin/rsyslogd", "-n", "-f", file, "-i",
                                                               (folder / "rsyslog.pid").string()},
                                      folder / "rsyslog.out");
}

Certificate makeCertificate(const std::filesystem::path& folder, const std::string& name,
                            const std::string& hosts, int days) {
    const Certificate made{folder / (name + ".crt"), folder / (name + ".key")};
    const std::string request = (folder / (name + ".csr")).string();
    const std::string extensions = (folder / (name + ".ext")).string();
    std::ofstream(extensions) << "subjectAltName=" << hosts << "\nbasicConstraints=critical,CA:TRUE\n";
    const std::string command = "{ openssl req -newkey rsa:2048 -nodes -subj /CN=" + name + " -keyout " +
                                made.key.string() + " -out " + request + " && openssl x509 -req -in " +
                                request + " -signkey " + made.key.string() + " -days " +
                                std::to_string(days) + " -extfile " + extensions + " -out " +
                                made.certificate.string() + "; } >/dev/null 2>&1";
    EXPECT_EQ(std::system(command.c_str()), 0) << command;
    return made;
}

}  // namespace support
