// The interface of a solid modeller.
#pragma once

#include <functional>
#include <memory>
#include <span>

#include "platform/base/array.h"
#include "platform/base/string.h"
#include "platform/modeler/assembly.h"
#include "platform/modeler/body.h"
#include "platform/modeler/history.h"
#include "platform/modeler/profile.h"

/// Numbers are stored and part of the interface of solids.
enum class OdModelerBooleanKind : OdInt32 { kUnite = 0, kIntersect = 1, kSubtract = 2 };

/// How exchange files are read.
struct OdModelerReadOptions {
  OdString encoding;         ///< of names with bytes outside of ASCII; empty to find it out
  bool annotations = false;  ///< read drawn annotations, too
};

/// A modeller makes bodies. One is installed per process with odSetModeler(). Operations report
/// through their status, never through exceptions; on failure `result` and `history` stay as they
/// were. All lengths are drawing units and all angles radians; primitives lie at the origin with
/// their axis along z and are moved with OdModelerBody::transformed().
///
/// Codes: eInvalidInput for sizes, indices and outlines that make no body, eDegenerateGeometry when
/// nothing is left of a boolean, eModelerInvalidBody when the outcome is not a sound body,
/// eModelerError for any other failure of the modeller.
class OdModeler {
 public:
  virtual ~OdModeler() = default;

  /// Name and version, for reports.
  [[nodiscard]] virtual OdString name() const = 0;

  // Primitives.
  /// From the origin to the point (dx, dy, dz).
  virtual OdStatus box(double dx, double dy, double dz, OdModelerBodyPtr& result) = 0;
  virtual OdStatus cylinder(double radius, double height, OdModelerBodyPtr& result) = 0;
  /// Either radius, but not both, may be 0; equal radii give a cylinder.
  virtual OdStatus cone(double bottomRadius, double topRadius, double height,
                        OdModelerBodyPtr& result) = 0;
  virtual OdStatus sphere(double radius, OdModelerBodyPtr& result) = 0;
  /// The minor radius is less than the major one.
  virtual OdStatus torus(double majorRadius, double minorRadius, OdModelerBodyPtr& result) = 0;
  /// A box whose top (at dz) is only `topDx` long; 0 gives a ridge.
  virtual OdStatus wedge(double dx, double dy, double dz, double topDx,
                         OdModelerBodyPtr& result) = 0;
  virtual OdStatus extrude(const OdModelerProfile& profile, const OdGeVector3d& direction,
                           OdModelerBodyPtr& result) = 0;
  /// Turns the profile by `angle` (0 to 2 pi, not 0) about an axis in its plane that does not cross
  /// it.
  virtual OdStatus revolve(const OdModelerProfile& profile, const OdGePoint3d& axisPoint,
                           const OdGeVector3d& axis, double angle, OdModelerBodyPtr& result) = 0;

  // Operations. `history` may be null.
  /// One body out of a base and tools. Faces of one surface that the boolean brings together become
  /// one; those that meet in an input stay apart. Attributes are the base's; faces keep colour and
  /// name.
  virtual OdStatus boolean(OdModelerBooleanKind kind, const OdModelerBodyPtr& base,
                           std::span<const OdModelerBodyPtr> tools, OdModelerBodyPtr& result,
                           OdModelerHistory* history) = 0;
  virtual OdStatus fillet(const OdModelerBodyPtr& body, std::span<const OdUInt32> edges,
                          double radius, OdModelerBodyPtr& result, OdModelerHistory* history) = 0;
  /// Both sides of each edge are cut back by `distance`.
  virtual OdStatus chamfer(const OdModelerBodyPtr& body, std::span<const OdUInt32> edges,
                           double distance, OdModelerBodyPtr& result,
                           OdModelerHistory* history) = 0;

  /// Takes faces off and closes the body again by extending their neighbours: without the faces of
  /// a hole or a boss the body is as if it never had one. eModelerError when the neighbours do not
  /// meet, eNotApplicable from a modeller that cannot do it.
  virtual OdStatus removeFaces(const OdModelerBodyPtr& body, std::span<const OdUInt32> faces,
                               OdModelerBodyPtr& result, OdModelerHistory* history);

  /// Several bodies as one, side by side, untouched; faces keep their colours.
  virtual OdStatus compound(std::span<const OdModelerBodyPtr> bodies, OdModelerBodyPtr& result) = 0;

  // Stored form and exchange.
  /// eCorruptData for bytes that are damaged or not a body, eUnsupportedVersion for a newer form.
  virtual OdStatus deserialise(const OdBinaryData& bytes, OdModelerBodyPtr& result) = 0;
  /// Reads a STEP file and the files of parts that it names. eFileNotFound, eFileAccess, or
  /// eModelerError for a file that is not STEP or has no geometry; eInvalidInput for an unknown
  /// encoding. A product is read once, however many times it occurs. What could be read is no
  /// failure: the notes of the assembly name what is missing in it.
  virtual OdStatus importStep(const OdString& path, const OdModelerReadOptions& options,
                              OdModelerAssembly& result) = 0;
  OdStatus importStep(const OdString& path, OdModelerAssembly& result) {
    return importStep(path, OdModelerReadOptions(), result);
  }
  /// Writes a STEP file beside the target and renames it, so that an old file stays whole on
  /// failure. It is in the unit of the assembly, or in millimetres when the format does not know
  /// that; it has the assembly's header, with a fixed date where that has none. The same assembly
  /// gives the same file.
  virtual OdStatus exportStep(const OdString& path, const OdModelerAssembly& assembly) = 0;
};

/// Installs the modeller of the process; null removes it. Not to be called while another thread
/// uses the modeller.
void odSetModeler(std::shared_ptr<OdModeler> modeler);

/// Makes a modeller. May raise OdError.
using OdModelerSource = std::function<std::shared_ptr<OdModeler>()>;

/// Installs a modeller that is made when it is first asked for, for hosts that often need none: a
/// modeller is much code to load. What `source` raises reaches who asks, and the next one asks it
/// again; when it gives null there is no modeller. It must not ask for the modeller itself.
void odSetModelerSource(OdModelerSource source);

/// The installed modeller. Raises OdError eNoModeler when there is none.
OdModeler& odModeler();

/// True when a modeller is installed, made or not.
[[nodiscard]] bool odHasModeler();
