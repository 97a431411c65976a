#include "ui/base/formFonts.h"

#include <QWidget>

#include "core/modLocalize.h"
#include "core/state.h"
#include "ui/base/text.h"

namespace ui {

namespace {

constexpr char designedFamily[] = "designedFontFamily";

// The family that a control has without any language's font. One that shows its parent's family inherits it,
// and so has what the parent had.
QVariant designedFamilyOf(const QWidget& control) {
    if (const QVariant known = control.property(designedFamily); known.isValid())
        return known;
    const QWidget* parent = control.isWindow() ? nullptr : control.parentWidget();
    const QVariant above = parent ? parent->property(designedFamily) : QVariant();
    return above.isValid() && control.font().family() == parent->font().family()
               ? above
               : QVariant(control.font().family());
}

}  // namespace

void setControlFont(QWidget& control) {
    const modLocalize::LanguageFont font = modLocalize::languageFont(core::gLanguageId);
    // The family alone changes: a designed size, weight or fixed pitch stays. The designed family is
    // remembered, so that going back to a language without a font row restores it.
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
    control.setProperty(designedFamily, designedFamilyOf(control));
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
