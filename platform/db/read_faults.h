// What could not be read of the file of a drawing.
#pragma once

#include "platform/base/array.h"
#include "platform/base/string.h"
#include "platform/base/types.h"

class OdDbDatabase;
class OdDbObject;

/// Everything that was asked for since the drawing was opened and could not be read, one line each:
/// records that are damaged, contents that cannot be understood, the same of external drawings that
/// were loaded, their file in front.
///
/// A handle without a record is nothing wrong by itself: lists may name objects that were erased.
/// When one was met in a drawing that is open for reading, the number and the digest of all records
/// are compared with what was saved, which reads no data; a record that vanished is a line then,
/// with the handles that were looked for in vain.
[[nodiscard]] OdStringArray oddbReadFaults(OdDbDatabase* database);

/// Those lines that are about the drawing's own file as a whole and not about one object.
[[nodiscard]] OdStringArray oddbFileFaults(const OdDbDatabase* database);

/// Notes that the content of an object cannot be understood though its record is intact. One line
/// an object is kept; an object without a drawing is passed over.
void oddbNoteReadFault(const OdDbObject* object, const OdString& line);

/// Format version of the file that the drawing was read from; 0 when it has none.
[[nodiscard]] int oddbFormatVersion(const OdDbDatabase* database);
