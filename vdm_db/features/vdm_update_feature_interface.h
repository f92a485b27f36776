// VdmUpdateFeatureInterface: what gives a feature class its behaviour on solids.
#pragma once

#include <unordered_set>

#include "platform/base/string.h"
#include "platform/db/entity.h"
#include "platform/db/subent.h"
#include "platform/modeler/db_3d_solid.h"
#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/common/vdm_object_id_hash.h"
#include "vdm_db/features/vdm_feature_pe.h"
#include "vdm_db/features/vdm_matching_faces.h"

class OdDbIdMapping;
class VdmDbFeatureManager;
class VdmDbPersIdReactor;
class VdmFeature;
class VdmFeatureUpdateData;
struct VdmFeatureSubentsToRemove;

/// The extension of a feature class that works on solids. Other modules derive from it and attach
/// the derived class to their feature class; querying a feature for it gives a fresh object bound
/// to that feature. A feature without one, or with one that is not active, only carries data.
///
/// The registry of component features is filled and emptied at module start and end, and has no
/// lock.
class VDM_DB_EXPORT VdmUpdateFeatureInterface : public VdmFeaturePE {
 public:
  OD_RX_DECLARE_MEMBERS(VdmUpdateFeatureInterface)

  using LayerSet = std::unordered_set<OdDbObjectId, vdmu::OdDbObjectIdHash>;
  using Solids = OdArray<OdSmartPtr<OdDb3dSolid>>;

  /// Where an opening sits.
  class VDM_DB_EXPORT OpeningFaces {
   public:
    OpeningFaces() = default;
    OpeningFaces(const OdDbObjectId& solid, const OdDbObjectId& insert,
                 const OdDbFullSubentPathArray& faces)
        : m_solidId(solid), m_insertId(insert), m_faces(faces) {}

    [[nodiscard]] OdDbObjectId solidId() const { return m_solidId; }
    /// The insert that makes the opening.
    [[nodiscard]] OdDbObjectId insertId() const { return m_insertId; }
    /// Faces of the solid; the first is its base face.
    [[nodiscard]] const OdDbFullSubentPathArray& faces() const { return m_faces; }
    [[nodiscard]] OdUInt32 size() const { return m_faces.size(); }
    /// The insert and the solid both name objects.
    [[nodiscard]] bool isValid() const { return m_insertId.isValid() && m_solidId.isValid(); }
    /// Null when there are no faces; valid until the faces change.
    [[nodiscard]] const OdDbFullSubentPath* baseSolidFace() const {
      return m_faces.isEmpty() ? nullptr : &m_faces[0];
    }

    // For the interface's own use.
    OdDbFullSubentPathArray insertFaces;  ///< faces of the insert's solids
    bool flag = false;

   private:
    OdDbObjectId m_solidId;
    OdDbObjectId m_insertId;
    OdDbFullSubentPathArray m_faces;
  };

  ~VdmUpdateFeatureInterface() override;

  /// The feature's interface if it has one that is active; null otherwise and for null.
  [[nodiscard]] static OdSmartPtr<VdmUpdateFeatureInterface> activeOf(const VdmFeature* feature);
  /// The interface has objects of its own.
  [[nodiscard]] bool isActive() const { return !ownObjectIds().isEmpty(); }

  // What classes define, in the order in which the interface lists it.

  [[nodiscard]] virtual OpeningFaces openingFaces() const = 0;
  /// As VdmFeature::prepareUpdateData: true when the feature needs no update in this pass.
  virtual bool prepareUpdateData(VdmFeatureUpdateData& data, bool forced) = 0;
  /// Removes what it knows how to remove from the record's entity, and from the record. True when
  /// the entity changed. `paths` are those that the feature refers to.
  virtual bool removeSubents(VdmFeatureSubentsToRemove& record,
                             const OdDbFullSubentPathArray& paths) = 0;
  virtual bool initAfterUpdate(VdmFeatureUpdateData& data) = 0;
  /// Binds the new feature to an entity. False takes the feature back.
  virtual bool createForEntity(VdmDbFeatureManager* manager, const OdDbFullSubentPath& basePath,
                               const OdDbObjectId& entity, VdmFeatureUpdateData& data) = 0;
  /// Losing the last reference of this kind ends the feature.
  [[nodiscard]] virtual bool isRequiredDependency(int mask, int tag) = 0;
  virtual void onDeepClone(OdDbIdMapping& mapping, OdDbObject* source, OdDbObject* clone,
                           bool flag) const = 0;
  virtual void onWblockClone(OdDbIdMapping& mapping, OdDbObject* source, OdDbObject* clone,
                             bool flag) const = 0;
  /// The solids of a block that the feature subtracts, and those that it unites. `forWrite` as in
  /// vdmu::openXrefBlock.
  [[nodiscard]] virtual VdmSolidOccurrences subtractSolids(const OdDbObjectId& block,
                                                           bool forWrite) = 0;
  [[nodiscard]] virtual VdmSolidOccurrences uniteSolids(const OdDbObjectId& block,
                                                        bool forWrite) = 0;
  /// True leaves the reactor out of filtered dependencies.
  [[nodiscard]] virtual bool isReactorFiltered(const VdmDbPersIdReactor* reactor) const = 0;
  /// Own objects are erased with the feature.
  [[nodiscard]] virtual bool erasesOwnObjects() const = 0;
  /// A feature that fills something in and has lost its base faces is erased.
  [[nodiscard]] virtual bool needsBaseFaces() const = 0;
  [[nodiscard]] virtual OdStringArray layersToHide() const;  ///< subtract, then unite layers
  [[nodiscard]] virtual OdStringArray layersToShow() const;  ///< none
  [[nodiscard]] virtual OdStringArray layersToHideOnInsert() const;  ///< none
  [[nodiscard]] virtual OdStringArray layersToShowOnInsert() const;  ///< those of layersToHide
  /// What setExtension gives to applyExtension.
  [[nodiscard]] virtual OdString extensionValue() const = 0;
  virtual void applyExtension(OdDbObject* object, const OdString& value) = 0;
  /// The name under which the class registers; a class with an empty one does not.
  [[nodiscard]] virtual OdString componentName() const = 0;
  /// As createFeatures.
  virtual OdDbObjectIdArray createFeaturesEx(const OdDbFullSubentPath& basePath,
                                             const OdDbObjectIdArray& entities, OdRxClass* cls);
  [[nodiscard]] virtual OdDbObjectIdArray ownObjectIds() const = 0;
  /// The two closing steps of createFeature.
  virtual void setEntities(const OdDbObjectIdArray& entities) = 0;
  virtual void attachToSolid(VdmDbFeatureManager* manager, const OdDbObjectId& solid) = 0;
  /// The insert of the feature's opening, for classes that store it in the feature: in a member
  /// that changes only while the carrier is open for write, and in a manner recorded for undo. A
  /// pass over moved inserts then finds the feature without asking for its openingFaces(). False in
  /// the base: each such pass asks. Called on the extension of the class, which is bound to no
  /// feature.
  virtual bool storedInsert(const VdmFeature& feature, OdDbObjectId& insert) const;

  // Component features: classes under a name of their own.
  /// A class without extension is ignored, and so is null. Registering twice lists it twice.
  static void registerComponentFeature(OdRxClass* cls);
  static void unregisterComponentFeature(OdRxClass* cls);
  /// Names of the registered components, and the names of their classes in the same order.
  [[nodiscard]] static OdStringArray getRegisteredExtensions();
  [[nodiscard]] static OdStringArray getRegisteredExtensionsDesc();

  // The extension of an object: the class of the component feature that it is made for.
  /// Stores the class name in the object's properties, if its class has a VdmPropertiesPE, and has
  /// the class's interface apply itself. Nothing happens for null and for a class without
  /// interface.
  static void setExtension(const OdString& className, OdDbObject* object);
  static void setExtension(OdRxClass* cls, OdDbObject* object);
  /// A new object of the stored class; null when there is none, or it is not registered.
  [[nodiscard]] static OdRxObjectPtr getExtension(OdDbObject* object);

  // Making features.
  /// Makes a feature of a solid in the manager of the drawing's model space, with references to
  /// `basePath` when that is a face (tag 3), and to the paths of the three sets (tags 0, 1, 2).
  /// Null when the solid or the path's first id is, or for a class that makes no feature.
  static OdDbObjectId createFeature(OdDbObjectId solid, const OdDbFullSubentPath& basePath,
                                    OdDbFullSubentPathArray& set0, OdDbFullSubentPathArray& set1,
                                    OdDbFullSubentPathArray& set2, OdRxClass* cls);
  /// Makes a feature for each entity, with a reference to `basePath` (mask and tag 1) when that is
  /// a face, and runs an update pass over them. One id for each entity, null where the interface
  /// refused or the class has none; empty without a path or entities.
  static OdDbObjectIdArray createFeatures(const OdDbFullSubentPath& basePath,
                                          const OdDbObjectIdArray& entities, OdRxClass* cls);
  /// A copy of the entity, in no database, without the openings that features (of `cls`, or all)
  /// made in it. The tools that lie on layers are appended to the lists that are given. Null only
  /// when the entity does not open.
  [[nodiscard]] static OdSmartPtr<OdDbEntity> getGrossSolid(OdDbObjectId entityId, OdRxClass* cls,
                                                            Solids* subtractors, Solids* uniters);

  // Solids that cut and fill by the layer on which they lie.
  /// Those of the block on a layer for subtracting ("VC_SUBTRACT", "BIM_SUBTRACT").
  [[nodiscard]] static VdmSolidOccurrences getSubtractorsOnDedicatedLayer(
      const OdDbObjectId& blockId, bool forWrite);
  /// Those of the block on a layer for uniting ("VC_UNITE", "BIM_UNITE").
  [[nodiscard]] static VdmSolidOccurrences getAdditionsOnDedicatedLayer(const OdDbObjectId& blockId,
                                                                        bool forWrite);
  [[nodiscard]] static VdmSolidOccurrences getObjectsFromSubtractLayer(const OdDbObjectId& blockId,
                                                                       bool forWrite);
  [[nodiscard]] static VdmSolidOccurrences getObjectsFromUniteLayer(const OdDbObjectId& blockId,
                                                                    bool forWrite);
  /// Layers of the drawing in which the block's contents lie, by name without regard to case. In
  /// an external drawing the names may carry the name of its block and a bar in front; in a long
  /// transaction those of checked-out layers are taken without their "$<number>$".
  [[nodiscard]] static LayerSet findLayersByName(const OdDbObjectId& blockId,
                                                 const OdStringArray& names);
  /// Solids of the block on one of the layers, in the block's order. Of references only those of
  /// associative arrays are followed; one that is itself on such a layer counts with all its
  /// solids.
  [[nodiscard]] static VdmSolidOccurrences getObjectsFromLayers(const OdDbObjectId& blockId,
                                                                const LayerSet& layers,
                                                                bool forWrite);
  /// Appends the solids of an associative array, given as its block or an insert of it: those on
  /// the layers, or all without layers. A solid that comes in several items is listed once, with
  /// one matrix for each item, in the order of the items. False when the object is no such array.
  static bool getSolidsFromArray(const OdDbObject* object, VdmSolidOccurrences& out,
                                 const LayerSet* layers);
  /// Whether the block that the insert shows has solids for subtracting or for uniting.
  [[nodiscard]] static bool hasSubtrsOrUnitors(OdDbObjectId insert);
};
using VdmUpdateFeatureInterfacePtr = OdSmartPtr<VdmUpdateFeatureInterface>;
