// EntityChanges: which entities an edit and its passes changed, and which features have followed.
#pragma once

#include <cstddef>
#include <unordered_map>
#include <vector>

#include "platform/db/database.h"
#include "platform/db/database_reactor.h"
#include "platform/ge/matrix3d.h"
#include "platform/modeler/solid_journal.h"

namespace vdm_host {

/// A log of changes for the length of one edit: bodies of solids as the journal has them, block
/// references and other entities that were modified, and entities that were erased. Each entry has
/// a number, and each feature remembers up to which number it has seen the log. A change is news to
/// a feature that has not seen it and did not make it.
///
/// A feature makes a change when the change falls into the feature's turn, the part of a pass in
/// which it alone works. So a feature that changes its own solid whenever it is asked is not asked
/// again for that.
///
/// Watches the drawing from construction to destruction, on the drawing's thread. The drawing and
/// the journal outlive it.
class EntityChanges : public OdStaticRxObject<OdDbDatabaseReactor> {
 public:
  EntityChanges(OdDbDatabase* database, const OdSolidJournal& journal);
  ~EntityChanges() override;
  EntityChanges(const EntityChanges&) = delete;
  EntityChanges& operator=(const EntityChanges&) = delete;

  /// Number of changes so far.
  std::size_t count();
  /// The entity of a change by its number, below count().
  [[nodiscard]] const OdDbObjectId& entity(std::size_t number) const {
    return m_log[number].entity;
  }
  /// What comes next belongs to no feature, until a turn ends.
  void beginTurns() { m_turn = count(); }
  /// What came since the last turn was made by the feature.
  void endTurn(const OdDbObjectId& feature);
  /// The feature has looked at everything that came so far.
  void noteSeen(const OdDbObjectId& feature) { m_seen[feature] = count(); }
  [[nodiscard]] bool isNews(const OdDbObjectId& feature, const OdDbObjectId& entity) const;

  struct Motion {
    OdDbObjectId entity;
    OdGeMatrix3d transform;
  };
  /// Solids and block references that were moved and what moved them, all their moves in one.
  [[nodiscard]] std::vector<Motion> motions() const;

  void objectOpenedForModify(const OdDbDatabase* database, const OdDbObject* object) override;
  void objectModified(const OdDbDatabase* database, const OdDbObject* object) override;
  void objectErased(const OdDbDatabase* database, const OdDbObject* object, bool erasing) override;

 private:
  struct Change {
    OdDbObjectId entity;
    OdDbObjectId feature;  // that made it; null for the edit and for components
  };
  void note(const OdDbObjectId& entity);
  void takeInJournal();

  OdDbDatabase* m_database;
  const OdSolidJournal& m_journal;
  std::size_t m_fromJournal = 0;
  std::vector<Change> m_log;
  std::unordered_map<OdDbObjectId, std::vector<std::size_t>> m_byEntity;  // rising numbers
  std::unordered_map<OdDbObjectId, std::size_t> m_seen;                   // by feature
  std::size_t m_turn = 0;
  std::vector<Motion> m_placements;  // of block references before their first change
};

}  // namespace vdm_host
