// Example: models a plate with holes, a small assembly and a blank in two revisions, and writes
// them as STEP files.
//
//   make_samples FOLDER      writes plate.step, assembly.step, blank.step and blank_b.step there
#include <cstdio>
#include <numbers>
#include <string>
#include <vector>

#include "examples/run_example.h"
#include "platform/base/error.h"
#include "platform/modeler/modeler.h"
#include "platform/modeler_occt/occt_modeler.h"

namespace {

// All lengths are millimetres.
constexpr double kPlateLength = 120.0;
constexpr double kPlateWidth = 80.0;
constexpr double kPlateThickness = 10.0;
constexpr double kHoleRadius = 4.5;
constexpr double kHoleInset = 15.0;
constexpr double kBoltLength = 25.0;
constexpr double kBoltHeadRadius = 7.0;
constexpr double kBoltHeadHeight = 6.0;
constexpr double kBlankLength = 160.0;
constexpr double kBlankWidth = 100.0;
constexpr double kBlankThickness = 16.0;
constexpr double kBlankThicknessB = 20.0;
constexpr double kPadLength = 60.0;
constexpr double kPadWidth = 40.0;
constexpr double kPadHeight = 8.0;

void require(const OdStatus& status) {
  if (!status.ok()) throw OdError(status.code, status.text);
}

OdModelerBodyPtr box(double dx, double dy, double dz) {
  OdModelerBodyPtr body;
  require(odModeler().box(dx, dy, dz, body));
  return body;
}

OdModelerBodyPtr cylinder(double radius, double height) {
  OdModelerBodyPtr body;
  require(odModeler().cylinder(radius, height, body));
  return body;
}

OdModelerBodyPtr moved(const OdModelerBodyPtr& body, const OdGeMatrix3d& placement) {
  OdModelerBodyPtr result;
  require(body->transformed(placement, result));
  return result;
}

OdModelerBodyPtr movedTo(const OdModelerBodyPtr& body, double x, double y, double z) {
  return moved(body, OdGeMatrix3d::translation({x, y, z}));
}

OdModelerBodyPtr combined(OdModelerBooleanKind kind, const OdModelerBodyPtr& base,
                          const std::vector<OdModelerBodyPtr>& tools) {
  OdModelerBodyPtr result;
  require(odModeler().boolean(kind, base, tools, result, nullptr));
  return result;
}

OdModelerBodyPtr named(const OdModelerBodyPtr& body, const wchar_t* name, OdModelerColor color) {
  OdModelerBodyAttributes attributes = body->attributes();
  attributes.name = name;
  attributes.color = color;
  return body->withAttributes(std::move(attributes));
}

/// Centres of the four holes near the corners of the plate.
std::vector<OdGePoint3d> holeCentres() {
  const double right = kPlateLength - kHoleInset;
  const double back = kPlateWidth - kHoleInset;
  return {{kHoleInset, kHoleInset, 0.0},
          {right, kHoleInset, 0.0},
          {right, back, 0.0},
          {kHoleInset, back, 0.0}};
}

OdModelerBodyPtr makePlate() {
  std::vector<OdModelerBodyPtr> holes;
  for (const OdGePoint3d& centre : holeCentres()) {
    holes.push_back(movedTo(cylinder(kHoleRadius, kPlateThickness), centre.x, centre.y, 0.0));
  }
  return named(combined(OdModelerBooleanKind::kSubtract,
                        box(kPlateLength, kPlateWidth, kPlateThickness), holes),
               L"plate", {140, 150, 160});
}

/// An angle with a hole in its upright leg.
OdModelerBodyPtr makeBracket() {
  const OdModelerBodyPtr foot = box(60.0, 40.0, 8.0);
  const OdModelerBodyPtr leg = box(60.0, 8.0, 50.0);
  const OdGeMatrix3d lying = OdGeMatrix3d::translation({30.0, 8.0, 30.0}) *
                             OdGeMatrix3d::rotation(std::numbers::pi / 2.0, OdGeVector3d::kXAxis);
  const OdModelerBodyPtr hole = moved(cylinder(10.0, 8.0), lying);
  const OdModelerBodyPtr angle = combined(OdModelerBooleanKind::kUnite, foot, {leg});
  return named(combined(OdModelerBooleanKind::kSubtract, angle, {hole}), L"bracket",
               {60, 110, 180});
}

/// The shank points down from the origin, the head is above it.
OdModelerBodyPtr makeBolt() {
  const OdModelerBodyPtr shank = movedTo(cylinder(4.0, kBoltLength), 0.0, 0.0, -kBoltLength);
  const OdModelerBodyPtr head = cylinder(kBoltHeadRadius, kBoltHeadHeight);
  return named(combined(OdModelerBooleanKind::kUnite, shank, {head}), L"bolt M8", {200, 170, 60});
}

/// A plate with a raised pad in its middle, still without holes.
OdModelerBodyPtr makeBlank(double thickness) {
  const OdModelerBodyPtr pad =
      movedTo(box(kPadLength, kPadWidth, thickness + kPadHeight), (kBlankLength - kPadLength) / 2.0,
              (kBlankWidth - kPadWidth) / 2.0, 0.0);
  return named(
      combined(OdModelerBooleanKind::kUnite, box(kBlankLength, kBlankWidth, thickness), {pad}),
      L"blank", {150, 160, 170});
}

OdModelerProduct product(const wchar_t* name, const OdModelerBodyPtr& body) {
  OdModelerProduct made;
  made.name = name;
  made.uniqueId = name;
  if (body) made.bodies.push_back(body);
  return made;
}

OdModelerOccurrence placed(OdUInt32 index, const OdString& name, const OdGeMatrix3d& placement) {
  OdModelerOccurrence occurrence;
  occurrence.product = index;
  occurrence.name = name;
  occurrence.placement = placement;
  return occurrence;
}

OdModelerAssembly makePart(const wchar_t* name, const OdModelerBodyPtr& body) {
  OdModelerAssembly part;
  part.products.push_back(product(name, body));
  part.roots.push_back(placed(0, name, OdGeMatrix3d::kIdentity));
  return part;
}

/// A plate, a bracket turned by a quarter on it, and four times the same bolt.
OdModelerAssembly makeAssembly() {
  enum : OdUInt32 { kPlate, kBracket, kBolt, kUnit };
  OdModelerAssembly assembly;
  assembly.products = {product(L"plate", makePlate()), product(L"bracket", makeBracket()),
                       product(L"bolt M8", makeBolt()), product(L"mounting unit", nullptr)};
  std::vector<OdModelerOccurrence>& inside = assembly.products[kUnit].occurrences;
  inside.push_back(placed(kPlate, L"plate", OdGeMatrix3d::kIdentity));
  inside.push_back(
      placed(kBracket, L"bracket",
             OdGeMatrix3d::translation({80.0, 10.0, kPlateThickness}) *
                 OdGeMatrix3d::rotation(std::numbers::pi / 2.0, OdGeVector3d::kZAxis)));
  int number = 0;
  for (const OdGePoint3d& centre : holeCentres()) {
    OdString name;
    name.format(L"bolt %d", ++number);
    inside.push_back(
        placed(kBolt, name, OdGeMatrix3d::translation({centre.x, centre.y, kPlateThickness})));
  }
  assembly.roots.push_back(placed(kUnit, L"mounting unit", OdGeMatrix3d::kIdentity));
  return assembly;
}

void write(const std::string& path, const OdModelerAssembly& assembly) {
  require(odModeler().exportStep(OdString(path), assembly));
  std::printf("wrote %s\n", path.c_str());
}

}  // namespace

int main(int argc, char** argv) {
  constexpr const char* kNames[] = {"FOLDER"};
  return runExample(argc, argv, kNames, [](std::span<char*> arguments) {
    odInstallOcctModeler();
    const std::string folder = arguments[0];
    write(folder + "/plate.step", makePart(L"plate", makePlate()));
    write(folder + "/assembly.step", makeAssembly());
    write(folder + "/blank.step", makePart(L"blank", makeBlank(kBlankThickness)));
    write(folder + "/blank_b.step", makePart(L"blank", makeBlank(kBlankThicknessB)));
    odSetModeler(nullptr);
  });
}
