// What a persistent reference remembers of itself: its stored lineage.
#pragma once

#include <vector>

#include "host/naming/face_births.h"
#include "host/naming/reference_grade.h"
#include "host/naming/subent_signature.h"
#include "platform/base/handle.h"
#include "platform/filer/object_id.h"

class VdmDbObjectDependency;

namespace vdm_host {

/// What led to a decision. Numbers are stored.
enum class LineageCause : OdUInt8 {
  kCreated = 0,
  kBoolean = 1,
  kBlend = 2,
  kReplaced = 3,   ///< the body was replaced, or edited without a journal
  kRespawned = 4,  ///< its opening was cut again
  kHealed = 5,     ///< its opening was closed
  kSplit = 6,
  kMerged = 7,
  kFoundAgain = 8,
};

/// "created", "boolean", "blend", "body replaced", "opening cut again", "opening closed", "split",
/// "merged", "found again".
[[nodiscard]] OdString causeName(LineageCause cause);

/// One decision. Exact ones are not recorded, except the first.
struct LineageStep {
  LineageCause cause = LineageCause::kCreated;
  ReferenceGrade grade = ReferenceGrade::kExact;
  OdUInt32 from = 0;    ///< number in the old body, 0 when it had none
  OdUInt32 to = 0;      ///< number in the new body, 0 when it has none
  OdUInt32 images = 0;  ///< how many there were to choose from
  OdDbHandle feature;   ///< the feature whose tool did it; null when none did
};

/// Where a subentity comes from.
struct LineageBirth {
  OdDbHandle feature;     ///< whose tool made it; null for a subentity of the base part
  OdUInt32 toolFace = 0;  ///< the tool's face; for edges and vertices one of the faces that meet

  [[nodiscard]] bool isOfTool() const { return OdUInt64(feature) != 0; }
};

/// The record under the key "lineage" (a blob) in the dependency's properties. The coordinates of
/// its signature are those of the solid when it was where SolidStamp::frame is the identity.
///
///   rules      uint8     2; a record of later rules is kept and counts as "no signature". One of
///                        rules 1 has no births and gets them with the next decision
///   grade      uint8
///   flags      uint8     1 birth, 2 signature, 4 births
///   lastIndex  varint    the number it had last
///   birth      varint feature handle, varint tool face
///   births     varint sets, of each varint count, of each birth varint maker (SolidBirths), key
///   signature  uint8 kind, uint8 inward and closed (1, 2), varint bounds, uint32 neighbours,
///              float64 size, radius, minorRadius, halfAngle, place xyz, anchor xyz, direction xyz
///   count      varint    all steps that there were
///   kept       uint8     steps that follow, the oldest first
///   step       uint8 cause, uint8 grade, varint from, to, images, feature handle
///
/// Numbers are little-endian; a varint has seven bits a byte, low ones first.
struct ReferenceRecord {
  static constexpr OdUInt8 kRules = 2;
  static constexpr OdUInt8 kFirstRules = 1;
  static constexpr std::size_t kKeptSteps = 8;

  ReferenceGrade grade = ReferenceGrade::kExact;
  OdUInt32 lastIndex = 0;
  LineageBirth birth;
  /// One set for a face, one for each face at an edge or vertex; none when not known.
  std::vector<BirthSet> births;
  SubentSignature signature;  ///< type null when there is none
  OdUInt32 stepCount = 0;
  std::vector<LineageStep> steps;

  void addStep(const LineageStep& step);
  [[nodiscard]] std::vector<char> encode() const;
  /// False, with the record untouched, for bytes that are damaged or of later rules.
  [[nodiscard]] bool decode(const std::vector<char>& bytes, OdModelerSubentType type);

  /// The bytes of a dependency's record, into a value that can be used again; none when it has
  /// none.
  static void readBytes(const VdmDbObjectDependency& dependency, std::vector<char>& bytes);
  /// False when the dependency has none that can be read.
  [[nodiscard]] bool readFrom(const VdmDbObjectDependency& dependency);
  /// Also makes the dependency's hash that of the signature. Open for write. A record of later
  /// rules stays as it is.
  void writeTo(VdmDbObjectDependency& dependency) const;
};

/// Numbers of references that lead nowhere: no body has such a number, and no two references of a
/// drawing share one.
inline constexpr OdUInt32 kFirstUnresolvedIndex = 0x40000000U;
[[nodiscard]] constexpr bool isUnresolvedIndex(OdInt64 index) {
  return index >= OdInt64{kFirstUnresolvedIndex};
}
[[nodiscard]] OdInt64 unresolvedIndexOf(const OdDbObjectId& dependency);

}  // namespace vdm_host
