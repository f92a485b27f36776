// VdmFeatureLook: one look at a feature, for the index of features.
#pragma once

#include <vector>

#include "platform/base/string.h"
#include "platform/filer/object_id.h"
#include "platform/rx/rx_class.h"

class OdDbObject;
class VdmDbFeatureData;
class VdmDbFeatureReactor;
class VdmDbObjectDependency;
class VdmDbPersIdReactor;
class VdmFeature;
class VdmUpdateFeatureInterface;

/// Finds out what may give a feature a part in a pass, by the same rules by which passes decide:
/// its references, the answers of its reactors, the insert of its opening. Keeps what is the same
/// for all features of a class. Opens for read and changes nothing; objects that are not in memory
/// are read.
class VdmFeatureLook {
 public:
  /// Why a feature may take part whatever the input of the pass says.
  enum Trait : OdUInt16 {
    kLiving = 1 << 0,        ///< it opens; no reason by itself, and the lowest bit
    kUnknown = 1 << 1,       ///< what it depends on is not known: any pass may take it
    kSeveral = 1 << 2,       ///< its dependencies lead to several entities, or to none
    kAsked = 1 << 3,         ///< only hasChanges() knows whether it has changes
    kChanged = 1 << 4,       ///< hasChanges() is true, until something of it changes
    kRecalculated = 1 << 5,  ///< likewise for what hasChanges() sets
    kMovable = 1 << 6,       ///< only its interface knows the insert of its opening
  };

  /// Looks at the feature. The answers are below.
  void at(const OdDbObjectId& feature);
  [[nodiscard]] OdUInt32 traits() const { return m_traits; }
  /// Its dependencies, all ids in their paths, null for an empty path, and its insert; some may
  /// come several times.
  [[nodiscard]] const std::vector<OdDbObjectId>& keys() const { return m_keys; }
  /// The number of its class here; classes are numbered in the order in which they are met.
  [[nodiscard]] OdUInt16 classNumber() const { return m_class; }
  /// Numbers of the classes whose extensions are others than at the last call, or when they were
  /// met. Called before the first of a series of looks.
  [[nodiscard]] std::vector<OdUInt16> changedClasses();

 private:
  /// A class of features and its interface. Both may end with their module: changedClasses()
  /// compares them with what the name of the class gives before they are used.
  struct FeatureClass {
    OdString name;
    const OdRxClass* cls = nullptr;
    const VdmUpdateFeatureInterface* pattern = nullptr;  ///< null: no feature has an opening
    const OdRxClass* patternClass = nullptr;
    bool isElsewhere = false;  ///< queries for the interface are answered by an external extension

    explicit FeatureClass(const OdString& className);
    bool operator==(const FeatureClass& other) const = default;
  };

  void lookAtFeature(const OdDbObject& carrier, const VdmFeature& feature);
  void lookAtReactor(const OdDbObjectId& id, const OdDbObjectId& carrier);
  void lookAtReferences(const VdmDbPersIdReactor& reactor);
  void lookAtDependency(const OdDbObjectId& id);
  void lookAtAnswers(const VdmDbFeatureReactor& reactor);
  void lookAtOpening(const VdmFeature& feature);
  void countEntity(const OdDbObjectId& entity);
  const FeatureClass& classOf(const VdmFeature& feature);

  OdUInt32 m_traits = 0;
  std::vector<OdDbObjectId> m_keys;
  OdUInt16 m_class = 0;
  OdDbObjectId m_entity;
  bool m_hasEntity = false;
  bool m_hasSeveral = false;
  std::vector<FeatureClass> m_classes;
};
