// Text files of line type definitions.
#pragma once

#include <string_view>
#include <vector>

#include "platform/base/status.h"
#include "platform/db/db_enums.h"
#include "platform/db/linetype_table.h"

class OdDbDatabase;

/// One definition of such a file.
struct OdDbLinetypeDefinition {
  OdString name;
  OdString description;
  OdDbDashArray dashes;
  OdArray<OdDbDashText> texts;
};

/// Reads definitions from UTF-8 text:
///
///   file        lines; empty ones and those that begin with a semicolon are passed
///   definition  "*" name [ "," description ] end-of-line  "A" { "," element } end-of-line
///   element     length | text | shape
///   text        "[" string "," style { "," attribute } "]"     after the element it follows
///   shape       "[" name "," file { "," attribute } "]"
///   attribute   ( "S" | "R" | "A" | "U" | "X" | "Y" ) "=" number
///
/// S is the height of a text or the factor on a shape, X and Y the offset along the line and to its
/// left. R turns from the line, A from the X axis, U as R but never upside down; degrees, or
/// radians with "r", grads with "g" after the number. A name comes once. Failures (eCorruptData,
/// eLimitExceeded, eDuplicateKey) name the line and what was expected there; nothing is given then.
OdStatus oddbParseLinetypes(std::string_view text, std::vector<OdDbLinetypeDefinition>& linetypes);

/// Takes line types from a file into a drawing: the one of that name, or all with "*". What the
/// drawing has already stays, is replaced, or (eDuplicateRecordName, for a single one) is refused,
/// as `duplicates` says. eFileNotFound, eFileAccess, eKeyNotFound for a name that the file lacks,
/// and what oddbParseLinetypes() gives; the drawing does not change on failure.
OdStatus oddbLoadLinetypes(OdDbDatabase& database, const OdString& name, const OdString& path,
                           OdDb::DuplicateLinetypeLoading duplicates);

/// The file of line types that is installed with the runtime; empty when it is not there.
[[nodiscard]] OdString oddbStandardLinetypeFile();
