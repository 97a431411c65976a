// Pane 1: one monitored event.
#pragma once

#include <QWidget>
#include <string>

class QFormLayout;
class QLabel;

class paneEventDetails : public QWidget {
    Q_OBJECT

  public:
    explicit paneEventDetails(QWidget* parent);

    // Shows the event and its notification content. `nodeText` heads the pane.
    void displayEventDetails(long eventKey, const std::string& nodeText);
    void controlInit();

  private:
    void fillEvent(long eventKey);
    void fillContent(long eventKey);
    QLabel* addLine(const char* captionName, const char* valueName);

    long eventKey_ = 0;  // of the event that is shown; 0 before the first one

    QFormLayout* lines;
    QLabel* lblEventHeading;
    QLabel* lblActiveValue;
    QLabel* lblEventTypeValue;
    QLabel* lblEventNotesValue;
    QLabel* lblVoiceMailFilenameValue;
    QLabel* lblEmailSubjectValue;
    QLabel* lblEmailBodyValue;
};
