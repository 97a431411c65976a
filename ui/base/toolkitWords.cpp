#include "ui/base/toolkitWords.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QTranslator>
#include <memory>
#include <utility>

#include "core/state.h"

namespace ui {

namespace {

// The toolkit's code for a language, told by the lower part of its id; null when it has none for it.
const char* toolkitCode(long languageId) {
    constexpr long primaryPart = 0x3FF;
    static constexpr std::pair<long, const char*> codes[] = {
        {7, "de"}, {10, "es"}, {12, "fr"}, {16, "it"}, {17, "ja"}, {19, "nl"}, {20, "nn"}, {22, "pt_BR"}};
    for (const auto& [primary, code] : codes)
        if ((languageId & primaryPart) == primary)
            return code;
    return nullptr;
}

}  // namespace

void translateToolkit() {
    constexpr long english = 1033;
    translateToolkit(core::gResourceLibrary ? core::gLanguageId : english);
}

void translateToolkit(long languageId) {
    static std::unique_ptr<QTranslator> translator;
    translator.reset();  // takes itself out of the application
    const char* code = toolkitCode(languageId);
    if (!code)
        return;
    translator = std::make_unique<QTranslator>();
    if (translator->load(QStringLiteral("qtbase_") + QLatin1String(code),
                         QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(translator.get());
}

}  // namespace ui
