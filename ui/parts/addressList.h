// The controls of the devices that are addresses typed by hand, any number of them: a box for one, the list,
// and the buttons that put it there or take it away. The new-recipient dialog and the recipients pane have
// them for pager numbers and for SMTP addresses.
#pragma once

#include <QWidget>
#include <string>
#include <vector>

#include "database/recipientRecord.h"

class QLabel;
class QLineEdit;
class QPushButton;

namespace ui {

class EntryList;

class AddressList : public QWidget {
    Q_OBJECT

  public:
    struct Names {
        std::string module;  // in the log
        // Names of the controls.
        std::string newLabel, box, add, listLabel, list, remove;
        std::string listClick;  // of the handler for a click in the list, in the log
        bool (*mayBeAdded)(const std::string& text);
    };
    AddressList(Names names, QWidget* parent);

    struct Texts {
        long newLabel, addTip, listLabel, removeTip;  // ids of the string table
    };
    void controlInit(const Texts& texts);

    // No entry is being edited, and the list is empty. The buttons stay.
    void clear();
    // An entry with its node key; one without a key is new.
    void add(const mdlDatabase::AddressEntry& entry);
    // Puts an address that was typed and not added into the list, as its button does. A person who applies
    // what he typed means it.
    void addTyped();
    // In the order of the list.
    std::vector<mdlDatabase::AddressEntry> entries() const;

    QLabel* lblNew;
    QLineEdit* txtNew;
    QPushButton* cmdAdd;
    QLabel* lblList;
    EntryList* list;
    QPushButton* cmdDelete;

  signals:
    // The box or the list changed.
    void changed();
    // An entry was chosen for editing.
    void picked();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void buildLayout();
    void txtNew_Change();
    void cmdAdd_Click();
    void list_Click(int index);
    void cmdDelete_Click();

    Names names_;
    int selectedIndex_ = -1;  // the entry being edited
    bool typed_ = false;      // what stands in the box; not left there by a choice or a deletion
};

// What may be added: anything but nothing for a pager; for SMTP a text whose first "@" is neither its first
// nor its last character.
bool isPagerNumber(const std::string& text);
bool isSmtpAddress(const std::string& text);

}  // namespace ui
