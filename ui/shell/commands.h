// What the entries of the shell's menus do. An entry that works on "the selected node" does nothing when the
// selected node is of another kind than its own: a question may have been answered in between.
#pragma once

#include <QObject>

class Menus;
class dlgAddExclusion;
class dlgEvent;
class frmMain;

class Commands : public QObject {
    Q_OBJECT

  public:
    // Gives the entries of `menus` their handlers. Both live as long as this does.
    Commands(frmMain& shell, Menus& menus);

    void mnuFileNewEvent_Click();
    void mnuFileNewRecipient_Click();
    void mnuPopupExclusion_Create_Click();
    // Shows the popup there; what was chosen in it and opens a window opens it afterwards.
    void showPopup(const QPoint& globalPosition);

  private:
    void mnuFileDelete_Click();
    void mnuViewCurrentLogFile_Click();
    void mnuPopupAddEvent_Click();
    void mnuPopupDeleteEvent_Click();
    void mnuPopupDeleteRecipient_Click();
    void mnuPopupExclusion_Delete_Click();
    void mnuOptions_Click();
    void mnuImportEvents_Click();
    void mnuRemoveService_Click();
    void mnuExit_Click();
    void mnuHelpContents_Click();
    void mnuHelpAbout_Click();

    frmMain& shell_;
    Menus& menus_;
    int addEventPending_ = 0;
};
