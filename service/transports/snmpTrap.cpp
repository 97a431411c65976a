#include "service/transports/snmpTrap.h"

#include <net-snmp/net-snmp-config.h>
//
#include <net-snmp/net-snmp-includes.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <ctime>
#include <iterator>
#include <map>
#include <memory>
#include <mutex>
#include <string_view>
#include <utility>

#include "platform/machine/host.h"
#include "service/transports/nameSearch.h"

namespace service {

namespace {

constexpr std::size_t longestText = 1024;

// The library is not safe for several threads; sinks are few, so one mutex serves all.
std::mutex& libraryMutex() {
    static std::mutex mutex;
    return mutex;
}

// It must neither read what is meant for the user's own commands nor leave files behind.
void initializeOnce() {
    static const bool isReady = [] {
        for (const int setting : {NETSNMP_DS_LIB_DONT_READ_CONFIGS, NETSNMP_DS_LIB_DONT_PERSIST_STATE,
                                  NETSNMP_DS_LIB_DONT_LOAD_HOST_FILES})
            netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, setting, 1);
        snmp_disable_log();
        // Descriptions of objects are not needed, and there is no place for its folders.
        ::setenv("MIBS", "", 0);
        netsnmp_ds_set_string(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_PERSISTENT_DIR, "/dev/null/none");
        init_snmp("quillon-service");
        setup_engineID(nullptr, snmpEngineName().c_str());
        return true;
    }();
    static_cast<void>(isReady);
}

// A phrase may have changed; the library would go on with the key of before.
void forgetUsers() {
    while (usmUser* const user = usm_get_userList()) {
        usm_remove_user(user);
        usm_free_user(user);
    }
}

struct CloseSession {
    void operator()(void* session) const noexcept { snmp_sess_close(session); }
};
using Session = std::unique_ptr<void, CloseSession>;

struct FreePdu {
    void operator()(netsnmp_pdu* pdu) const noexcept { snmp_free_pdu(pdu); }
};
using Pdu = std::unique_ptr<netsnmp_pdu, FreePdu>;

std::string cut(const std::string& text) {
    std::size_t end = std::min(text.size(), longestText);
    while (end < text.size() && end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
        --end;
    return text.substr(0, end);
}

// The library's own form of an address that needs no search.
std::string transportOf(const addrinfo& address) {
    std::array<char, NI_MAXHOST> host{};
    std::array<char, NI_MAXSERV> port{};
    if (::getnameinfo(address.ai_addr, address.ai_addrlen, host.data(), host.size(), port.data(), port.size(),
                      NI_NUMERICHOST | NI_NUMERICSERV) != 0)
        return {};
    return address.ai_family == AF_INET6 ? "udp6:[" + std::string(host.data()) + "]:" + port.data()
                                         : "udp:" + std::string(host.data()) + ':' + port.data();
}

std::string errorOf(netsnmp_session& session) {
    char* text = nullptr;
    int number = 0;
    int ofLibrary = 0;
    snmp_error(&session, &number, &ofLibrary, &text);
    const std::unique_ptr<char, decltype(&std::free)> owner(text, &std::free);
    return text ? text : "unknown failure";
}

// Makes the key of a phrase; false for one that is too short.
bool makeKey(const oid* protocol, std::size_t length, const std::string& phrase, u_char* key,
             std::size_t& size) {
    return phrase.size() >= USM_LENGTH_P_MIN &&
           generate_Ku(protocol, static_cast<u_int>(length), reinterpret_cast<const u_char*>(phrase.data()),
                       phrase.size(), key, &size) == SNMPERR_SUCCESS;
}

// The parts of a session that point into strings.
struct SessionTexts {
    std::string peer, community, user;
    u_char* engine = nullptr;
    std::size_t engineLength = 0;
    ~SessionTexts() { std::free(engine); }
};

void describeV2(netsnmp_session& session, SessionTexts& texts) {
    session.version = SNMP_VERSION_2c;
    session.community = reinterpret_cast<u_char*>(texts.community.data());
    session.community_len = texts.community.size();
}

// Gives what is wrong; empty when nothing is.
std::string describeV3(netsnmp_session& session, SessionTexts& texts, const SnmpSettings& settings) {
    session.version = SNMP_VERSION_3;
    session.securityName = texts.user.data();
    session.securityNameLen = texts.user.size();
    session.securityModel = SNMP_SEC_MODEL_USM;
    session.securityLevel = SNMP_SEC_LEVEL_AUTHPRIV;
    // The library copies both when it opens the session.
    session.securityAuthProto = const_cast<oid*>(usmHMACSHA1AuthProtocol);
    session.securityAuthProtoLen = USM_AUTH_PROTO_SHA_LEN;
    session.securityPrivProto = const_cast<oid*>(usmAESPrivProtocol);
    session.securityPrivProtoLen = USM_PRIV_PROTO_AES_LEN;
    session.securityAuthKeyLen = USM_AUTH_KU_LEN;
    session.securityPrivKeyLen = USM_PRIV_KU_LEN;
    if (!makeKey(usmHMACSHA1AuthProtocol, USM_AUTH_PROTO_SHA_LEN, settings.authPhrase,
                 session.securityAuthKey, session.securityAuthKeyLen) ||
        !makeKey(usmHMACSHA1AuthProtocol, USM_AUTH_PROTO_SHA_LEN, settings.privPhrase,
                 session.securityPrivKey, session.securityPrivKeyLen))
        return "a pass phrase is shorter than eight characters";
    // Of a trap the sender is the authority; of an inform the receiver, who is asked.
    if (!settings.informs) {
        texts.engine = snmpv3_generate_engineID(&texts.engineLength);
        session.securityEngineID = texts.engine;
        session.securityEngineIDLen = texts.engineLength;
        session.contextEngineID = texts.engine;
        session.contextEngineIDLen = texts.engineLength;
        // A receiver takes only what is later than what it had: the minute of the start counts the starts.
        static const std::time_t start = std::time(nullptr);
        session.engineBoots = static_cast<u_int>(start / 60);
        session.engineTime = static_cast<u_int>(std::max<std::time_t>(std::time(nullptr) - start, 0));
    }
    return {};
}

void add(netsnmp_pdu* pdu, const SnmpSettings& settings, oid number, u_char type, const void* value,
         std::size_t size) {
    const std::array<oid, 11> name{1, 3, 6, 1, 4, 1, settings.enterprise, 1, 1, number, 0};
    snmp_pdu_add_variable(pdu, name.data(), name.size(), type, value, size);
}

void addText(netsnmp_pdu* pdu, const SnmpSettings& settings, oid number, const std::string& text) {
    const std::string value = cut(text);
    add(pdu, settings, number, ASN_OCTET_STR, value.data(), value.size());
}

Pdu makePdu(const Message& message, const SnmpSettings& settings) {
    constexpr std::array<oid, 9> upTime{1, 3, 6, 1, 2, 1, 1, 3, 0};
    constexpr std::array<oid, 11> trapName{1, 3, 6, 1, 6, 3, 1, 1, 4, 1, 0};
    const std::array<oid, 10> notification{1, 3, 6, 1, 4, 1, settings.enterprise, 1, 0, 1};
    Pdu pdu(snmp_pdu_create(settings.informs ? SNMP_MSG_INFORM : SNMP_MSG_TRAP2));
    if (!pdu)
        return pdu;
    const long ticks = static_cast<long>(get_uptime());
    snmp_pdu_add_variable(pdu.get(), upTime.data(), upTime.size(), ASN_TIMETICKS, &ticks, sizeof ticks);
    snmp_pdu_add_variable(pdu.get(), trapName.data(), trapName.size(), ASN_OBJECT_ID, notification.data(),
                          sizeof notification);
    const long id = static_cast<long>(message.eventId);
    const long type = message.eventType;
    addText(pdu.get(), settings, 1, message.eventSource);
    add(pdu.get(), settings, 2, ASN_UNSIGNED, &id, sizeof id);
    add(pdu.get(), settings, 3, ASN_INTEGER, &type, sizeof type);
    addText(pdu.get(), settings, 4, message.computer);
    addText(pdu.get(), settings, 5, message.subject);
    addText(pdu.get(), settings, 6, message.body);
    return pdu;
}

// Asks again every second until the sink answers.
Outcome inform(void* session, const Message& message, const SnmpSettings& settings,
               const Deadline& deadline) {
    constexpr int mostTries = 5;
    for (int i = 0; i < mostTries && !deadline.isOver(); ++i) {
        netsnmp_pdu* response = nullptr;
        Pdu pdu = makePdu(message, settings);
        // The library owns the request from here on.
        const int status = snmp_sess_synch_response(session, pdu.release(), &response);
        const Pdu answer(response);
        if (status == STAT_SUCCESS && answer)
            return answer->errstat == SNMP_ERR_NOERROR
                       ? Outcome{Result::delivered, "answered"}
                       : Outcome{Result::refused, snmp_errstring(static_cast<int>(answer->errstat))};
        if (status == STAT_ERROR)
            return {Result::tryAgain, errorOf(*snmp_sess_session(session))};
    }
    return {Result::tryAgain, "no answer"};
}

Outcome sendToSink(const SnmpSink& sink, const Message& message, const SnmpSettings& settings,
                   const Deadline& deadline) {
    std::string reason;
    const Addresses addresses = findHost(sink.host, sink.port, deadline, reason);
    if (!addresses)
        return {Result::tryAgain, reason};
    forgetUsers();
    SessionTexts texts{transportOf(*addresses), sink.community, settings.user};
    netsnmp_session description{};
    snmp_sess_init(&description);
    description.peername = texts.peer.data();
    description.timeout = 1'000'000;  // microseconds
    description.retries = 0;
    if (!settings.isVersion3)
        describeV2(description, texts);
    else if (std::string problem = describeV3(description, texts, settings); !problem.empty())
        return {Result::refused, std::move(problem)};
    const Session session(snmp_sess_open(&description));
    if (!session)
        return {Result::tryAgain, errorOf(description)};
    if (settings.informs)
        return inform(session.get(), message, settings, deadline);
    Pdu pdu = makePdu(message, settings);
    if (!pdu || snmp_sess_send(session.get(), pdu.get()) == 0)
        return {Result::tryAgain, errorOf(*snmp_sess_session(session.get()))};
    static_cast<void>(pdu.release());
    return {Result::handedOver, "handed over"};
}

}  // namespace

std::string snmpEngineName() {
    constexpr std::size_t longest = 26;  // of an engine's 32 bytes 5 are taken
    const std::string name = platform::computerName().substr(0, longest);
    return name.empty() ? "quillon" : name;
}

SnmpTrap::SnmpTrap(SnmpSettings settings) : settings_(std::move(settings)) {}

Outcome SnmpTrap::send(const Message& message, const Deadline& deadline) {
    const std::lock_guard lock(libraryMutex());
    initializeOnce();
    // Who has it already, of messages that are tried again because another sink failed. A restart forgets it,
    // and sends to all once more.
    static std::map<std::string, std::vector<SnmpSink>> reached;
    std::vector<SnmpSink>& have = reached[message.key];
    const Result taken = settings_.informs ? Result::delivered : Result::handedOver;
    bool isRefused = false;
    Outcome all{taken, {}};
    for (const SnmpSink& sink : settings_.sinks) {
        if (std::ranges::find(have, sink) != have.end())
            continue;
        const Outcome one = sendToSink(sink, message, settings_, deadline);
        if (one.result == taken)
            have.push_back(sink);
        else if (one.result == Result::tryAgain)
            all.result = Result::tryAgain;
        isRefused = isRefused || one.result == Result::refused;
        all.answer += (all.answer.empty() ? "" : "; ") + sink.host + ": " + one.answer;
    }
    if (isRefused && have.empty() && all.result != Result::tryAgain)
        all.result = Result::refused;
    constexpr std::size_t mostKept = 1000;
    if (all.result != Result::tryAgain)
        reached.erase(message.key);
    else if (reached.size() > mostKept)
        // One that was given up is not heard of again; of the others one has to be told once more.
        reached.erase(reached.begin()->first == message.key ? std::next(reached.begin()) : reached.begin());
    return all;
}

}  // namespace service
