// The question of the first run on a desktop, and what came of the answer.
#pragma once

#include <QDialog>

#include "host/firstRun/hostMaker.h"
#include "host/viewer/worker.h"

class QCommandLinkButton;
class QDialogButtonBox;
class QLabel;
class QPlainTextEdit;

namespace firstRun {

// Accepted when a host was made and the console is to start.
class FirstRunWindow : public QDialog {
  public:
    FirstRunWindow(QString tree, const Texts& texts);

  private:
    QCommandLinkButton* addChoice(const char* caption, const char* meaning, Choice choice);
    void choose(Choice choice);
    void tell(const Outcome& outcome);

    QString tree_;
    const Texts& texts_;
    QLabel* question_;
    QList<QCommandLinkButton*> choices_;
    QPlainTextEdit* told_;
    QDialogButtonBox* buttons_;
    viewer::Worker worker_;  // last: it ends before what it works for
};

}  // namespace firstRun
