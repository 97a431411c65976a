// The application's shared state. Every item lives for the whole run; start-up or the named procedure
// writes it, everybody reads it.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/ado/ado.h"
#include "platform/libraries/stringLibrary.h"
#include "platform/registry/productKey.h"

namespace core {

// Version of the host server; major 0 means that this is no such server.
struct CorvaneVersion {
    short major = 0;
    short minor = 0;
    short build = 0;
    short revision = 0;
    std::string text;  // such as 3.1(1.0)
};

inline constexpr const auto& productRegistryKey = platform::productKey;
inline constexpr char serviceKeyName[] = "hbqlnsvc";

extern platform::Connection gDatabase;   // the configuration database (openDatabase)
extern platform::Connection gCorvaneDb;  // the directory database (openCorvaneDB)
extern CorvaneVersion gCorvaneVersion;
extern bool gCorvaneFourOrLater;  // event sources come from the registry
extern bool gViewsSupported;      // the directory has the newer layout
extern bool gPagerSupported;
extern bool gSnmpSupported;
extern bool gFailoverSupported;
extern std::string gProductName;
extern long gIgnoreEventKey;                                     // key of the hidden event
extern long gLanguageId;                                         // 0 until InitalizeLanguages
extern std::optional<platform::StringLibrary> gResourceLibrary;  // nothing: English from the program
extern std::vector<std::string> gLanguages;                      // codes; one empty entry when none
extern long gHelpWindow;                                         // 0 until help is first opened
extern bool gRebuildingControls;  // silences the rich-text change events while controls are refilled

// Puts everything back to the state before the first start, connections closed. For tests.
void resetState();

}  // namespace core
