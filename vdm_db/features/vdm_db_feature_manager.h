// VdmDbFeatureManager: the features of one block.
#pragma once

#include <initializer_list>
#include <map>
#include <memory>
#include <unordered_set>

#include "platform/base/string.h"
#include "platform/db/db_object.h"
#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/features/vdm_db_iterator.h"
#include "vdm_db/features/vdm_feature.h"
#include "vdm_db/model/vdm_block_managers.h"

class VdmDbFeatureData;
class VdmDbFeatureManagerImpl;
class VdmDbReverseIdMapping;
class VdmDependenciesReplacementMap;
class VdmDueFeatures;
class VdmFeatureIndex;
class VdmFeatureUpdateData;
class VdmNamingService;
struct VdmMergeContext;
struct VdmUpdateContext;

/// What is still to be done with modified entities once features are current: a word of bits, each
/// for one operation of VdmDbSheetMetalContextPE. The operations run in the order 2, 4, 1.
enum EPostprocessingOperationType : OdUInt32 {
  PostprocessNone = 0,
  PostprocessBit1 = 1,
  PostprocessBit2 = 2,
  PostprocessBit4 = 4,
};

/// Owns the carriers of all features of a block, in the order in which they were made, and the
/// block's sheet-metal context and colour policy. It lies under "FEATURE_MANAGER" in "VDM_DATABASE"
/// of the block's extension dictionary. Every update pass over the features begins here.
///
/// Readers raise OdError eNotOpenForRead (61) unless the manager is open for read; those that
/// change it need it open for write. Adding and removing a feature records that step alone for
/// undo.
class VDM_DB_EXPORT VdmDbFeatureManager : public OdDbObject, public VdmFeatureRegistry {
 public:
  OD_RX_DECLARE_MEMBERS(VdmDbFeatureManager)

  VdmDbFeatureManager();
  ~VdmDbFeatureManager() override;

  /// The manager of a block. With `create` a missing one is made, and the material of feature
  /// colours with it; null without one otherwise.
  static OdDbObjectId getInstance(const OdDbObjectId& blockId, bool create);
  /// The block that holds the manager; null when it is in none.
  [[nodiscard]] OdDbObjectId blockId() const override;

  // ---- Features

  /// A new feature at the end. The flags go to the VdmDbNamingPolicyPE, which makes the final name;
  /// without one the name is taken as it is. Null without a database and for a class that makes no
  /// feature.
  OdDbObjectId createFeatureData(OdRxClass* cls, const OdString& name, bool numberGiven, bool trim);
  /// Lists the clone of a carrier, which is in the database and has this owner. The
  /// VdmDbNamingPolicyPE makes its feature's name unique.
  void onAppendToOwner(VdmDbFeatureData* carrier);
  /// Features that open, in order. The manager stays open while the iterator lives.
  [[nodiscard]] VdmDbIterator<VdmFeature> newFeatureIterator() const;
  /// Ids of the resident features of one of the classes or below one. Opens nothing: what is not
  /// loaded is left out, and none is found without classes.
  [[nodiscard]] OdDbObjectIdArray getFeatures(std::initializer_list<OdRxClass*> classes) const;
  /// Ids of all features, erased ones among them. Valid until the manager changes.
  [[nodiscard]] const OdDbObjectIdArray& featureIds() const;
  /// Sets the status of every feature whose status is not exactly StatusNotifyEntities. The first
  /// result that is not eOk, or eOk. Raises as upgradeOpen, when there is something to set.
  OdResult updateFeaturesStatus(VdmFeature::Status status);
  /// Variables that features depend on; in a mapping's contexts 1, 3, 6, 9 and 10 also those that
  /// depend on features, and with a mapping only of features that it takes along. Those of the
  /// sheet-metal context are appended when asked for.
  [[nodiscard]] OdDbObjectIdArray getVariables(bool withSheetMetal, OdDbIdMapping* mapping) const;

  // ---- The update pass

  /// Runs a pass over the given features, each of which is taken. True when anything changed;
  /// dependencies that no feature watches any more are erased.
  bool update(const OdDbObjectIdArray& ids);
  bool update(const OdDbObjectIdArray& ids, VdmFeatureUpdateData& data);
  /// Runs a pass over the features that the map, or what their reactors say, concerns; then what is
  /// to be done with modified entities, whose bits are cleared as they are done. True when anything
  /// changed. Replaced dependencies are left to the owner of the map.
  bool updateFeatures(const VdmDependenciesReplacementMap& map, bool constraintsWereCalculated,
                      bool constraintsWereCalculatedSuccesfully,
                      EPostprocessingOperationType& postFlags);
  /// The same with everything that a pass is handed in one record, whose flags come back as above.
  bool updateFeatures(VdmUpdateContext& context);
  /// Whether some feature waits for evaluate(). Stored as a property that is present only while
  /// true.
  void needEvaluate(bool flag);
  [[nodiscard]] bool isNeedEvaluate() const;
  /// Has the waiting features evaluate themselves.
  void evaluate();

  // ---- Names

  [[nodiscard]] VdmNamingService& namingService() const { return *m_namingService; }
  /// Keep the record of names in step; true always.
  bool onFeatureErased(const OdDbObjectId& feature);
  bool onFeatureRenamed(const OdDbObjectId& feature, const OdString& name);

  // ---- Contexts

  /// Null without one.
  [[nodiscard]] OdDbObjectId sheetMetalContext() const;
  /// The manager becomes the owner. For the context's own making.
  void setSheetMetalContext(const OdDbObjectId& context);
  /// Erases it; 20 when there is none.
  OdResult deleteSheetMetalContext();

  // ---- Upkeep

  /// Removes reactors that have lost what they exist for, and features that need one of these or
  /// have no reactor left. It reports nothing.
  void doAudit();
  /// Takes over the features of `source`, which is erased: those that refer to clones of the
  /// reverse mapping, all with `keepAll`. None when both blocks have sheet-metal contexts of
  /// different thickness or bend radius. `mergedObjects` gets model objects of inserts, `replaced`
  /// pairs of an old id and the one that replaces it. Raises OdError eNullPointer for a null
  /// source.
  void mergeManagers(VdmDbFeatureManager* source, OdDbIdMapping& mapping,
                     VdmDbReverseIdMapping& reverse,
                     std::unordered_set<OdDbObjectId>& mergedObjects, bool keepAll,
                     std::map<OdDbObjectId, OdDbObjectId>& replaced);

  void applyPartialUndo(OdDbDwgFiler* filer, OdRxClass* cls) override;
  OdResult dwgInFields(OdDbDwgFiler* filer) override;
  void dwgOutFields(OdDbDwgFiler* filer) const override;
  OdDbObjectPtr subDeepClone(OdDbIdMapping& mapping, OdDbObject* owner,
                             bool isPrimary) const override;
  OdDbObjectPtr subWblockClone(OdDbIdMapping& mapping, OdDbObject* owner,
                               bool isPrimary) const override;
  [[nodiscard]] std::size_t approximateSize() const override;

 protected:
  /// Takes the id out of the list; the carrier stays.
  void removeFeature(OdDbObjectId feature);

 private:
  class FeatureSource;
  friend class VdmDueFeatures;

  [[nodiscard]] VdmDbFeatureManagerImpl& implForRead() const;
  OdDbDwgFiler* recordList();
  void appendFeature(const OdDbObjectId& feature);
  void takeOut(const OdDbObjectIdArray& features);
  static bool dropLostReactors(VdmFeature& feature);
  void recordNeedEvaluate();
  void namesWillChange();
  [[nodiscard]] OdString finalName(OdRxClass* cls, const OdString& name, bool numberGiven,
                                   bool trim);
  /// Brought up to date; null when it cannot serve this list. The manager is open for read.
  [[nodiscard]] VdmFeatureIndex* currentIndex() const;
  [[nodiscard]] bool featuresTellChanges(bool constraintsWereCalculated) const;
  [[nodiscard]] bool isPassDue(const VdmUpdateContext& context) const;
  [[nodiscard]] OdDbObjectIdArray featuresToClone(const OdDbIdMapping& mapping) const;
  template <class Clone>
  OdDbObjectPtr cloneWithFeatures(const OdDbIdMapping& mapping, const Clone& clone) const;
  bool adoptContext(const VdmDbFeatureManager& source);
  void takeOver(VdmDbFeatureManager& source, VdmMergeContext& context);
  void adoptFeatures(const VdmDbFeatureManager& source, VdmMergeContext& context);
  void leaveMerged(VdmDbFeatureManager& source, VdmMergeContext& context);

  std::unique_ptr<VdmDbFeatureManagerImpl> m_impl;
  std::unique_ptr<VdmNamingService> m_namingService;
};
using VdmDbFeatureManagerPtr = OdSmartPtr<VdmDbFeatureManager>;
