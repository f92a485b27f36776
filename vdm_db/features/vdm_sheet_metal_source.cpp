// What other rooms read from sheet-metal contexts.
#include "vdm_db/features/vdm_sheet_metal_source.h"

#include <cmath>

#include "platform/db/db_object.h"
#include "vdm_db/common/vdm_constants.h"

namespace {

constexpr double kSameValue = 1e-10;  // a change of a double counts beyond this

bool isSame(double a, double b) { return std::abs(a - b) <= kSameValue; }

constexpr const wchar_t* kBendRadius = L"BendRadius";
constexpr const wchar_t* kBendRadiusType = L"BendRadiusType";

// Calls read(bag) when the context opens as one.
template <class Read>
void readContext(const OdDbObjectId& context, const Read& read) {
  const OdDbObjectPtr object = context.openObject();
  if (const auto* source = dynamic_cast<const VdmSheetMetalSource*>(object.get())) {
    read(source->sheetMetalProperties());
  }
}

class Sheet {
 public:
  explicit Sheet(const OdDbObjectId& context) {
    readContext(context, [this](const VdmProperties& bag) {
      bag.getProperty(kVdmThickness, m_thickness);
      bag.getProperty(kBendRadius, m_bendRadius);
      bag.getProperty(kBendRadiusType, m_bendRadiusType);
    });
  }
  friend bool operator==(const Sheet& a, const Sheet& b) {
    return isSame(a.m_thickness, b.m_thickness) && isSame(a.absoluteRadius(), b.absoluteRadius());
  }

 private:
  // A radius of type 0 is a ratio of the thickness.
  [[nodiscard]] double absoluteRadius() const {
    return m_bendRadiusType == 0 ? m_bendRadius * m_thickness : m_bendRadius;
  }

  double m_thickness = 0;  // drawing units
  double m_bendRadius = 0;
  OdLong m_bendRadiusType = 0;
};

}  // namespace

VdmSheetMetalSource::~VdmSheetMetalSource() = default;

namespace vdmu {

OdDbObjectIdArray sheetMetalVariables(const OdDbObjectId& context) {
  OdDbObjectIdArray variables;
  readContext(context, [&variables](const VdmProperties& bag) {
    OdDbObjectId variable;
    if (bag.getProperty(kVdmThicknessVar, variable) && !variable.isNull()) {
      variables.append(variable);
    }
  });
  return variables;
}

bool isSameSheetMetal(const OdDbObjectId& a, const OdDbObjectId& b) { return Sheet(a) == Sheet(b); }

}  // namespace vdmu
