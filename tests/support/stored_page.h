// The examples in bytes of a page of stored forms, and objects as such bytes.
#pragma once

#include <string>
#include <vector>

class OdDbObject;

/// The records in the code blocks of one section of a page, as upper-case hexadecimal text. An
/// empty line or the end of a block ends a record. The bytes are the pairs of hexadecimal digits at
/// the beginning of each line, up to the first other word; `(8 times)` repeats the byte before it.
/// None when the file or the section is not there.
std::vector<std::string> storedRecordsOf(const std::string& page, const std::string& section);

/// The same text for the record that the drawing file would hold of an object.
std::string storedRecordOf(const OdDbObject& object);
