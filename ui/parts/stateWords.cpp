#include "ui/parts/stateWords.h"

#include "ui/base/text.h"

namespace ui {

namespace {

constexpr long eventActive = 1182;     // "Event: Active"
constexpr long eventInactive = 1183;   // "Event: Inactive"
constexpr long addressMissing = 1195;  // "Address Not Found (DirectoryId = "

}  // namespace

std::string activeWord(bool active) {
    const QString whole = text(active ? eventActive : eventInactive);
    return toUtf8(whole.mid(whole.lastIndexOf(':') + 1).trimmed());
}

std::string unresolvedWord() {
    return toUtf8(text(addressMissing).section('(', 0, 0).trimmed());
}

}  // namespace ui
