// The toolkit's application, with the one place where what an event handler throws ends: no exception passes
// through the toolkit. Handlers have frames of their own; what comes here is a fault, and the log tells of
// it.
#pragma once

#include <QApplication>
#include <string>

namespace ui {

class Application : public QApplication {
  public:
    using QApplication::QApplication;

    bool notify(QObject* receiver, QEvent* event) override;

  protected:
    // What was thrown while `receiver`, by its name, handled an event.
    virtual void tell(const std::string& receiver, const std::string& what);
};

}  // namespace ui
