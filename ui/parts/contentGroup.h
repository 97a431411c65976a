// What an event's notifications say, as three windows show it: a voice file and an e-mail, each with its
// priority. The controls, their layout and what they do are the same everywhere; when they are filled, and
// what a change means, is the window's own.
#pragma once

#include <QObject>
#include <functional>
#include <optional>
#include <string>

#include "core/procedure.h"
#include "database/events.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace ui {

class InsertionVariables;
class VariableTextBox;

class ContentGroup : public QObject {
    Q_OBJECT

  public:
    // The object names that differ between the windows.
    struct Names {
        const char* bodyLabel;
        const char* hintLabel;
    };

    // The window's own part of the handlers, where it has one.
    struct Handlers {
        std::function<void()> textChanged;      // subject and body
        std::function<void()> priorityClicked;  // both lists
    };

    // Makes the controls in `area` and lays them out there. The object belongs to `window`, whose name in the
    // log is `module`.
    ContentGroup(std::string module, QWidget& window, QWidget& area, const Names& names,
                 Handlers handlers = {});

    // Captions and lists from the string table. The menu of insertion variables is captioned once the window
    // has filled it.
    void controlInit();
    // Puts the controls behind `before` in the tab order; the last of them is comboEmailPriority.
    void followInTabOrder(QWidget& before);

    // What new events start from. A priority without a row raises 5, as showPriority does.
    void showDefaultVoiceFile();
    void showDefaultMail();
    void showDefaultVoiceMailPriority();
    void showDefaultEmailPriority();
    // False once a setting behind one of these could not be read; something else is shown in its place then.
    bool defaultsWereRead() const { return defaultsWereRead_; }
    // Selects the row of a stored priority: 2 is row 0, 1 is row 1, anything else but 0 is row 0. The lists
    // have no row for 0: nothing is selected then, so that a save keeps the 0, and 5 is raised so that the
    // log tells.
    static void showPriority(QComboBox& list, long stored);
    void colorTexts();
    // Fills all controls with what new events start from, in steps of the caller's frame.
    void showDefaults(core::Frame& frame);
    // Fills them with an event's stored contents. Required: a type of content that the event lacks leaves its
    // controls with what the event before had there. It is not this event's: see shown().
    void showStored(core::Frame& frame, platform::Recordset& contents);
    // Empties the texts.
    void blank();
    // What the controls hold, as it is to be stored. What the event before left there, and nobody changed,
    // counts as what new events start from: no event gets another one's mail.
    mdlDatabase::EventContent shown() const;

    QLineEdit* txtVoiceMailFileName;
    QPushButton* cmdVoiceMailBrowse;
    QComboBox* comboVoiceMailPriority;
    VariableTextBox* rtbEmailSubject;
    VariableTextBox* rtbEmailBody;
    QComboBox* comboEmailPriority;
    InsertionVariables* variables;

  private:
    void layOut(QWidget& area);
    void keepPriority(QComboBox& list, const char* handler, long& priority);
    void cmdVoiceMailBrowse_Click();
    std::string setting(const char* name);
    mdlDatabase::EventContent inControls() const;
    void forgetLeftOver();

    std::string module_;
    std::function<void()> priorityClicked_;
    // Stored values: 2 Urgent, 1 Normal, 0 Low, which the lists do not offer.
    long voiceMailPriority_ = 0;
    long emailPriority_ = 0;
    bool defaultsWereRead_ = true;
    // What stood in the controls of a type of content that the event lacks.
    std::optional<mdlDatabase::EventContent> leftOverVoice_;
    std::optional<mdlDatabase::EventContent> leftOverMail_;
    QLabel* lblVoiceMailFilename;
    QLabel* lblVoiceMailPriority;
    QLabel* lblEmailSubject;
    QLabel* lblEmailBody;
    QLabel* lblRightClick;
    QLabel* lblEmailPriority;
};

}  // namespace ui
