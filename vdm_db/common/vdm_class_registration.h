// What the registrations of the module's database classes share.
#pragma once

#include "platform/base/string.h"
#include "platform/rx/rx_class.h"
#include "platform/rx/rx_macros.h"

// Version of the runtime that the classes are filed for.
inline constexpr int kVdmDwgVersion = 33;
inline constexpr int kVdmMaintenanceVersion = 55;
// Proxies of the classes may be erased and give no warning.
inline constexpr unsigned kVdmProxyFlags = kOdRxEraseAllowed | kOdRxDisableProxyWarning;

// In one source file: the run-time members of a database class. `Description` is its application
// description.
#define VDM_DEFINE_DB_CLASS(ClassName, Parent, Name, DxfName, Description)                         \
  OD_RX_DEFINE_DB(ClassName, Parent, Name, kVdmDwgVersion, kVdmMaintenanceVersion, kVdmProxyFlags, \
                  DxfName, L"Vantrel|Description: " Description)
