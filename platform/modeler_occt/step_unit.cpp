// The length unit that a STEP file is written in.
#include "platform/modeler_occt/step_unit.h"

#include <Interface_InterfaceModel.hxx>
#include <STEPConstruct_UnitContext.hxx>
#include <StepBasic_ConversionBasedUnitAndLengthUnit.hxx>
#include <StepBasic_HArray1OfNamedUnit.hxx>
#include <StepBasic_NamedUnit.hxx>
#include <StepBasic_SiUnitAndLengthUnit.hxx>
#include <StepGeom_GeomRepContextAndGlobUnitAssCtxAndGlobUncertaintyAssCtx.hxx>
#include <StepGeom_GeometricRepresentationContextAndGlobalUnitAssignedContext.hxx>
#include <StepRepr_GlobalUnitAssignedContext.hxx>
#include <TCollection_HAsciiString.hxx>
#include <cctype>
#include <optional>
#include <string>

namespace od_occt {
namespace {

struct PrefixName {
  StepBasic_SiPrefix prefix;
  const char* text;
};

constexpr PrefixName kPrefixes[] = {
    {StepBasic_spMicro, "micro"}, {StepBasic_spMilli, "milli"}, {StepBasic_spCenti, "centi"},
    {StepBasic_spDeci, "deci"},   {StepBasic_spDeca, "deca"},   {StepBasic_spHecto, "hecto"},
    {StepBasic_spKilo, "kilo"},   {StepBasic_spNano, "nano"},
};

std::string siName(const StepBasic_SiUnit& unit) {
  if (!unit.HasPrefix()) return "metre";
  for (const PrefixName& row : kPrefixes) {
    if (row.prefix == unit.Prefix()) return std::string(row.text) + "metre";
  }
  return "metre with prefix " + std::to_string(static_cast<int>(unit.Prefix()));
}

std::optional<OdModelerLengthUnit> asLength(const Handle(StepBasic_NamedUnit) & unit) {
  std::string name;
  if (const auto si = Handle(StepBasic_SiUnitAndLengthUnit)::DownCast(unit); !si.IsNull()) {
    name = siName(*si);
  } else if (const auto other = Handle(StepBasic_ConversionBasedUnitAndLengthUnit)::DownCast(unit);
             !other.IsNull()) {
    if (!other->Name().IsNull()) name = other->Name()->ToCString();
    for (char& c : name) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  } else {
    return std::nullopt;
  }
  STEPConstruct_UnitContext factors;
  factors.ComputeFactors(unit);
  if (!factors.LengthDone() || !(factors.LengthFactor() > 0.0)) return std::nullopt;
  return OdModelerLengthUnit{OdString::fromUtf8(name), factors.LengthFactor()};
}

Handle(StepBasic_HArray1OfNamedUnit) unitsOf(const Handle(Standard_Transient) & entity) {
  using Plain = StepGeom_GeometricRepresentationContextAndGlobalUnitAssignedContext;
  using Uncertain = StepGeom_GeomRepContextAndGlobUnitAssCtxAndGlobUncertaintyAssCtx;
  if (const auto plain = Handle(Plain)::DownCast(entity); !plain.IsNull()) return plain->Units();
  if (const auto rough = Handle(Uncertain)::DownCast(entity); !rough.IsNull()) {
    return rough->Units();
  }
  return {};
}

}  // namespace

OdModelerLengthUnit lengthUnitOf(const Interface_InterfaceModel& model) {
  for (int i = 1; i <= model.NbEntities(); ++i) {
    const Handle(StepBasic_HArray1OfNamedUnit) units = unitsOf(model.Value(i));
    if (units.IsNull()) continue;
    for (const Handle(StepBasic_NamedUnit) & unit : *units) {
      if (const std::optional<OdModelerLengthUnit> length = asLength(unit)) return *length;
    }
  }
  return {};
}

}  // namespace od_occt
