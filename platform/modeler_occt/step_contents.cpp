// What a STEP file holds beyond products and their shapes, by kind and number.
#include "platform/modeler_occt/step_contents.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>

namespace od_occt {
namespace {

enum class Kind : std::size_t {
  kDimension,
  kTolerance,
  kDatum,
  kDatumTarget,
  kAnnotation,
  kAnnotationPlane,
  kView,
  kProperty,
  kMaterial,
  kConstruction,
  kTransparency,
  kHidden,
  kMechanism,
  kDocument,
  kApproval,
  kPerson,
  kCount,
};

struct KindName {
  const char* one;
  const char* several;
};

constexpr std::array<KindName, static_cast<std::size_t>(Kind::kCount)> kKindNames = {{
    {"dimension", "dimensions"},
    {"tolerance", "tolerances"},
    {"datum", "datums"},
    {"datum target", "datum targets"},
    {"annotation", "annotations"},
    {"annotation plane", "annotation planes"},
    {"view", "views"},
    {"property", "properties"},
    {"material", "materials"},
    {"set of construction geometry", "sets of construction geometry"},
    {"transparent style", "transparent styles"},
    {"mark of hidden items, which are shown", "marks of hidden items, which are shown"},
    {"mechanism", "mechanisms"},
    {"document", "documents"},
    {"approval", "approvals"},
    {"person or organization", "persons or organizations"},
}};

struct TypeRow {
  std::string_view type;
  Kind kind;
};

// Sorted by type.
constexpr TypeRow kTypes[] = {
    {"ANGULARITY_TOLERANCE", Kind::kTolerance},
    {"ANGULAR_DIMENSION", Kind::kDimension},
    {"ANGULAR_LOCATION", Kind::kDimension},
    {"ANGULAR_SIZE", Kind::kDimension},
    {"ANNOTATION_CURVE_OCCURRENCE", Kind::kAnnotation},
    {"ANNOTATION_FILL_AREA_OCCURRENCE", Kind::kAnnotation},
    {"ANNOTATION_OCCURRENCE", Kind::kAnnotation},
    {"ANNOTATION_PLANE", Kind::kAnnotationPlane},
    {"ANNOTATION_SUBFIGURE_OCCURRENCE", Kind::kAnnotation},
    {"ANNOTATION_SYMBOL_OCCURRENCE", Kind::kAnnotation},
    {"ANNOTATION_TEXT_OCCURRENCE", Kind::kAnnotation},
    {"APPROVAL", Kind::kApproval},
    {"CAMERA_MODEL_D3", Kind::kView},
    {"CAMERA_MODEL_D3_MULTI_CLIPPING", Kind::kView},
    {"CAMERA_MODEL_D3_WITH_HLHSR", Kind::kView},
    {"CIRCULAR_RUNOUT_TOLERANCE", Kind::kTolerance},
    {"COAXIALITY_TOLERANCE", Kind::kTolerance},
    {"COMMON_DATUM", Kind::kDatum},
    {"CONCENTRICITY_TOLERANCE", Kind::kTolerance},
    {"CONSTRUCTIVE_GEOMETRY_REPRESENTATION", Kind::kConstruction},
    {"CURVE_DIMENSION", Kind::kDimension},
    {"CYLINDRICITY_TOLERANCE", Kind::kTolerance},
    {"DATUM", Kind::kDatum},
    {"DATUM_TARGET", Kind::kDatumTarget},
    {"DIAMETER_DIMENSION", Kind::kDimension},
    {"DIMENSIONAL_LOCATION", Kind::kDimension},
    {"DIMENSIONAL_LOCATION_WITH_PATH", Kind::kDimension},
    {"DIMENSIONAL_SIZE", Kind::kDimension},
    {"DIMENSIONAL_SIZE_WITH_PATH", Kind::kDimension},
    {"DIRECTED_ANGLE", Kind::kDimension},
    {"DIRECTED_DIMENSIONAL_LOCATION", Kind::kDimension},
    {"DOCUMENT", Kind::kDocument},
    {"FLATNESS_TOLERANCE", Kind::kTolerance},
    {"GENERAL_PROPERTY", Kind::kProperty},
    {"GEOMETRIC_TOLERANCE", Kind::kTolerance},
    {"INVISIBILITY", Kind::kHidden},
    {"LINEAR_DIMENSION", Kind::kDimension},
    {"LINE_PROFILE_TOLERANCE", Kind::kTolerance},
    {"MATERIAL_DESIGNATION", Kind::kMaterial},
    {"MECHANISM", Kind::kMechanism},
    {"MECHANISM_REPRESENTATION", Kind::kMechanism},
    {"ORDINATE_DIMENSION", Kind::kDimension},
    {"PARALLELISM_TOLERANCE", Kind::kTolerance},
    {"PERPENDICULARITY_TOLERANCE", Kind::kTolerance},
    {"PERSON_AND_ORGANIZATION", Kind::kPerson},
    {"PLACED_DATUM_TARGET_FEATURE", Kind::kDatumTarget},
    {"PLUS_MINUS_TOLERANCE", Kind::kTolerance},
    {"POSITION_TOLERANCE", Kind::kTolerance},
    {"PROPERTY_DEFINITION_REPRESENTATION", Kind::kProperty},
    {"RADIUS_DIMENSION", Kind::kDimension},
    {"ROUNDNESS_TOLERANCE", Kind::kTolerance},
    {"STRAIGHTNESS_TOLERANCE", Kind::kTolerance},
    {"SURFACE_PROFILE_TOLERANCE", Kind::kTolerance},
    {"SURFACE_STYLE_TRANSPARENT", Kind::kTransparency},
    {"SYMMETRY_TOLERANCE", Kind::kTolerance},
    {"TESSELLATED_ANNOTATION_OCCURRENCE", Kind::kAnnotation},
    {"TOTAL_RUNOUT_TOLERANCE", Kind::kTolerance},
};
static_assert(std::ranges::is_sorted(kTypes, {}, &TypeRow::type));

std::optional<Kind> kindOf(std::string_view type) {
  const auto* row = std::ranges::lower_bound(kTypes, type, {}, &TypeRow::type);
  if (row == std::end(kTypes) || row->type != type) return std::nullopt;
  return row->kind;
}

// Of an instance in parts, the first part that has a kind.
std::optional<Kind> kindOf(const StepText& file, const StepInstance& instance) {
  for (const std::string_view type : file.types(instance)) {
    if (const auto kind = kindOf(type)) return kind;
  }
  return std::nullopt;
}

bool isAnnotationKind(Kind kind) {
  return kind == Kind::kAnnotation || kind == Kind::kAnnotationPlane;
}

}  // namespace

OdStringArray stepLeftOut(const StepText& file, bool withAnnotations) {
  std::array<std::size_t, static_cast<std::size_t>(Kind::kCount)> counts{};
  for (const StepInstance& instance : file.instances()) {
    if (const auto kind = kindOf(file, instance)) ++counts[static_cast<std::size_t>(*kind)];
  }
  OdStringArray lines;
  for (std::size_t i = 0; i < counts.size(); ++i) {
    if (counts[i] == 0 || (withAnnotations && isAnnotationKind(static_cast<Kind>(i)))) continue;
    const KindName& name = kKindNames[i];
    lines.append(
        OdString(std::to_string(counts[i]) + " " + (counts[i] == 1 ? name.one : name.several)));
  }
  return lines;
}

bool isAnnotation(const StepText& file, const StepInstance& instance) {
  const auto kind = kindOf(file, instance);
  return kind && isAnnotationKind(*kind);
}

}  // namespace od_occt
