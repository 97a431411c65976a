#include "ui/helpViewer/helpViewer.h"

#include <QPointer>

#include "core/classLog.h"
#include "platform/failure.h"
#include "platform/libraries/chmFile.h"
#include "ui/helpViewer/helpWindow.h"

namespace ui {

HelpViewer::HelpViewer() {
    mdlHTMLHelp::setHelpViewer(this);
}

HelpViewer::~HelpViewer() {
    mdlHTMLHelp::setHelpViewer(nullptr);
}

long HelpViewer::open(const std::string& helpFile, long ownerWindow, std::optional<long> topic) {
    std::shared_ptr<const platform::ChmFile> file;
    try {
        file = std::make_shared<const platform::ChmFile>(platform::ChmFile::open(helpFile));
    } catch (const platform::Failure& failure) {
        // The administrator gets no message, and the caller counts no failure: it only sees no window.
        core::gLog().log("Help cannot be shown: " + failure.description(), core::logWarning,
                         "[helpViewer]open");
        return 0;
    }
    if (!window_) {
        window_ = std::make_unique<HelpWindow>();
        // Help opens over the window that asked for it.
        if (const QWidget* owner = QWidget::find(static_cast<WId>(ownerWindow)))
            window_->move(owner->window()->pos() + QPoint(60, 40));
    }
    window_->setFile(file);
    if (topic)
        window_->showPage(file->pageOfTopic(*topic).value_or(file->defaultPage()));
    window_->showNormal();
    window_->raise();
    window_->activateWindow();
    return static_cast<long>(window_->winId());
}

// A window that its reader has closed is gone, as far as the console is concerned.
bool HelpViewer::isWindow(long handle) {
    return window_ && window_->isVisible() && static_cast<long>(window_->winId()) == handle;
}

void HelpViewer::close(long handle) {
    if (isWindow(handle))
        window_->close();
}

}  // namespace ui
