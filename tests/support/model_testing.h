// Drawings with the module's classes, hosts of its extension points, and watchers.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platform/base/shared_ptr.h"
#include "tests/support/reference_testing.h"
#include "vdm_db/constraints/vdm_db_constraint_manager.h"
#include "vdm_db/features/vdm_db_pers_id_reactor.h"
#include "vdm_db/model/vdm_db_object.h"
#include "vdm_db/model/vdm_db_object_dependency.h"
#include "vdm_db/model/vdm_db_object_pe.h"
#include "vdm_db/model/vdm_db_pers_id_manager.h"
#include "vdm_db/model/vdm_db_pers_id_manager_pe.h"

struct FilerBytes {
  OdDbFilerBuffer bytes;
};

/// A filer of any type and version; what it wrote can be read back.
class VersionedFiler : private FilerBytes, public OdDbMemoryFiler {
 public:
  VersionedFiler(FilerType type, OdInt32 version)
      : OdDbMemoryFiler(type, bytes), m_version(version) {}
  [[nodiscard]] OdInt32 dwgVersion() const override { return m_version; }
  VersionedFiler& rewound() {
    startReading(0, 0);
    return *this;
  }

 private:
  OdInt32 m_version;
};

/// Finds dependencies by their paths; notes what it is asked.
class ManagerHost : public OdRxObjectImpl<VdmDbPersIdManagerPE> {
 public:
  OdStringArray calls;

  void prepareAppend(VdmDbPersIdManager*, const OdDbFullSubentPathArray&, OdDbDatabase*) override {
    calls.append(L"prepare");
  }
  void findExisting(VdmDbPersIdManager*, const OdDbFullSubentPathArray& paths,
                    OdDbObjectIdArray& ids) override;
  void updateDependency(VdmDbPersIdManager*, const OdDbObjectId& dependency,
                        const OdDbFullSubentPath& path) override;
  void createDependencies(OdDbObjectIdArray& newIds, VdmDbPersIdManager* manager,
                          const OdDbFullSubentPathArray& paths, OdDbUserIO*,
                          OdDbObjectIdArray& existing) override;
};

/// Answers every change with `matters`; closes a sum of transforms when `closesTransforms` says so.
class ObjectHost : public OdRxObjectImpl<VdmDbObjectPE> {
 public:
  bool matters = true;
  bool closesTransforms = false;
  int changes = 0;

  bool entityChanged(OdDbObject*, OdDbObjectId) override {
    ++changes;
    return matters;
  }
  void transformAdded(OdDbDatabase*, OdDbObjectId*, OdGeMatrix3d*, bool* isOpen) override {
    *isOpen = !closesTransforms;
  }
};

/// A drawing whose model space has a persistent id manager, a constraint manager and two carriers,
/// which have faces 1 to 3.
class ModelTest : public virtual VdmModule, public ReferenceTest {
 protected:
  ModelTest();
  ~ModelTest() override;

  static OdDbFullSubentPath face(OdDbObjectId entity, OdGsMarker index) {
    return {entity, OdDbSubentId(OdDb::kFaceSubentType, index)};
  }
  static OdDbFullSubentPath placeOf(OdDbObjectId dependency) {
    return open<VdmDbObjectDependency>(dependency)->getLinkObject(false);
  }
  /// Listed with the manager.
  OdDbObjectId addDependency(const OdDbFullSubentPath& path);
  /// A reactor of geometry that holds the ids.
  OdDbObjectId watch(const OdDbObjectIdArray& ids);
  [[nodiscard]] VdmDbObjectPtr modelObject(OdDbObjectId entity,
                                           OdDb::OpenMode mode = OdDb::kForRead) const;
  [[nodiscard]] OdDbObjectIdArray listed() const {
    return open<VdmDbPersIdManager>(m_manager)->objectDependencyIds();
  }
  [[nodiscard]] VdmDbConstraintManager::ConstraintManagerStatus status() const {
    return open<VdmDbConstraintManager>(m_constraints)->getStatus();
  }
  /// Runs the edit as one undo step; undo gives every byte back, and redo too.
  void expectUndoable(const std::function<void()>& edit) {
    DrawingVerbs::expectUndoable(
        *m_drawing, [this] { return wholeState(); }, edit);
  }
  /// What is compared.
  [[nodiscard]] virtual std::string wholeState() const;
  void reopen();

  OdSmartPtr<ManagerHost> m_managerHost;
  OdSmartPtr<ObjectHost> m_objectHost;
  OdDbObjectId m_manager, m_constraints, m_carrier, m_other;
};
