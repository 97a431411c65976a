#include "core/state.h"

namespace core {

platform::Connection gDatabase;
platform::Connection gCorvaneDb;
CorvaneVersion gCorvaneVersion;
bool gCorvaneFourOrLater = false;
bool gViewsSupported = false;
bool gPagerSupported = false;
bool gSnmpSupported = false;
bool gFailoverSupported = false;
std::string gProductName;
long gIgnoreEventKey = -1;
long gLanguageId = 0;
std::optional<platform::StringLibrary> gResourceLibrary;
std::vector<std::string> gLanguages;
long gHelpWindow = 0;
bool gRebuildingControls = false;

void resetState() {
    gDatabase.close();
    gCorvaneDb.close();
    gCorvaneVersion = {};
    gCorvaneFourOrLater = gViewsSupported = false;
    gPagerSupported = gSnmpSupported = gFailoverSupported = false;
    gProductName.clear();
    gIgnoreEventKey = -1;
    gLanguageId = 0;
    gResourceLibrary.reset();
    gLanguages.clear();
    gHelpWindow = 0;
    gRebuildingControls = false;
}

}  // namespace core
