// EditContext: what the single edits of a random script draw from.
#pragma once

#include <span>

#include "platform/base/string.h"
#include "platform/db/database.h"
#include "platform/rx/rx_class.h"
#include "tests/random/random_source.h"

/// The drawing that is edited, and the choices of one edit.
class EditContext {
 public:
  EditContext(OdDbDatabase* database, RandomSource& random)
      : m_database(database), m_random(random) {}

  [[nodiscard]] OdDbDatabase* database() const { return m_database; }
  [[nodiscard]] RandomSource& random() const { return m_random; }

  /// An object of the class that is not erased in effect, the fixed objects of a drawing included;
  /// null when there is none.
  [[nodiscard]] OdDbObjectId pick(const OdRxClass* rxClass) const;
  /// The same without the fixed objects.
  [[nodiscard]] OdDbObjectId pickAdded(const OdRxClass* rxClass) const;
  /// An erased object that can come back and whose owner is there; no dictionary, since one that
  /// was released from its object must not come back.
  [[nodiscard]] OdDbObjectId pickErased() const;
  /// A dictionary that is no extension dictionary; there is always one.
  [[nodiscard]] OdDbObjectId pickDictionary() const;

  /// One of few, so that names meet: in different case and in another script, too.
  [[nodiscard]] OdString name() const;
  [[nodiscard]] OdString text() const;

 private:
  template <class Accepts>
  OdDbObjectId choose(bool withErased, Accepts accepts) const;

  OdDbDatabase* m_database;
  RandomSource& m_random;
};

/// The object that the id names belongs to its owner as its extension dictionary.
bool isExtensionDictionary(OdDbObjectId id);

/// One kind of edit. False when the drawing has nothing that it could be applied to.
struct EditRow {
  const char* name;
  unsigned weight;
  bool (*apply)(const EditContext&);
};

std::span<const EditRow> entityEdits();     // lines, blocks, references, layers
std::span<const EditRow> containerEdits();  // dictionaries, extension dictionaries, records
std::span<const EditRow> objectEdits();     // erasing, cloning, reactors, extended data, settings
std::span<const EditRow> bagEdits();        // property bags in and beside objects
