// People and lists of the demonstration host.

#include <array>
#include <set>
#include <string>
#include <string_view>

#include "host/directory.h"

namespace host {

namespace {

constexpr std::array<std::string_view, 48> firstNames{
    "Ada",     "Amir",     "Anneliese", "Aoife",  "Bastian", "Beatriz", "Carla",  "Chidi",
    "Colette", "Dagny",    "Darius",    "Elif",   "Elena",   "Emeka",   "Farid",  "Fiona",
    "Giulia",  "Grace",    "Hannah",    "Henrik", "Ines",    "Ivan",    "Jamila", "Jonas",
    "Kaito",   "Katarina", "Lars",      "Leila",  "Marcel",  "Mei",     "Milan",  "Nadia",
    "Noor",    "Oscar",    "Paola",     "Priya",  "Quentin", "Rafael",  "Rosa",   "Sanjay",
    "Simone",  "Tamsin",   "Tomás",     "Ulrike", "Viktor",  "Wanda",   "Yusuf",  "Zoë"};

constexpr std::array<std::string_view, 45> lastNames{
    "Abbott",  "Almeida",  "Andersson", "Bakker",  "Bauer",     "Bergström", "Castillo", "Chen",   "Cohen",
    "D'Amico", "Dubois",   "Eriksen",   "Fischer", "García",    "Haddad",    "Hughes",   "Ito",    "Jansen",
    "Kapoor",  "Keller",   "Kowalski",  "Laurent", "Lindqvist", "MacLeod",   "Marino",   "Müller", "Nakamura",
    "Novák",   "O'Connor", "Okafor",    "Osei",    "Petrov",    "Quinn",     "Ramos",    "Rossi",  "Sato",
    "Schmidt", "Silva",    "Sørensen",  "Tanaka",  "Vargas",    "Vermeulen", "Weber",    "Yılmaz", "Zhang"};

// The directory's classes of subscriber, most of them of the first.
constexpr std::array<char, 20> types{'1', '1', '1', '1', '1', '1', '1', '1', '1', '1',
                                     '2', '2', '2', '3', '3', '5', '5', '7', '8', '1'};

constexpr std::array<std::string_view, 24> departments{
    "All Staff",         "Operations",     "Night Shift",        "Day Shift",          "Telephony",
    "Messaging",         "Network",        "Security Desk",      "Service Desk",       "Data Centre North",
    "Data Centre South", "Facilities",     "Reception",          "Field Engineers",    "Database Group",
    "Storage Group",     "Duty Managers",  "Escalation Level 2", "Escalation Level 3", "Backup Operators",
    "Change Board",      "Vendor Liaison", "Training",           "Disaster Recovery"};

// Letters and digits of a name, lower case, other letters by their plain neighbour where there is one.
std::string plainName(std::string_view name) {
    static constexpr std::pair<std::string_view, char> accented[] = {
        {"á", 'a'}, {"í", 'i'}, {"ö", 'o'}, {"ø", 'o'}, {"ü", 'u'}, {"ë", 'e'}, {"ı", 'i'}};
    std::string plain;
    for (std::size_t i = 0; i < name.size(); ++i) {
        const char c = name[i];
        if (c >= 'A' && c <= 'Z')
            plain += static_cast<char>(c - 'A' + 'a');
        else if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9'))
            plain += c;
        for (const auto& [letter, neighbour] : accented)
            if (name.substr(i).starts_with(letter))
                plain += neighbour;
    }
    return plain;
}

// The alias with a number behind it when somebody has it already.
std::string uniqueAlias(std::set<std::string>& taken, const std::string& wanted) {
    std::string alias = wanted;
    for (unsigned number = 2; !taken.insert(alias).second; ++number)
        alias = wanted + std::to_string(number);
    return alias;
}

}  // namespace

void fillDemonstrationDirectory(DirectoryWriter& writer, unsigned subscribers, unsigned distributionLists) {
    constexpr unsigned firstExtension = 2001;
    constexpr unsigned firstListExtension = 9001;
    // Coprime steps walk through all pairs of names without a visible order.
    constexpr std::size_t firstStep = 29;
    constexpr std::size_t lastStep = 17;
    std::set<std::string> taken;
    for (unsigned i = 0; i < subscribers; ++i) {
        const std::string_view first =
            firstNames[(i * firstStep + i / firstNames.size()) % firstNames.size()];
        const std::string_view last = lastNames[i * lastStep % lastNames.size()];
        Subscriber person;
        person.firstName = first;
        person.lastName = last;
        person.displayName = std::string(first) + " " + std::string(last);
        person.alias = uniqueAlias(taken, plainName(first).substr(0, 1) + plainName(last));
        person.extension = std::to_string(firstExtension + i);
        person.type = types[i % types.size()];
        writer.add(person);
    }
    for (unsigned i = 0; i < distributionLists; ++i) {
        const std::string_view department = departments[i % departments.size()];
        const unsigned round = i / static_cast<unsigned>(departments.size());
        DistributionList list;
        list.displayName = std::string(department) + (round > 0 ? " " + std::to_string(round + 1) : "");
        list.alias = uniqueAlias(taken, "dl-" + plainName(list.displayName));
        list.extension = std::to_string(firstListExtension + i);
        writer.add(list);
    }
}

}  // namespace host
