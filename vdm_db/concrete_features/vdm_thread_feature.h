// VdmThreadFeature: a thread on faces and edges.
#pragma once

#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/features/vdm_feature.h"
#include "vdm_db/features/vdm_feature_impl.h"

/// Records a thread: the faces that it is cut into (mask 1), the edges where it begins (mask 2),
/// and its sizes in drawing units. The sizes are in the carrier's bag alone. Setters of sizes
/// refuse what is negative with the result 5, and nothing changes then.
class VDM_DB_EXPORT VdmThreadFeature : public VdmFeature {
 public:
  VDM_DECLARE_FEATURE_MEMBERS(VdmThreadFeature)

  static constexpr int kFacesMask = 1;
  static constexpr int kEdgesMask = 2;
  /// The sense in which it turns. The number is stored; what it means is up to the module that
  /// makes threads.
  enum ESenseType : OdInt32 { kSenseNotSpecified = 0 };
  /// A size that was never set.
  static constexpr double kNoSize = -1.0;

  [[nodiscard]] OdDbFullSubentPathArray faces() const;
  [[nodiscard]] OdDbFullSubentPathArray edges() const;

  /// Stored as "ThreadDepth".
  [[nodiscard]] double pitch() const;
  OdResult setPitch(double pitch);
  [[nodiscard]] double length() const;
  OdResult setLength(double length);
  [[nodiscard]] double step() const;
  OdResult setStep(double step);
  [[nodiscard]] ESenseType senseType() const;
  /// eOk always.
  OdResult setSenseType(ESenseType sense);

 private:
  [[nodiscard]] const VdmProperties& bag() const;
  VdmProperties& bagForWrite();
  [[nodiscard]] double size(const OdString& key) const;
  OdResult setSize(const OdString& key, double size);
};
using VdmThreadFeaturePtr = OdSmartPtr<VdmThreadFeature>;
