// VdmDbIHLR: the hidden-line engine of a host, and the filters of what enters it.
#pragma once

#include <vector>

#include "platform/base/result.h"
#include "platform/base/shared_ptr.h"
#include "platform/db/subent.h"
#include "platform/filer/object_id.h"
#include "platform/ge/matrix3d.h"
#include "platform/ge/point2d.h"
#include "vdm_db/common/vdm_db_export.h"

class OdDbEntity;
class VdmDbIHLRFilter;

/// One line of a view.
struct VdmHlrLine {
  OdArray<OdGePoint2d> points;  ///< a polyline in the plane of the view, drawing units
  bool isHidden = false;
  bool isTangent = false;     ///< of an edge between faces that meet smoothly
  OdDbFullSubentPath source;  ///< the edge or face that it shows
};

/// A hidden-line engine. A host sets a factory at start and null before it ends; the module has no
/// engine of its own.
class VDM_DB_EXPORT VdmDbIHLR {
 public:
  using Factory = OdSharedPtr<VdmDbIHLR> (*)();

  VdmDbIHLR() = default;
  virtual ~VdmDbIHLR();
  VdmDbIHLR(const VdmDbIHLR&) = delete;
  VdmDbIHLR& operator=(const VdmDbIHLR&) = delete;

  /// Leaves out what the filter refuses; null takes everything. The caller keeps the filter while
  /// the engine runs.
  virtual void setFilter(VdmDbIHLRFilter* filter) = 0;
  /// Appends the lines of entities as they are seen against the Z axis of the view, which
  /// `worldToView` leads to. On failure nothing is appended.
  virtual OdResult run(const OdDbObjectIdArray& entities, const OdGeMatrix3d& worldToView,
                       std::vector<VdmHlrLine>& lines) = 0;

  /// Not to be set while another thread uses it.
  static void setFactoryMethod(Factory factory);
  [[nodiscard]] static bool hasFactoryMethod();
  /// What the factory makes; null without one.
  [[nodiscard]] static OdSharedPtr<VdmDbIHLR> getHLR();
};

/// Decides which entities enter hidden-line removal.
class VDM_DB_EXPORT VdmDbIHLRFilter {
 public:
  /// The engine outlives the filter, or is null.
  explicit VdmDbIHLRFilter(VdmDbIHLR* engine) : m_engine(engine) {}
  virtual ~VdmDbIHLRFilter();
  VdmDbIHLRFilter(const VdmDbIHLRFilter&) = delete;
  VdmDbIHLRFilter& operator=(const VdmDbIHLRFilter&) = delete;

  /// The entity is open for read.
  virtual bool accept(OdDbEntity* entity) = 0;

 protected:
  [[nodiscard]] VdmDbIHLR* engine() const { return m_engine; }

 private:
  VdmDbIHLR* m_engine;
};

/// Takes entities that can be seen.
class VDM_DB_EXPORT VdmOdaToAcisFilter : public VdmDbIHLRFilter {
 public:
  using VdmDbIHLRFilter::VdmDbIHLRFilter;
  /// False for null and for invisible entities.
  bool accept(OdDbEntity* entity) override;
};

/// Takes what can be seen and is a body of the model: leaves out the layers whose solids cut and
/// fill.
class VDM_DB_EXPORT VdmOdaToAcisLayerFilter : public VdmOdaToAcisFilter {
 public:
  using VdmOdaToAcisFilter::VdmOdaToAcisFilter;
  /// As the base; also false for an entity on "BIM_SUBTRACT", "BIM_UNITE", "VC_SUBTRACT" or
  /// "VC_UNITE". An entity on no layer is taken.
  bool accept(OdDbEntity* entity) override;
};
