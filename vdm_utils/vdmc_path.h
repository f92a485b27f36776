// File paths as texts.
#pragma once

#include "platform/base/export.h"
#include "platform/base/string.h"

class OD_API VdmcPath {
 public:
  /// The last name of a path without its folders and its last extension: "part.v2" of
  /// "C:\jobs\part.v2.vdm" and of "/jobs/part.v2.vdm". Both separators count on every platform. A
  /// name that begins with its only dot stays whole.
  static OdString extractBasename(const OdString& path);
};
