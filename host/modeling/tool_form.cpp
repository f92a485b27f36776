// ToolForm: a cutting tool of a built-in component, which is made anew for each place.
#include "host/modeling/tool_form.h"

#include <algorithm>

#include "platform/base/array.h"

namespace vdm_host {
namespace {

// Stored under these keys:
//
//   ToolForm    6 doubles   shape, width, length, bore diameter, bore depth, depth (0: through)
//   ToolPrint   2 longs     fingerprint of the tool, high half first
constexpr const wchar_t* kFormKey = L"ToolForm";
constexpr const wchar_t* kPrintKey = L"ToolPrint";
constexpr OdUInt32 kNumValues = 6;

/// How far tools reach above faces that are not flat, as a part of their width: enough for curved
/// faces.
constexpr double kClearance = 0.25;

OdStatus placed(const OdModelerBodyPtr& body, double z, OdModelerBodyPtr& result) {
  return body->transformed(OdGeMatrix3d::translation(OdGeVector3d(0.0, 0.0, z)), result);
}

// From `bottom` up to `top` along z.
OdStatus cylinder(double diameter, double bottom, double top, OdModelerBodyPtr& result) {
  OdModelerBodyPtr standing;
  OdStatus status = odModeler().cylinder(0.5 * diameter, top - bottom, standing);
  return status.ok() ? placed(standing, bottom, result) : status;
}

OdStatus slot(double width, double length, double bottom, double top, OdModelerBodyPtr& result) {
  const double x = 0.5 * (length - width);
  const double y = 0.5 * width;
  OdModelerProfile outline;
  outline.plane = OdGePlane(OdGePoint3d(0.0, 0.0, bottom), OdGeVector3d::kZAxis);
  // Half circles have the bulge 1.
  outline.outer = {{{-x, -y}, 0.0}, {{x, -y}, 1.0}, {{x, y}, 0.0}, {{-x, y}, 1.0}};
  return odModeler().extrude(outline, OdGeVector3d(0.0, 0.0, top - bottom), result);
}

OdStatus counterbore(const ToolForm& form, const ToolReach& reach, OdModelerBodyPtr& result) {
  OdModelerBodyPtr hole;
  OdModelerBodyPtr bore;
  // The hole ends inside the bore.
  OdStatus status = cylinder(form.width, -reach.below, -0.5 * form.boreDepth, hole);
  if (status.ok()) status = cylinder(form.boreDiameter, -form.boreDepth, reach.above, bore);
  if (!status.ok()) return status;
  return odModeler().boolean(OdModelerBooleanKind::kUnite, hole, {&bore, 1}, result, nullptr);
}

VdmLongArray halvesOf(OdUInt64 print) {
  VdmLongArray halves;
  halves.append(static_cast<OdLong>(static_cast<OdUInt32>(print >> 32)));
  halves.append(static_cast<OdLong>(static_cast<OdUInt32>(print)));
  return halves;
}

}  // namespace

double ToolForm::widthAtFace() const {
  return shape == ToolShape::kCounterbore ? boreDiameter : width;
}

double ToolForm::clearance() const { return kClearance * widthAtFace(); }

OdStatus makeTool(const ToolForm& form, const ToolReach& reach, OdModelerBodyPtr& result) {
  switch (form.shape) {
    case ToolShape::kHole:
      return cylinder(form.width, -reach.below, reach.above, result);
    case ToolShape::kCounterbore:
      return counterbore(form, reach, result);
    case ToolShape::kSlot:
      return slot(form.width, form.length, -reach.below, reach.above, result);
    case ToolShape::kBoss:
      return cylinder(form.width, 0.0, form.depth.value_or(0.0), result);
  }
  return {eInvalidInput, OdString(L"there is no such tool")};
}

OdStatus makeOpening(const ToolForm& form, double from, double to, OdModelerBodyPtr& result) {
  if (form.shape == ToolShape::kSlot) return slot(form.width, form.length, from, to, result);
  return cylinder(form.widthAtFace(), from, to, result);
}

void writeToolForm(const ToolForm& form, const OdModelerBody& tool, VdmProperties& bag) {
  VdmDoubleArray values;
  for (const double value :
       {static_cast<double>(static_cast<int>(form.shape)), form.width, form.length,
        form.boreDiameter, form.boreDepth, form.depth.value_or(0.0)}) {
    values.append(value);
  }
  bag.setProperty(OdString(kFormKey), values);
  bag.setProperty(OdString(kPrintKey), halvesOf(tool.fingerprint()));
}

std::optional<ToolForm> readToolForm(const VdmProperties& bag, const OdModelerBody& tool) {
  VdmDoubleArray values;
  VdmLongArray print;
  if (!bag.getProperty(OdString(kFormKey), values) || values.size() != kNumValues ||
      !bag.getProperty(OdString(kPrintKey), print) || print != halvesOf(tool.fingerprint())) {
    return std::nullopt;
  }
  constexpr double kLastShape = 3.0;
  const double shape = values[0];
  if (!(shape >= 0.0 && shape <= kLastShape)) return std::nullopt;
  ToolForm form{static_cast<ToolShape>(static_cast<int>(shape)),
                values[1],
                values[2],
                values[3],
                values[4],
                std::nullopt};
  if (values[5] > 0.0) form.depth = values[5];
  return form;
}

}  // namespace vdm_host
