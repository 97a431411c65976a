// "About": version, maker, and the choice of the language.
#pragma once

#include <QDialog>
#include <vector>

class QAction;
class QLabel;
class QMenu;
class QPushButton;

class frmAbout : public QDialog {
    Q_OBJECT

  public:
    explicit frmAbout(QWidget* parent);

    Q_INVOKABLE void frmAbout_ControlInit();

  private:
    void createControls();
    void buildLayout();
    void Form_Load();
    void showVersion();
    void fillLanguageList();
    void addLanguage(const QString& caption, long id);
    void mnuLanguageList_Click(std::size_t index);

    QLabel* picMeridaneLogo;
    QLabel* picCorvaneLogo;
    QLabel* lblProduct;
    QLabel* lblVersionTitle;
    QLabel* lblVersion;
    QLabel* lblMeridaneAddress1;
    QLabel* lblMeridaneAddress2;
    QLabel* lblMeridaneAddress3;
    QLabel* lblCopyright;
    QLabel* lblTrademark;
    QPushButton* lblChangeLanguage;  // a label by name; a button, so that keys reach it too
    QPushButton* cmdOk;
    QMenu* mnuSelectLanguage;
    QAction* mnuSelectLanguageTitle;
    std::vector<QAction*> mnuLanguageList;  // each with its language id as data
};
