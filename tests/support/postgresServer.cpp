#include "support/postgresServer.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <random>
#include <thread>

#include "platform/files/descriptor.h"
#include "support/temporaryHost.h"

namespace support {

namespace fs = std::filesystem;

namespace {

constexpr uid_t ordinaryUser = 65534;  // nobody
constexpr char owner[] = "directory";

// The folder of the newest server's programs; empty without one.
fs::path programs() {
    fs::path newest;
    std::error_code none;
    for (const auto& version : fs::directory_iterator("/usr/lib/postgresql", none))
        if (fs::exists(version.path() / "bin" / "postgres") && version.path() > newest)
            newest = version.path();
    return newest.empty() ? newest : newest / "bin";
}

std::string quoted(const fs::path& path) {
    return "'" + path.string() + "'";
}

// The server refuses to run as root.
std::string asOrdinaryUser() {
    const std::string command = "setpriv --pdeathsig QUIT ";
    return geteuid() == 0 ? command + "--reuid 65534 --regid 65534 --clear-groups " : command;
}

void shell(const std::string& command) {
    ASSERT_EQ(std::system(command.c_str()), 0) << command;
}

int freePort() {
    const platform::Descriptor probe(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    EXPECT_EQ(::bind(probe.get(), reinterpret_cast<sockaddr*>(&address), size), 0);
    EXPECT_EQ(::getsockname(probe.get(), reinterpret_cast<sockaddr*>(&address), &size), 0);
    return ntohs(address.sin_port);
}

std::string randomPassword() {
    std::random_device source;
    return std::to_string(source()) + std::to_string(source());
}

std::string contentOf(const fs::path& file) {
    std::ifstream stream(file);
    return {std::istreambuf_iterator<char>(stream), {}};
}

}  // namespace

std::string PostgresServer::missing() {
    if (programs().empty())
        return "not run: no PostgreSQL server here (package postgresql)";
    if (contentOf("/etc/odbcinst.ini").find("[PostgreSQL Unicode]") == std::string::npos)
        return "not run: no ODBC driver for PostgreSQL here (package odbc-postgresql)";
    return {};
}

PostgresServer::PostgresServer(const std::vector<std::string>& databases) : port_(freePort()) {
    std::string pattern = (fs::temp_directory_path() / "qln-server-XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
    std::ofstream(folder_ / "password") << randomPassword();
    for (const fs::path& path : {folder_, folder_ / "password"})
        EXPECT_TRUE(geteuid() != 0 || ::chown(path.c_str(), ordinaryUser, ordinaryUser) == 0);
    initialize();
    start();
    writeDataSources(databases);
    for (const std::string& database : databases)
        run("postgres", "CREATE DATABASE " + database);
}

PostgresServer::~PostgresServer() {
    kill();
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
}

void PostgresServer::initialize() const {
    shell("cd / && " + asOrdinaryUser() + quoted(programs() / "initdb") + " -D " + quoted(folder_ / "data") +
          " -U " + owner + " --pwfile " + quoted(folder_ / "password") +
          " --auth scram-sha-256 --encoding UTF8 --locale C --no-sync > " + quoted(folder_ / "initdb.log"));
}

void PostgresServer::start() {
    const std::string command =
        "cd / && exec " + asOrdinaryUser() + quoted(programs() / "postgres") + " -D " +
        quoted(folder_ / "data") + " -p " + std::to_string(port_) +
        " -c listen_addresses=127.0.0.1 -c unix_socket_directories='' -c fsync=off > " +
        quoted(folder_ / "server.log") + " 2>&1";
    process_ = ::fork();
    if (process_ == 0) {
        ::execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
        ::_exit(127);
    }
    const std::string ready =
        quoted(programs() / "pg_isready") + " -q -h 127.0.0.1 -p " + std::to_string(port_);
    for (int attempt = 0; attempt < 200 && std::system(ready.c_str()) != 0; ++attempt)
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    ASSERT_EQ(std::system(ready.c_str()), 0) << contentOf(folder_ / "server.log");
}

// Rows come in blocks of the driver's, as they do from a large directory.
void PostgresServer::writeDataSources(const std::vector<std::string>& databases) const {
    const fs::path file = folder_ / "odbc.ini";
    std::ofstream stream(file);
    for (const std::string& database : databases)
        stream << "[" << dataSource(database)
               << "]\nDriver=PostgreSQL Unicode\nServername=127.0.0.1\nPort=" << port_
               << "\nDatabase=" << database << "\nUsername=" << owner
               << "\nPassword=" << contentOf(folder_ / "password") << "\nUseDeclareFetch=1\nFetch=100\n\n";
    ::setenv("ODBCINI", file.c_str(), 1);
}

std::string PostgresServer::dataSource(const std::string& database) const {
    return database + std::to_string(port_);
}

std::string PostgresServer::psql(const std::string& database) const {
    return "PGPASSWORD=" + contentOf(folder_ / "password") + " " + quoted(programs() / "psql") +
           " -X -q -A -t -v ON_ERROR_STOP=1 -h 127.0.0.1 -p " + std::to_string(port_) + " -U " + owner +
           " -d " + database + " -f " + quoted(folder_ / "statements.sql");
}

void PostgresServer::run(const std::string& database, const std::string& statements) const {
    std::ofstream(folder_ / "statements.sql") << statements;
    shell(psql(database) + " > /dev/null");
}

std::string PostgresServer::query(const std::string& database, const std::string& statement) const {
    std::ofstream(folder_ / "statements.sql") << statement;
    shell(psql(database) + " > " + quoted(folder_ / "answer"));
    std::string answer = contentOf(folder_ / "answer");
    while (answer.ends_with('\n'))
        answer.pop_back();
    return answer;
}

void PostgresServer::copyDirectory(const std::string& database, const fs::path& directory) const {
    std::string statements;
    for (std::string definition : support::query(
             directory,
             "SELECT sql FROM sqlite_master WHERE type IN ('table', 'view') ORDER BY type, rowid")) {
        constexpr std::string_view collation = " COLLATE NOCASE";
        for (std::size_t at = 0; (at = definition.find(collation)) != std::string::npos;)
            definition.erase(at, collation.size());
        statements += definition + ";\n";
    }
    for (const std::string& table :
         support::query(directory, "SELECT name FROM sqlite_master WHERE type = 'table'")) {
        std::string values;
        for (const std::string& column :
             support::query(directory, "SELECT name FROM pragma_table_info('" + table + "')"))
            values += (values.empty() ? "quote(" : "||','||quote(") + column + ")";
        for (const std::string& row : support::query(directory, "SELECT " + values + " FROM " + table))
            statements.append("INSERT INTO ").append(table).append(" VALUES(").append(row).append(");\n");
    }
    run(database, "BEGIN;\n" + statements + "COMMIT;\n");
}

void PostgresServer::kill() {
    if (process_ <= 0)
        return;
    ::kill(process_, SIGQUIT);
    ::waitpid(process_, nullptr, 0);
    process_ = -1;
}

}  // namespace support
