#include "service/outbox/inspection.h"

#include <sys/stat.h>

#include "service/outbox/rows.h"

namespace service {

std::optional<Moment> OutboxView::pendingSince(long eventKey) const {
    const auto found = pending.find(eventKey);
    return found == pending.end() ? std::nullopt : std::optional(found->second);
}

std::optional<OutboxView> viewOutbox(const std::filesystem::path& file) {
    const std::unique_ptr<Store> there = storeIfThere(file);
    if (!there)
        return std::nullopt;
    Store& store = *there;
    static const std::string waiting = std::string(messageColumns) + "WHERE State = 0 ORDER BY Key";
    OutboxView view;
    Query messages = store.query(waiting.c_str());
    view.waiting = messagesOf(messages);
    Query held = store.query("SELECT * FROM HeldBack ORDER BY EventKey");
    view.heldBack = allHeldBackOf(held);
    Query pending = store.query(
        "SELECT EventKey, max(Created) FROM Message WHERE State <> 4 OR Outcome <> 1 GROUP BY EventKey");
    while (pending.next())
        view.pending.emplace(static_cast<long>(pending.number(0)), momentOf(pending.number(1)));
    // The service touches its outbox at each look.
    struct stat status {};
    if (::stat(file.c_str(), &status) == 0)
        view.lastLook = std::chrono::system_clock::from_time_t(status.st_mtim.tv_sec);
    return view;
}

std::unordered_map<long, Moment> newestMessagesBefore(const std::filesystem::path& file, Moment moment) {
    std::unordered_map<long, Moment> newest;
    const std::unique_ptr<Store> there = storeIfThere(file);
    if (!there)
        return newest;
    Store& store = *there;
    Query rows = store.query(
        "SELECT EventKey, max(max(CASE WHEN Created <= ?1 THEN Created ELSE 0 END,"
        " CASE WHEN 1 IN (State, Outcome) AND Settled <= ?1 THEN Settled ELSE 0 END)) AS Newest"
        " FROM Message GROUP BY EventKey HAVING Newest > 0");
    rows.with(numberOf(moment));
    while (rows.next())
        newest.emplace(static_cast<long>(rows.number(0)), momentOf(rows.number(1)));
    return newest;
}

}  // namespace service
