#include "ui/parts/eventSourceList.h"

#include <QComboBox>

#include "core/state.h"
#include "database/exclusions.h"
#include "server/eventSources.h"
#include "ui/base/text.h"

namespace ui {

namespace {

qsizetype characters(const std::string& source) {
    return fromUtf8(source).toUcs4().size();
}

}  // namespace

bool isStorableExclusion(const std::string& source) {
    return characters(source) <= mdlDatabase::longestExclusionSource;
}

QString tooLongForAnExclusion(const std::string& source) {
    return QString("%1\n(%2 > %3)")
        .arg(fromUtf8(source))
        .arg(characters(source))
        .arg(mdlDatabase::longestExclusionSource);
}

void boundWidth(QComboBox& comboEventSource) {
    comboEventSource.setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    comboEventSource.setMinimumContentsLength(12);
}

void fillEventSources(QComboBox& comboEventSource) {
    comboEventSource.clear();
    QStringList sources;
    for (const std::string& source : mdlUtility::getEventSources(core::gCorvaneFourOrLater, false, false))
        sources.append(fromUtf8(source));
    comboEventSource.addItems(sources);
    comboEventSource.setCurrentIndex(-1);
}

}  // namespace ui
