// VdmDbObject: the shadow of an entity that takes part in the model.
#pragma once

#include <memory>

#include "platform/base/string.h"
#include "platform/db/db_object.h"
#include "platform/db/subent.h"
#include "platform/ge/matrix3d.h"
#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/references/vdm_index_map.h"

class VdmDbObjectImpl;

/// The shadow of one entity that takes part in the model. It lists the dependencies into the
/// entity, keeps a name, numbers per subentity and a pending transform, and passes changes of the
/// entity on to the manager. It holds no geometry and solves nothing. Each entity with dependencies
/// has one; the VdmDbConstraintManager of the block owns it, it is a persistent reactor of the
/// entity, and it is erased with the entity. Others find it by openVdmDbObject() or hold its id.
///
/// Writers record for undo what they change and nothing else.
class VDM_DB_EXPORT VdmDbObject : public OdDbObject {
 public:
  OD_RX_DECLARE_MEMBERS(VdmDbObject)

  VdmDbObject();
  ~VdmDbObject() override;

  /// The model object of the entity. A missing one is made: named after the entity, owned by and
  /// registered with `manager`, and attached. Null when there is none and `manager` is no
  /// constraint manager.
  static OdDbObjectId getInstance(const OdDbObjectId& entity, const OdDbObjectId& manager);
  /// The model object of the entity, null without one or when it cannot be opened.
  static OdSmartPtr<VdmDbObject> openVdmDbObject(OdDbObjectId entity,
                                                 OdDb::OpenMode mode = OdDb::kForRead,
                                                 bool openErased = false);
  static OdSmartPtr<VdmDbObject> openVdmDbObject(const OdDbObject* entity,
                                                 OdDb::OpenMode mode = OdDb::kForRead,
                                                 bool openErased = false);
  /// Attaches a new model object, which is in the database, to its entity. The entity is opened for
  /// write and gets it as a persistent reactor.
  void attachTo(const OdDbObjectId& entity);

  [[nodiscard]] OdDbObjectId attachedEntityId() const;
  /// An empty name changes nothing.
  void setName(const OdString& name);
  [[nodiscard]] OdString name() const;

  // Dependencies. Constraint dependencies are owned by this object; persistent-id dependencies are
  // listed here and belong to the VdmDbPersIdManager.
  [[nodiscard]] bool hasDependencies() const;
  [[nodiscard]] const OdDbObjectIdArray& constraintDependencies() const;
  [[nodiscard]] const OdDbObjectIdArray& persIdDependencies() const;
  /// Constraint dependencies, then the others.
  [[nodiscard]] OdDbObjectIdArray dependencies() const;
  /// The constraint dependency on the path, made when it is missing; null for a path that does not
  /// begin at the attached entity.
  OdDbObjectId append(const OdDbFullSubentPath& path);
  /// The same for each path, in order; `ids` is replaced.
  void append(const OdDbFullSubentPathArray& paths, OdDbObjectIdArray& ids);
  /// Takes the ids from the constraint dependencies and erases those objects; others are ignored.
  void removeConstraintDependencies(const OdDbObjectIdArray& ids);
  /// The first dependency on exactly this path; null without one.
  [[nodiscard]] OdDbObjectId getConstraintDependency(const OdDbFullSubentPath& path) const;
  [[nodiscard]] OdDbObjectId getPersIdDependency(const OdDbFullSubentPath& path) const;
  /// Lists a dependency. True when it was not listed before. One that `manager` does not own is
  /// reported as an assertion and not listed; a null `manager` accepts every owner.
  bool addPersIdDependency(OdDbObjectId dependency, OdDbObjectId manager);
  /// Takes a dependency out of the list, under the same rule; true when it was listed.
  bool removePersIdDependency(OdDbObjectId dependency, OdDbObjectId manager);
  /// The same for many, in one step. The number of those that were added or removed.
  OdUInt32 addPersIdDependencies(const OdDbObjectIdArray& dependencies);
  OdUInt32 removePersIdDependencies(const OdDbObjectIdArray& dependencies);
  /// All of them.
  void removePersIdDependencies();
  /// Takes out the ids of erased dependencies and of those that refer to another entity; true when
  /// there were any.
  bool removeStalePersIdDependencies();
  /// Makes the next look-up by path read all paths again. Changes of dependencies, and of what
  /// external drawings are loaded, are noticed without it.
  void invalidatePersIdDepsCache();
  /// It has dependencies, or a feature reactor is attached to one of the entity's reactors.
  [[nodiscard]] bool isWatched() const;

  // Numbers of the entity's faces, edges and vertices.
  [[nodiscard]] bool hasAttributes() const;
  void setAttributes(VdmIndexMap& attributes);
  [[nodiscard]] const VdmIndexMap& attributes() const;

  // The transform that waits to be applied to the entity. Undo restores it; files do not store it,
  // and the object stays in memory while one waits.
  [[nodiscard]] const OdGeMatrix3d& getTransform() const;
  /// It is open and not the identity within OdGeTol::kDefault.
  [[nodiscard]] bool canTransformBeApplied() const;
  /// Multiplies `transform` in after those that wait. When the sum was complete (not open), it
  /// begins a new sum.
  void addTransform(OdGeMatrix3d& transform);
  /// Opens the sum again and sets it to the identity. Needs no write access when it is the
  /// identity.
  void clearTransform();
  /// The transform that a solver adds to the entity's present place: the waiting one if it can be
  /// applied. Otherwise false, and the identity.
  bool getTransformForSolver(OdGeMatrix3d& transform) const;

  /// Marks the entity's picture as changed, and again when that is undone.
  void triggerObjectRedraw();
  /// With true: notifies the manager that the entity was modified, if the object is watched. With
  /// false: drops the pending transform and notifies the manager that the change is solved.
  void notifyAboutModifications(bool modified);
  /// Whether changes of the entity's picture are passed on; true at first. Not stored.
  void constrainerNotify(bool notify);
  /// Erases the object and the constraint dependencies that it owns.
  void eraseWithSubObjects();

  // As a reactor of the entity, and of its own life.
  void erased(const OdDbObject* object, bool erasing) override;
  void modifiedGraphics(const OdDbObject* object) override;
  /// A copy of the entity has no share in this object, and gets one of its own when it needs one.
  void copied(const OdDbObject* object, const OdDbObject* clone) override;
  OdResult subErase(bool erasing) override;

  void applyPartialUndo(OdDbDwgFiler* filer, OdRxClass* cls) override;
  OdResult dwgInFields(OdDbDwgFiler* filer) override;
  void dwgOutFields(OdDbDwgFiler* filer) const override;
  /// A transform waits, or changes are not passed on.
  [[nodiscard]] bool hasStateOutsideFile() const override;
  [[nodiscard]] std::size_t approximateSize() const override;

 private:
  enum UndoStep : OdUInt8 {
    kUndoAttributes = 0,
    kUndoTransform = 1,
    kUndoRedraw = 2,
    kUndoName = 3,
    kUndoConstraintList = 4,
    kUndoPersIdList = 5,
  };

  [[nodiscard]] VdmDbObjectImpl& implForRead() const;
  OdDbDwgFiler* recordStep(UndoStep step);
  void recordAttributes();
  void recordTransform(bool isOpen);
  void recordName();
  OdDbObjectId makeConstraintDependency(const OdDbFullSubentPath& path);
  OdUInt32 takeOutPersIds(const OdArray<OdUInt32>& positions);
  void leaveManager();
  void leaveEntity();

  std::unique_ptr<VdmDbObjectImpl> m_impl;
};
using VdmDbObjectPtr = OdSmartPtr<VdmDbObject>;
