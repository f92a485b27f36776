// Beginnings, ends and parts of texts.
#pragma once

#include "platform/base/array.h"
#include "platform/base/string.h"
#include "vdm_db/common/vdm_db_export.h"

namespace vdmu {

/// Case counts; the empty text begins and ends every other one.
[[nodiscard]] VDM_DB_EXPORT bool startsWith(const OdString& text, const OdString& prefix);
[[nodiscard]] VDM_DB_EXPORT bool endsWith(const OdString& text, const OdString& suffix);
/// Cuts it off. False, and nothing changes, when it is not there.
VDM_DB_EXPORT bool trimPrefix(OdString& text, const OdString& prefix);
VDM_DB_EXPORT bool trimSuffix(OdString& text, const OdString& suffix);
/// The parts between characters of `delimiters`. With `keepEmpty` there are empty parts between
/// adjacent ones and before a leading one; a trailing one only ends its part.
[[nodiscard]] VDM_DB_EXPORT OdArray<OdString> tokenize(OdString text, const OdString& delimiters,
                                                       bool keepEmpty);

}  // namespace vdmu
