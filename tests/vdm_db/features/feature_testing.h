// Feature classes of another library than the module, and verbs for the tests of features.
#pragma once

#include <vector>

#include "tests/support/model_testing.h"
#include "vdm_db/features/vdm_db_feature_data.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/features/vdm_feature_impl.h"
#include "vdm_db/features/vdm_update_feature_interface.h"

/// A feature with a mapped field and an edition.
class HoleFeature : public VdmFeature {
 public:
  VDM_DECLARE_FEATURE_MEMBERS(HoleFeature)
  using VdmFeature::getDependencies;
  using VdmFeature::getDependenciesGroupedByTags;
  using VdmFeature::getEntities;
  using VdmFeature::getTags;

  static int edition;    ///< of the class as it is loaded
  static bool required;  ///< what isRequiredDependency answers

  double depth = 0;

  [[nodiscard]] int currentEdition() const override { return edition; }
  bool isRequiredDependency(int mask, int tag) override;
  void subMapProperties(VdmProperties& bag) override { bag.mapProperty<double>(L"Depth", &depth); }
  [[nodiscard]] bool canBeCloned(const OdDbIdMapping&) const override { return depth >= 0; }

  static std::vector<std::pair<int, int>> asked;  ///< masks and tags of isRequiredDependency
};
using HoleFeaturePtr = OdSmartPtr<HoleFeature>;

/// Says that it has changes, and nothing else.
class TellingReactor : public VdmDbFeatureReactor {
 public:
  OD_RX_DECLARE_MEMBERS(TellingReactor)
  static int calls;
  static bool sound;

  [[nodiscard]] bool hasChanges() const override {
    ++calls;
    return true;
  }
  bool doAudit() override { return sound; }
};

class FeatureTest : public RegisteredClass<HoleFeature>,
                    public RegisteredClass<TellingReactor>,
                    public ModelTest {
 protected:
  FeatureTest();

  [[nodiscard]] VdmDbFeatureManagerPtr manager(OdDb::OpenMode mode = OdDb::kForWrite) const {
    return open<VdmDbFeatureManager>(m_features, mode);
  }
  OdDbObjectId addHole(const wchar_t* name = L"Hole") {
    return manager()->createFeatureData(HoleFeature::desc(), name, false, false);
  }
  /// Mask, tag, and faces of m_carrier.
  struct Group {
    int mask;
    int tag;
    std::initializer_list<int> faces;
  };
  /// The feature's references are these from now on.
  void refer(OdDbObjectId feature, std::initializer_list<Group> groups) const;
  static HoleFeaturePtr hole(OdDbObjectId id, OdDb::OpenMode mode = OdDb::kForRead) {
    return id.openAs<HoleFeature>(mode);
  }
  /// Saves and reads again; ids that are given follow.
  void reopenWith(std::initializer_list<OdDbObjectId*> ids);

  OdDbObjectId m_features;
};
