// What a plain program would show of the same database: a tree and two tables of the toolkit's own, and a
// dialog with a tree, filled through the engine's C interface.
#pragma once

#include <QDialog>
#include <QIcon>
#include <QTableWidget>
#include <QTreeWidget>
#include <array>
#include <unordered_map>
#include <vector>

#include "bench/recipientsPeer.h"

namespace bench {

// What the console's trees look like: no header, and names that scroll sideways instead of being cut.
void showNamesWhole(QTreeWidget& tree);

// The navigation tree, with the statements that the console fills it from.
class BareTree : public QTreeWidget {
  public:
    explicit BareTree(Peer& peer);
    void rebuild();
    long count() const;

  private:
    QTreeWidgetItem* addRoot(const char* text);
    void addEvents(QTreeWidgetItem* root);
    void addRecipients(QTreeWidgetItem* root);
    void addExclusions(QTreeWidgetItem* root);
    QFont boldFont() const;

    Prepared events_;
    Prepared notifying_;
    Prepared unresolved_;
    Prepared recipients_;
    Prepared exclusions_;
    std::array<QIcon, 4> icons_;
};

// A table that a row's cells are put into.
class BareTable : public QTableWidget {
  public:
    explicit BareTable(const QStringList& headers);

  protected:
    void beginRows();
    void put(int row, int column, QTableWidgetItem* item);
    void endRows(int count);
    QTableWidgetItem* textCell(const QString& text, bool centred = true) const;
    QTableWidgetItem* tickCell(bool on) const;
    QTableWidgetItem* pictureCell(bool shown) const;

  private:
    QIcon picture_;
};

class BareEvents : public BareTable {
  public:
    explicit BareEvents(const Engine& engine);
    void fill();

  private:
    Prepared rows_;
};

class BareRecipients : public BareTable {
  public:
    explicit BareRecipients(const Engine& engine);
    void fill();
    // Switches the recipient of a row on or off in the database.
    void toggle(int row);

  private:
    // How many devices a recipient has, by type.
    using Counts = std::unordered_map<long, std::array<long, 8>>;
    Counts countDevices();

    Prepared rows_;
    Prepared counts_;
    Prepared toggle_;
};

// The choice of an event's recipients: all of them from one statement, what is assigned from another.
class BareSelection : public QDialog {
  public:
    explicit BareSelection(Peer& peer);
    void fill(long event);
    QTreeWidget& tree() { return *tree_; }
    long count() const;

  private:
    struct Assignment {
        bool active;
        long recipient;
    };
    using Assignments = std::unordered_map<long, Assignment>;
    Assignments readAssignments(long event);
    QTreeWidgetItem* addRecipient(const std::string& name, bool active);
    QTreeWidgetItem* addDevice(QTreeWidgetItem* parent, long type, const std::string& name);
    void beginFill();
    void endFill();

    QTreeWidget* tree_;
    Prepared assigned_;
    Prepared all_;
};

}  // namespace bench
