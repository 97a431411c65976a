// The controls of a device that is an entry of the server's directory: which kind of entry, the entry, and
// the buttons that search for one or take it away. The new-recipient dialog and the recipients pane have them
// for voice mail and for e-mail.
#pragma once

#include <QWidget>
#include <functional>
#include <optional>
#include <string>
#include <vector>

class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

namespace ui {

struct FoundEntry {
    std::string displayName;
    std::string directoryId;
};
// Lets the administrator search the directory, over `owner`: for subscribers of the given types, as
// "(1,2,3)", or for distribution lists. Nothing when he cancels.
using SearchDirectory = std::function<std::optional<FoundEntry>(
    QWidget& owner, const std::string& subscriberTypes, bool subscribers)>;

class DirectoryEntry : public QWidget {
    Q_OBJECT

  public:
    struct Names {
        std::string module;     // in the log
        std::string kind;       // in the controls' names: VoiceMail, Email
        std::string typeLabel;  // names of the label and of the box around the options
        std::string frame;
        std::string subscriberTypes;  // whom the search finds, as "(1,2,3)"
    };
    DirectoryEntry(Names names, SearchDirectory search, QWidget* parent);

    // Captions; `device` names the entry for those who cannot see its tab.
    void controlInit(const QString& device);
    // Empties the entry; options and buttons stay.
    void blank();
    // Shows an entry; a change of the option is a change like a click on it.
    void showEntry(int type, const std::string& displayName, const std::string& directoryId);
    std::string displayName() const;
    std::string directoryId() const;

    QLabel* lblType;
    std::vector<QRadioButton*> optionType;  // 0 subscriber, 1 distribution list
    QLineEdit* txtName;
    QLineEdit* txtDirectoryId;  // never to be seen
    QPushButton* cmdSelect;
    QPushButton* cmdClear;

  signals:
    // The entry was searched for (also when the search was cancelled), taken away, or lost its kind.
    void changed();
    // An option was chosen that was the last one chosen already.
    void picked();

  private:
    void buildLayout(QWidget* frame);
    void cmdSelect_Click();
    void cmdClear_Click();
    void optionType_Click(int index);

    Names names_;
    SearchDirectory search_;
    // Which option was last in force. It begins as the first one, so choosing that first changes nothing.
    int lastType_ = 0;
};

}  // namespace ui
