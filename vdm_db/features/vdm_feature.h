// VdmFeature: a named, typed piece of modelling meaning over entities of a block.
#pragma once

#include <map>

#include "platform/base/result.h"
#include "platform/base/string.h"
#include "platform/db/subent.h"
#include "platform/filer/object_id.h"
#include "platform/gi/entity_color.h"
#include "platform/rx/rx_macros.h"
#include "platform/rx/rx_object.h"
#include "platform/rx/smart_ptr.h"
#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/features/vdm_feature_group_faces.h"
#include "vdm_db/properties/vdm_properties.h"

class OdDbDwgFiler;
class OdDbDxfFiler;
class OdDbIdMapping;
class OdDbObject;
class VdmDbPersIdReactor;
class VdmFeature;
class VdmFeatureUpdateData;
class VdmFeatureValidationContext;
class VdmUpdateFeatureInterface;
class VdmuIReporter;
using VdmFeaturePtr = OdSmartPtr<VdmFeature>;

/// The transient side of a feature: an object of the feature's class whose fields lie in the
/// property bag of its carrier (VdmDbFeatureData), which is what the drawing stores. It is made
/// with the carrier, by the class name that the carrier keeps, and dies with it; others refer to a
/// feature by the id of the carrier and open it as VdmFeature. A reference to a feature keeps the
/// carrier open in the mode in which that was opened.
///
/// A feature class derives from this one or another feature class, may lie in its own module, is
/// declared and defined with the macros of vdm_feature_impl.h, and binds its fields to the bag in
/// subMapProperties(); it needs no filing of its own. A drawing whose feature class is not there
/// keeps the feature as a plain VdmFeature with all its data.
///
/// References. A feature refers to things by reactors that its carrier owns. A reactor of geometry
/// has a mask, which is a set of bits that says what kind of reference it is, and a tag that
/// distinguishes reactors of one kind. A requested mask matches when it has a bit in common; -1
/// matches all. Tags are compared for equality.
///
/// Where no comment says otherwise readers raise OdError eNotOpenForRead (61) without a carrier
/// that is open for read, and writers need it open for write; the carrier records its state for
/// undo. Setters of subclasses begin with assertWritable(), getters with assertReadable().
class VDM_DB_EXPORT VdmFeature : public OdRxObject {
 public:
  OD_RX_DECLARE_MEMBERS(VdmFeature)

  /// Bits of the status word. Numbers are stored.
  enum Status : OdInt32 {
    StatusInitialized = 0x01,     ///< has been given its first references
    StatusNotifyEntities = 0x08,  ///< when set, what the feature depends on counts as modified
    StatusSuppressed = 0x20,      ///< switched off; setStatus(0) alone ends it
    StatusNeedEvaluate = 0x40,    ///< waits for evaluate()
  };

  VdmFeature();
  ~VdmFeature() override;

  // ---- Virtual operations. Their order is that of the slots, which classes of other modules rely
  // ---- on: new ones are added after the last.

  // Name.
  [[nodiscard]] virtual OdString name() const;
  /// Keeps the manager's record of names in step. eOk always.
  virtual OdResult setName(const OdString& name);

  // References.
  /// The masks that the class uses; valid for the life of the module.
  [[nodiscard]] virtual const OdArray<int>& masks() const;
  /// Makes a reactor of the class, which the carrier owns. Mask and tag are stored in a reactor of
  /// geometry and ignored by others. Null for a null class; raises OdError_NotThatKindOfClass for
  /// one that makes no database objects.
  virtual OdDbObjectId addReactor(OdRxClass* cls, int mask, int tag);
  virtual OdDbObjectId addReactor(OdRxClass* cls, int mask);
  /// Removes and erases a reactor; the whole feature is erased when it cannot be without references
  /// of that mask and tag. Nothing happens for a reactor of another feature.
  virtual void eraseReactor(OdDbObjectId reactor, int mask, int tag);

  // The update pass.
  /// True when the feature needs no update() in this pass. Asks an active update interface; true
  /// without one.
  virtual bool prepareUpdateData(VdmFeatureUpdateData& data, bool forced);
  /// True when something changed. The base does nothing; its carrier is open for write.
  virtual bool update(VdmFeatureUpdateData& data);

  // What the class knows.
  /// True when the feature was brought to the present form.
  virtual bool upgradeVersion();
  /// `valid` is set; true in the base. eOk unless the check itself failed.
  virtual OdResult validate(VdmFeatureValidationContext& context, VdmuIReporter& reporter,
                            bool& valid);
  /// Asks the VdmFeatureColorPE of the class; false without one.
  virtual bool overrideColor(int mask, OdCmEntityColor& color) const;
  /// Whether a clone of the block takes the feature along when an entity of it is cloned, or in any
  /// case.
  [[nodiscard]] virtual bool canBeCloned(const OdDbIdMapping& mapping) const;
  [[nodiscard]] virtual bool mustBeCloned(const OdDbIdMapping& mapping) const;

  // What reactors report.
  /// Whether a reactor says that the feature must take part in the next pass. The argument is set:
  /// whether one says that it must once constraints were calculated.
  virtual bool hasChanges(bool& needConstraintsRecalculation) const;
  /// The base gives 3, which means that the event was not handled.
  virtual OdResult onPropertyModified(const OdString& key, double value);
  virtual OdResult onReactorModified(OdDbObject* object);

  // Evaluation.
  [[nodiscard]] virtual bool isNeedEvaluate() const;
  /// Takes StatusNeedEvaluate away; a suppressed feature keeps it.
  virtual void evaluate();

  // Filing.
  /// The carrier calls these after it has filed its bag; nothing in the base.
  virtual void dwgOutFields(OdDbDwgFiler* filer) const;
  virtual OdResult dwgInFields(OdDbDwgFiler* filer);
  virtual void dxfOutFields(OdDbDxfFiler* filer) const;
  virtual OdResult dxfInFields(OdDbDxfFiler* filer);

  /// Whether the feature ends with the loss of one such reference. Asks an active update
  /// interface; true without one.
  [[nodiscard]] virtual bool isRequiredDependency(int mask, int tag);
  /// Binds fields to the bag, with mapProperty. Called when the feature is made and whenever it was
  /// read; what the bag holds flows into the fields.
  virtual void subMapProperties(VdmProperties& bag);

  // The carrier.
  /// Null before attach() and after the carrier's end.
  virtual OdDbObject* getDbObject() = 0;
  [[nodiscard]] virtual const OdDbObject* getDbObject() const = 0;

  // Cloning.
  /// The carrier was cloned. The base has the dependencies cloned, too, under the clone of their
  /// owner.
  virtual void onDeepClone(OdDbIdMapping& mapping, OdDbObject* source, OdDbObject* clone,
                           bool flag) const;
  /// Nothing in the base.
  virtual void onWblockClone(OdDbIdMapping& mapping, OdDbObject* source, OdDbObject* clone,
                             bool flag) const;

  // Editions.
  /// Whether the class reads what the bag's edition says; a missing one is 0.
  [[nodiscard]] virtual bool isValidEdition(const VdmProperties& bag) const;
  /// Rises with each change of the class's stored form that older modules cannot read. 0 writes no
  /// edition.
  [[nodiscard]] virtual int currentEdition() const;

  /// The solids of the pass are done. Asks an active update interface; false without one.
  virtual bool initAfterUpdate(VdmFeatureUpdateData& data);
  /// Binds the feature to its carrier; null ends that. For the carrier's own use.
  virtual void attach(OdDbObject* carrier) = 0;

  /// Objects besides the reactors that the feature owns; they are erased with it. None in the base.
  /// A feature that owns some is kept by the manager's audit without reactors, too.
  [[nodiscard]] virtual OdDbObjectIdArray ownedObjects() const;
  /// Whether the class has the hasChanges() of VdmFeature, which asks the reactors and nothing
  /// else. VdmFeatureImpl answers it.
  [[nodiscard]] virtual bool asksOnlyReactors() const = 0;

  // ---- The carrier

  /// Upgrades the carrier to write until it is closed.
  void upgradeOpen();
  /// Id of the carrier; null outside a database.
  [[nodiscard]] OdDbObjectId objectId() const;
  /// Owner of the carrier.
  [[nodiscard]] OdDbObjectId featureManagerId() const;
  [[nodiscard]] Status getStatus() const;
  /// Replaces the whole word; a suppressed feature takes only 0 and ignores the rest. With
  /// StatusNotifyEntities the model objects of the entities count as modified, with
  /// StatusNeedEvaluate the manager records that a feature waits. eOk always.
  OdResult setStatus(Status status);

  // ---- References

  /// Ids of all reactors, in the order in which they were added.
  [[nodiscard]] OdDbObjectIdArray reactors() const;
  /// The same without a copy; valid until the feature changes.
  [[nodiscard]] const OdDbObjectIdArray& reactorIds() const;
  /// Ids of all dependencies; filtered ones leave out what the update interface says.
  [[nodiscard]] OdDbObjectIdArray getAllDependencies(bool filtered) const;
  /// Paths of the dependencies with the mask; those that lead to nothing now are left out.
  [[nodiscard]] OdDbFullSubentPathArray getFeatureEntities(int mask, bool filtered) const;
  /// Replaces all references to geometry; nothing is left without groups.
  void init(const OdArray<VdmFeatureGroupFaces>& groups);
  /// Replaces the references of the first reactor with exactly this mask, or makes one.
  void updatePaths(int mask, const OdDbFullSubentPathArray& paths);

  // ---- Variables that the feature depends on, and that depend on it

  /// One reactor's after the other's; an id may come several times.
  [[nodiscard]] OdDbObjectIdArray getVariables() const;
  [[nodiscard]] OdDbObjectIdArray getDependentVariables() const;
  /// Both, each id once, ordered by handle.
  [[nodiscard]] OdDbObjectIdArray getAllVariables() const;

  /// A database object opened as the feature that it carries; null when it carries none or does not
  /// open.
  [[nodiscard]] static VdmFeaturePtr open(const OdDbObjectId& carrier,
                                          OdDb::OpenMode mode = OdDb::kForRead);

 protected:
  friend class VdmDbFeatureData;
  friend class VdmDbFeatureDataImpl;
  friend class VdmDbFeatureManager;
  friend class VdmDbFeatureManagerTransaction;
  friend class VdmFeatureLook;
  friend class VdmFeatureReadAhead;
  friend class VdmFeatureUpdateData;

  /// Raises OdError(eNotOpenForRead) unless there is a carrier that is open for read.
  void assertReadable() const;
  /// The carrier, with its state recorded for undo. Raises OdError unless it is open for write.
  OdDbObject* assertWritable();

  /// Binds all fields to the bag: those of this class, the edition, those of the subclass.
  void mapProperties(VdmProperties& bag);

  /// Ids of the dependencies of the matching reactors, in the order of the reactors.
  [[nodiscard]] OdDbObjectIdArray getDependencies(int mask, bool filtered) const;
  [[nodiscard]] OdDbObjectIdArray getDependencies(int mask, int tag, bool filtered) const;
  /// The same by the tags of the reactors; `groups` is replaced. eOk always.
  OdResult getDependenciesGroupedByTags(int mask, std::map<int, OdDbObjectIdArray>& groups) const;
  /// The tag of each matching reactor, appended in their order. eOk always.
  OdResult getTags(int mask, OdArray<int>& tags) const;
  [[nodiscard]] OdDbFullSubentPathArray getEntities(int mask, int tag) const;
  /// Paths of the dependencies; one that leads to nothing or does not open is left out.
  [[nodiscard]] static OdDbFullSubentPathArray getFSPfromDepencencies(
      const OdDbObjectIdArray& dependencies);
  /// Takes the reactor out of the list; a reactor of geometry drops its dependencies. With
  /// `eraseReactor` the object is erased. Null is ignored.
  void removeReactor(OdDbObjectId reactor, bool eraseReactor);
  /// Takes a key out of the carrier's bag; true when it was there.
  bool removeProperty(const OdString& key);
  /// The list {1}.
  [[nodiscard]] static const OdArray<int>& singleEntityMasks();

  /// The first reactor of geometry with exactly this mask, and this tag if there is one; null when
  /// there is none.
  [[nodiscard]] OdDbObjectId findPersIdReactor(int mask, const int* tag) const;

 private:
  void notifyEntities() const;
  template <class Matches>
  OdDbObjectIdArray collectDependencies(const Matches& matches, bool filtered) const;

  OdString m_name;
  OdDbObjectIdArray m_reactors;
  OdInt32 m_status = 0;
};
