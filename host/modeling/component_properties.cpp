// What values of parameters do to a component: sizes of its own, place, angle, suppression.
//
// Values arrive while a variable announces its change, so nothing is cut here: the feature notes
// what it is given, or moves its insert, and the insert's reactor says to the next pass that the
// component has work to do. What is wrong with a size is found there, where it can be refused.
#include <cmath>
#include <iterator>

#include "host/modeling/component_feature.h"
#include "host/modeling/insertion.h"
#include "platform/base/error.h"
#include "platform/db/database.h"
#include "platform/entities/block_reference.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/drawing_utils/vdm_layer_utils.h"

namespace {

constexpr const wchar_t* kSuppress = L"Suppress";
constexpr double kOn = 1e-10;  // a larger number suppresses

OdGeVector3d axisOf(const OdGeMatrix3d& place, unsigned column) {
  return OdGeVector3d(place(0, column), place(1, column), place(2, column));
}

void require(OdResult moved) {
  if (moved != eOk) throw OdError(moved, OdString(L"insert of a component"));
}

/// About the axis of the insert, from where a new insert would have it.
double angleOf(const OdDbBlockReference& insert) {
  const OdGeMatrix3d place = insert.blockTransform();
  const OdGeMatrix3d zero =
      vdm_host::componentFrame(insert.position(), axisOf(place, 2), /*rotation=*/0.0);
  const OdGeVector3d x = axisOf(place, 0);
  return std::atan2(x.dotProduct(axisOf(zero, 1)), x.dotProduct(axisOf(zero, 0)));
}

double coordinateOf(const OdDbBlockReference& insert, int axis) {
  const OdGePoint3d point = insert.position();
  return axis == 0 ? point.x : axis == 1 ? point.y : point.z;
}

void moveTo(OdDbBlockReference& insert, int axis, double value) {
  const double by = value - coordinateOf(insert, axis);
  const OdGeVector3d step(axis == 0 ? by : 0.0, axis == 1 ? by : 0.0, axis == 2 ? by : 0.0);
  if (by != 0.0) require(insert.transformBy(OdGeMatrix3d::translation(step)));
}

void turnTo(OdDbBlockReference& insert, double angle) {
  const double by = angle - angleOf(insert);
  if (by == 0.0) return;
  const OdGeVector3d axis = axisOf(insert.blockTransform(), 2);
  require(insert.transformBy(OdGeMatrix3d::rotation(by, axis, insert.position())));
}

/// What the insert itself has.
struct PlaceRow {
  const wchar_t* name;
  double (*get)(const OdDbBlockReference&);
  void (*set)(OdDbBlockReference&, double);
};
template <int axis>
constexpr PlaceRow placeRow(const wchar_t* name) {
  return {name, [](const OdDbBlockReference& insert) { return coordinateOf(insert, axis); },
          [](OdDbBlockReference& insert, double value) { moveTo(insert, axis, value); }};
}
constexpr PlaceRow kPlaces[] = {
    placeRow<0>(L"X"),
    placeRow<1>(L"Y"),
    placeRow<2>(L"Z"),
    {L"Angle", &angleOf, &turnTo},
};

const PlaceRow* placeNamed(const OdString& name) {
  for (const PlaceRow& row : kPlaces) {
    if (name == row.name) return &row;
  }
  return nullptr;
}

}  // namespace

// ---- Sizes of its own

void VdmComponentFeature::noteChanged() {
  const VdmDbInsertReactorPtr reactor = insertReactorId().openAs<VdmDbInsertReactor>();
  if (!reactor.isNull()) reactor->setChanged(true);
}

void VdmComponentFeature::dropSize(const OdString& name) {
  if (!sizes().contains(name)) return;
  assertWritable();
  m_sizes.drop(name);
  noteChanged();
}

// ---- Suppression

bool VdmComponentFeature::isSuppressed() const {
  const auto insert = m_insertId.openAs<OdDbBlockReference>();
  return !insert.isNull() && insert->layer().iCompare(kVdmSuppressLayer) == 0;
}

void VdmComponentFeature::setSuppressed(bool suppressed) {
  if (suppressed == isSuppressed()) return;
  const OdDbObject* carrier = assertWritable();
  const auto insert = m_insertId.safeOpenAs<OdDbBlockReference>(OdDb::kForWrite);
  if (suppressed) {
    // On, so that what lies on it can be picked.
    const OdDbObjectId layer =
        vdmu::findOrAddLayer(carrier->database(), kVdmSuppressLayer, [](OdDbLayerTableRecord&) {});
    m_layerId = insert->layerId();
    insert->setLayer(layer);
  } else {
    const bool isThere = !m_layerId.openObject().isNull();
    insert->setLayer(isThere ? m_layerId : carrier->database()->getLayerZeroId());
  }
}

// ---- Values of properties

std::optional<double> VdmComponentFeature::propertyValue(const OdString& name) const {
  if (name == kSuppress) return isSuppressed() ? 1.0 : 0.0;
  const auto insert = m_insertId.openAs<OdDbBlockReference>();
  const PlaceRow* row = placeNamed(name);
  if (row != nullptr && !insert.isNull()) return row->get(*insert);
  const vdm_host::ComponentSizes own = sizes();
  const auto size = own.find(name);
  return size == own.end() ? std::nullopt : std::optional(size->second);
}

OdResult VdmComponentFeature::onPropertyModified(const OdString& key, double value) {
  const auto insert = m_insertId.openAs<OdDbBlockReference>(OdDb::kForWrite);
  if (insert.isNull()) return eOk;  // the next pass takes the component away
  if (key == kSuppress) {
    setSuppressed(std::abs(value) > kOn);
  } else if (const PlaceRow* row = placeNamed(key); row != nullptr) {
    row->set(*insert, value);
  } else {
    assertWritable();
    m_sizes.set(key, value);
    noteChanged();
  }
  return eOk;
}
