// The navigation tree's rebuild against a bare Qt tree of the same rows read from the same database: once
// with the queries that the tree's icons need, through the engine's C interface, and once without them.

#include <sqlite3.h>

#include <QApplication>
#include <QTreeWidget>
#include <memory>

#include "bench/rows.h"
#include "bench/workplace.h"
#include "core/state.h"
#include "platform/host.h"
#include "ui/frmMain.h"
#include "ui/widgets/keyedTree.h"

namespace bench {

namespace {

constexpr int eventCount = 1000;
constexpr int recipientCount = 50;

// The statements of the console, as texts with the key in them.
constexpr char assignedDevices[] =
    "SELECT DISTINCT Recipients.RecipientName, EventDevice.Active, Device.DeviceType, "
    "AddressDetails.DisplayName, Device.DeviceKey, Recipients.RecipientKey FROM (Recipients INNER JOIN "
    "((Device INNER JOIN (EventDevice INNER JOIN Events ON EventDevice.EventKey = Events.EventKey) ON "
    "Device.DeviceKey = EventDevice.DeviceKey) INNER JOIN DeviceRecipient ON Device.DeviceKey = "
    "DeviceRecipient.DeviceKey) ON Recipients.RecipientKey = DeviceRecipient.RecipientKey) INNER JOIN "
    "AddressDetails ON Device.DeviceAddress = AddressDetails.DeviceAddress WHERE Events.EventKey = ";
constexpr char assignedOrder[] = " ORDER BY Recipients.RecipientName";
constexpr char unknownDevices[] =
    "SELECT AddressDetails.AddressType FROM DeviceRecipient INNER JOIN AddressDetails ON "
    "DeviceRecipient.DeviceKey = AddressDetails.DeviceKey WHERE AddressDetails.AddressType = 0 AND "
    "DeviceRecipient.RecipientKey = ";

class BareTree {
  public:
    explicit BareTree(const std::filesystem::path& file) : engine_(openBare(file)) {
        tree_.setHeaderHidden(true);
        tree_.setUniformRowHeights(true);
        tree_.resize(300, 600);
        tree_.show();
    }

    void rebuild(bool withStates) {
        tree_.setUpdatesEnabled(false);
        tree_.clear();
        const auto addRoot = [&](const char* text) {
            auto* root = new QTreeWidgetItem(&tree_, {text});
            root->setIcon(0, icons_[0]);
            root->setFont(0, bold());
            root->setExpanded(true);
            return root;
        };
        QTreeWidgetItem* events = addRoot("Monitored Events");
        QTreeWidgetItem* recipients = addRoot("Recipients");
        QTreeWidgetItem* exclusions = addRoot("Exclusions");
        addEvents(events, withStates);
        addRecipients(recipients, withStates);
        forEach("SELECT * FROM Exclusions ORDER BY EventSource, EventId",
                [&](sqlite3_stmt* row) { addItem(exclusions, text(row, 1) + " (" + text(row, 2) + ")", 0); });
        tree_.setUpdatesEnabled(true);
    }

    long count() const {
        long count = tree_.topLevelItemCount();
        for (int i = 0; i < tree_.topLevelItemCount(); ++i)
            count += tree_.topLevelItem(i)->childCount();
        return count;
    }

  private:
    static QString text(sqlite3_stmt* row, int column) {
        return QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(row, column)));
    }

    QFont bold() const {
        QFont font = tree_.font();
        font.setBold(true);
        return font;
    }

    template <class Action>
    void forEach(const std::string& statement, const Action& action) const {
        const Statement rows = prepare(engine_, statement);
        while (sqlite3_step(rows.get()) == SQLITE_ROW)
            action(rows.get());
    }

    QTreeWidgetItem* addItem(QTreeWidgetItem* parent, const QString& caption, std::size_t icon) const {
        auto* item = new QTreeWidgetItem(parent, {caption});
        item->setIcon(0, icons_[icon]);
        return item;
    }

    void addEvents(QTreeWidgetItem* root, bool withStates) {
        const QBrush grey = tree_.palette().brush(QPalette::Disabled, QPalette::Text);
        forEach("SELECT * FROM Events WHERE EventTitle <> '$$IGNORE' ORDER BY EventCollection, EventSource",
                [&](sqlite3_stmt* row) {
                    const long key = sqlite3_column_int(row, 0);
                    const bool all = sqlite3_column_int(row, 2) == -1;
                    const QString source = text(row, 1);
                    QTreeWidgetItem* item =
                        addItem(root, all ? source + " (All)" : source + " (" + text(row, 2) + ")",
                                withStates ? eventState(key) : 1);
                    item->setToolTip(0, text(row, 3));
                    item->setData(0, Qt::UserRole, static_cast<qlonglong>(key));
                    if (sqlite3_column_int(row, 5) != 0)
                        item->setFont(0, bold());
                    else
                        item->setForeground(0, grey);
                });
    }

    void addRecipients(QTreeWidgetItem* root, bool withStates) {
        forEach("SELECT * FROM Recipients ORDER BY RecipientName", [&](sqlite3_stmt* row) {
            const long key = sqlite3_column_int(row, 0);
            std::size_t state = 1;
            if (withStates) {
                state = isRecipientActive(key) ? 1 : 3;
                forEach(unknownDevices + std::to_string(key), [&](sqlite3_stmt*) { state = 2; });
            }
            addItem(root, text(row, 1), state);
        });
    }

    bool isRecipientActive(long key) const {
        bool active = false;
        forEach("SELECT RecipientActive FROM Recipients WHERE RecipientKey = " + std::to_string(key),
                [&](sqlite3_stmt* row) { active = sqlite3_column_int(row, 0) != 0; });
        return active;
    }

    // Once for each row, and again for each recipient, as the console asks.
    std::size_t eventState(long key) const {
        struct Row {
            bool active;
            long recipient;
        };
        std::vector<Row> rows;
        forEach(assignedDevices + std::to_string(key) + assignedOrder, [&](sqlite3_stmt* row) {
            rows.push_back({sqlite3_column_int(row, 1) != 0, sqlite3_column_int(row, 5)});
        });
        int devices = 0;
        int active = 0;
        for (const Row& row : rows)
            devices += row.active && isRecipientActive(row.recipient) ? 1 : 0;
        long before = 0;
        for (const Row& row : rows) {
            if (row.recipient != before)
                active += isRecipientActive(row.recipient) ? 1 : 0;
            before = row.recipient;
        }
        std::size_t state = devices == 0 || active == 0 ? 2 : 1;
        forEach("SELECT EventActive FROM Events WHERE EventKey = " + std::to_string(key),
                [&](sqlite3_stmt* row) { state = sqlite3_column_int(row, 0) != 0 ? state : 3; });
        return state;
    }

    Engine engine_;
    QTreeWidget tree_;
    std::vector<QIcon> icons_{QIcon(":/icons/category.svg"), QIcon(":/icons/complete.svg"),
                              QIcon(":/icons/incomplete.svg"), QIcon(":/icons/inactive.svg")};
};

}  // namespace

void treeRows(Table& table, const std::filesystem::path& folder) {
    for (const char* part : {"Host", "QLNAdmin", "Database"})
        std::filesystem::create_directory(folder / part);
    platform::host::setFolder(folder / "Host");
    platform::program::setFile(folder / "QLNAdmin" / "QLNAdmin");
    const std::filesystem::path file = folder / "Database" / "QLNDB.MDB";
    makeDatabase(file, {eventCount, recipientCount});
    core::gDatabase.open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + file.string());
    frmMain window;
    window.show();
    BareTree bare(file);
    // What the rebuild leaves to be laid out and painted belongs to it.
    const auto ours = [&] {
        return secondsOf([&] {
            window.loadNavigationTree();
            QApplication::processEvents();
        });
    };
    const auto peer = [&](bool withStates) {
        return [&bare, withStates] {
            return secondsOf([&] {
                bare.rebuild(withStates);
                QApplication::processEvents();
            });
        };
    };
    ours();
    bare.rebuild(true);
    insist(window.tvNavigation->count() == bare.count(), "both trees have the same rows");
    table.compare({"tree rebuild, 1,000 events with their states", 1, Show::timePerUnit, 9, 1.3},
                  {"ours", ours}, {"bare Qt tree, same queries", peer(true)});
    table.compare({"tree rebuild, 1,000 events with their states", 1, Show::timePerUnit, 9}, {"ours", ours},
                  {"bare Qt tree, no states", peer(false)});
    core::resetState();
}

}  // namespace bench
