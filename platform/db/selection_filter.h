// OdDbSelectionFilter: picks entities out of a set.
#pragma once

class OdDbEntity;

/// Asked for one entity after the other; owned by the caller of the operation that it is given to.
class OdDbSelectionFilter {
 public:
  virtual ~OdDbSelectionFilter() = default;

  /// Whether the entity, which is open for read, is taken.
  [[nodiscard]] virtual bool accepts(const OdDbEntity* entity) const = 0;
};
