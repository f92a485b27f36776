// The present object of an iterator as an object of a class.
#pragma once

#include "platform/db/block_table_record.h"
#include "platform/db/dictionary.h"
#include "platform/db/symbol_table.h"

namespace vdmu {

/// Opens the present object of a dictionary, block or symbol table iterator. Null when the walk is
/// done, the object cannot be opened, or it is no T.
template <class T>
[[nodiscard]] OdSmartPtr<T> getPtrFromIterator(const OdDbDictionaryIteratorPtr& iterator,
                                               OdDb::OpenMode mode = OdDb::kForRead) {
  return T::cast(iterator->getObject(mode));
}
template <class T>
[[nodiscard]] OdSmartPtr<T> getPtrFromIterator(const OdDbObjectIteratorPtr& iterator,
                                               OdDb::OpenMode mode = OdDb::kForRead) {
  return T::cast(iterator->entity(mode));
}
template <class T>
[[nodiscard]] OdSmartPtr<T> getPtrFromIterator(const OdDbSymbolTableIteratorPtr& iterator,
                                               OdDb::OpenMode mode = OdDb::kForRead) {
  return T::cast(iterator->getRecord(mode));
}

}  // namespace vdmu
