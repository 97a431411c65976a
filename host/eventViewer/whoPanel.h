// The panel "Who is told" below a record: each device with its verdict, by the service's own decision.
#pragma once

#include <QTimer>
#include <QWidget>
#include <memory>

#include "host/eventViewer/logs.h"
#include "host/viewer/texts.h"
#include "host/viewer/worker.h"
#include "service/inspection/whoIsTold.h"

class QCheckBox;
class QLabel;
class QTreeWidget;

namespace viewer {

class WhoPanel : public QWidget {
    Q_OBJECT

  public:
    WhoPanel(const Texts& texts, QWidget* parent);
    ~WhoPanel() override;

    // Asks for the answer of a record and shows it; nothing for none.
    void showFor(EntryPointer entry);
    // True when what is shown is the answer.
    bool isAtRest() const { return !isAsking_; }

  private:
    void ask();
    void fill(const std::vector<service::EventAnswer>& answers);
    void say(const QString& text);

    const Texts& texts_;
    QLabel* lblWho_;
    QCheckBox* chkAsIfNow_;
    QTreeWidget* treeWho_;
    QLabel* lblNobody_;
    EntryPointer entry_;
    std::uint64_t generation_ = 0;
    bool isAsking_ = false;
    QTimer soon_;  // while somebody runs through the rows nothing is asked
    std::shared_ptr<service::WhoIsTold> who_;
    Worker worker_;
};

}  // namespace viewer
