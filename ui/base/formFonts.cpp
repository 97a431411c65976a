#include "ui/base/formFonts.h"

#include <QWidget>

#include "core/modLocalize.h"
#include "core/state.h"
#include "ui/base/text.h"

namespace ui {

void setControlFont(QWidget& control) {
    const modLocalize::LanguageFont font = modLocalize::languageFont(core::gLanguageId);
    // The family alone changes: a designed size, weight or fixed pitch stays. The designed family is
    // remembered, so that going back to a language without a font row restores it.
    constexpr char designedFamily[] = "designedFontFamily";
    if (font.name.empty()) {
        const QVariant designed = control.property(designedFamily);
        if (!designed.isValid())
            return;
        QFont restored = control.font();
        restored.setFamily(designed.toString());
        control.setFont(restored);
        control.setProperty(designedFamily, QVariant());
        return;
    }
    if (!control.property(designedFamily).isValid())
        control.setProperty(designedFamily, control.font().family());
    QFont changed = control.font();
    changed.setFamily(fromUtf8(font.name));
    control.setFont(changed);
}

void setFormFonts(QWidget& window) {
    setControlFont(window);
    for (QWidget* control : window.findChildren<QWidget*>())
        setControlFont(*control);
}

}  // namespace ui
