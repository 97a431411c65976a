// The search window on the server's directory: finds a subscriber or a distribution list and hands back its
// directory id and display name. It only reads.
#pragma once

#include <QDialog>
#include <string>

#include "platform/ado/ado.h"
#include "ui/parts/directoryEntry.h"

class QComboBox;
class QGroupBox;
class QLineEdit;
class QPushButton;

namespace ui {
class BoundGrid;
}

class dlgSelect : public QDialog {
    Q_OBJECT

  public:
    explicit dlgSelect(QWidget* parent);

    // The one instance for the process, made on first use for the main window above `caller`.
    static dlgSelect& shared(QWidget* caller);
    // Searches the server's directory with the one instance.
    static std::optional<ui::FoundEntry> search(QWidget& caller, const std::string& subscriberTypes,
                                                bool subscribers);

    // Set these, then exec().
    platform::Connection* directoryConnection = nullptr;
    std::string subscriberTypes;  // what follows "SubscriberType IN", with its brackets
    short selectMode = 1;         // 1 subscribers, 2 distribution lists

    // Read these afterwards. True when it ended without OK.
    bool cancelled = true;
    std::string selectedDirectoryId;
    std::string selectedDisplayName;

    Q_INVOKABLE void dlgSelect_ControlInit();
    // Title, search fields and grid for the present mode; with `resetRows` the grid loses its rows and the
    // list of search fields is filled anew.
    void setupColumns(bool resetRows);
    // The statement for what the controls hold.
    std::string buildSQLQuery(const std::string& types);
    void fillSearchByList(bool isDistributionList, bool refill);

    void reject() override;
    void done(int result) override;

  protected:
    void showEvent(QShowEvent* event) override;

  private:
    void buildLayout();
    void connectControls();
    void Form_Load();
    void Form_Activate();
    void comboSearchBy_Click(int row);
    void cmdSearch_Click();
    void myGrid_Click();
    void myGrid_DblClick();
    void cmdOk_Click();
    void cmdCancel_Click();

    QGroupBox* frameSearchExtended;
    QComboBox* comboSearchBy;
    QLineEdit* txtSearchString;
    QPushButton* cmdSearch;
    ui::BoundGrid* myGrid;
    QPushButton* cmdOk;
    QPushButton* cmdCancel;

    bool loaded_ = false;  // Cancel unloads the window: the next use begins afresh
    short searchField_ = 0;
    platform::Recordset found_;  // the rows behind the grid
};
