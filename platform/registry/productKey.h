// The key of this product, which the console, the service and the tool that makes hosts share.
#pragma once

namespace platform {

// Below HKEY_LOCAL_MACHINE.
inline constexpr char productKey[] = "SOFTWARE\\Tessaly\\ToolRack\\Diagnostic Tools\\Quillon Service";

}  // namespace platform
