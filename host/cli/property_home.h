// Where an object keeps its properties.
#pragma once

#include <string>

#include "platform/db/db_object.h"
#include "vdm_db/properties/vdm_properties.h"

namespace cli {

/// The property bag of one open object: its own, where its class has one, otherwise the bag that
/// any object can carry in its extended data or extension dictionary.
class PropertyHome {
 public:
  explicit PropertyHome(OdDbObjectPtr object) : m_object(std::move(object)) {}

  /// A copy, empty when the object carries none. CliError when there is one that cannot be read.
  [[nodiscard]] VdmProperties read() const;
  /// Puts a changed copy in place; the object is open for write.
  void write(const VdmProperties& properties);
  /// Ids stay ids: they are not kept in extended data, where only handles are.
  [[nodiscard]] bool keepsIds() const;
  /// Handle of the object.
  [[nodiscard]] std::string name() const;
  [[nodiscard]] const OdDbObjectPtr& object() const { return m_object; }

 private:
  OdDbObjectPtr m_object;
};

}  // namespace cli
