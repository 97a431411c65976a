// A line for a password. The box itself holds only stand-ins; the characters go to one buffer that is wiped.
#pragma once

#include <QLineEdit>

#include "platform/services/secret.h"

namespace ui {

class SecretEdit : public QLineEdit {
    Q_OBJECT

    class OwnStandInsOnly;

  public:
    explicit SecretEdit(QWidget* parent = nullptr);

    // The text as UTF-8; the box is empty afterwards.
    platform::Secret take();
    // Empties the box.
    void wipe();

  private:
    qsizetype count() const;
    void absorb();
    void showStandIns(qsizetype count, int cursor);

    qsizetype selected_ = 0;  // length of the selection before what is being typed takes its place
    platform::Secret units_;  // UTF-16, one unit per stand-in
};

}  // namespace ui
