#include "ui/shell/windowServices.h"

#include "core/modLocalize.h"
#include "platform/machine/clock.h"
#include "ui/base/formFonts.h"
#include "ui/base/loadedWindows.h"
#include "ui/base/paintingWait.h"
#include "ui/base/text.h"
#include "ui/base/toolkitWords.h"
#include "ui/dialogs/dlgServicePassword.h"
#include "ui/dialogs/frmSplash.h"

namespace ui {

WindowServices::WindowServices() {
    platform::setPasswordPrompt(this);
    platform::setSplash(this);
    platform::setWaiter(waitPainting);
    modLocalize::setWindowFontsHook([] {
        translateToolkit();
        forEachLoadedWindow(setFormFonts);
    });
}

WindowServices::~WindowServices() {
    platform::setPasswordPrompt(nullptr);
    platform::setSplash(nullptr);
    platform::setWaiter({});
    modLocalize::setWindowFontsHook({});
}

std::optional<platform::Secret> WindowServices::askPassword(const std::string& text) {
    if (!dlgServicePassword_)
        dlgServicePassword_ = std::make_unique<dlgServicePassword>();
    dlgServicePassword_->displayForm(fromUtf8(text));
    platform::Secret password = dlgServicePassword_->takePassword();
    if (dlgServicePassword_->cancelled)
        return std::nullopt;
    return password;
}

void WindowServices::unload() {
    dlgServicePassword_.reset();
}

void WindowServices::splashOn(const std::string& status, std::optional<short> delay) {
    if (!frmSplash_)
        frmSplash_ = std::make_unique<frmSplash>();
    frmSplash_->splashOn(fromUtf8(status), delay);
}

void WindowServices::splashOff() {
    if (frmSplash_)
        frmSplash_->splashOff();
}

}  // namespace ui
