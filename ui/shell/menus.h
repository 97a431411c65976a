// The shell's menus: which there are, what they are called, and which entry serves which node. What an entry
// does is somebody else's: its action is found by its name.
#pragma once

#include <map>
#include <string>

class QAction;
class QMainWindow;
class QMenu;

class Menus {
  public:
    // Makes all menus; the window owns them. An entry without a handler cannot be chosen until enable().
    explicit Menus(QMainWindow& window);

    // The entry of that name, which must be one of them.
    QAction& entry(const std::string& name) const { return *entries_.at(name); }
    QMenu& popup() const { return *menus_.at("mnuPopup"); }
    // Sets all captions in the present language.
    void caption();
    // Shows the one popup entry that serves nodes of this type, and says what can be deleted.
    void check(long nodeType);
    // The popup entry that deletes a node of this type, whether it is shown or not; null where none does.
    QAction* deletionOf(long nodeType) const;

  private:
    void addEntry(QMenu& menu, const char* name);

    std::map<std::string, QMenu*> menus_;      // by name
    std::map<std::string, QAction*> entries_;  // by name
};
