// OdDb3dSolid: a body in a drawing.
#pragma once

#include <span>

#include "platform/base/array.h"
#include "platform/db/entity.h"
#include "platform/modeler/modeler.h"

class OdDb3dSolid;
struct OdSolidChange;
enum class OdSolidChangeKind : OdUInt8;
using OdDb3dSolidPtr = OdSmartPtr<OdDb3dSolid>;

/// Start and end of this folder's run-time classes, after oddbInitialize() and before
/// oddbUninitialize(). Calls nest as those do.
void odModelerInitialize();
void odModelerUninitialize();

/// An entity that holds a body of the modeller, in the coordinates of its block and in drawing
/// units. It may be empty. Bodies are immutable and shared: copies of a solid share theirs.
///
/// The body is filed as bytes, and read from them when it is first asked for. Bytes that cannot be
/// read are kept as they are.
///
/// Faces, edges and vertices are numbered from 1 (OdDbSubentId) as the body numbers them; face i
/// has the selection marker 4 i + 1, edge i 4 i + 2, vertex i 4 i + 3.
///
/// Operations report through a status; one that fails leaves the solid as it was, without an undo
/// record. They need the modeller of the process (odSetModeler), and raise eNoModeler without it.
///
/// A change of the body is recorded in the thread's journal (platform/modeler/solid_journal.h), if
/// there is one.
class OdDb3dSolid : public OdDbEntity {
 public:
  OD_RX_DECLARE_MEMBERS(OdDb3dSolid)

  OdDb3dSolid();
  ~OdDb3dSolid() override;

  // The body.
  /// Whether there is no body; reads nothing.
  [[nodiscard]] bool isNull() const;
  /// Null when the solid is empty. Raises the code of the failure when the bytes cannot be read.
  [[nodiscard]] OdModelerBodyPtr body() const;
  /// The same without raising; `body` stays as it is on failure.
  OdStatus getBody(OdModelerBodyPtr& body) const;
  /// Null empties the solid.
  void setBody(OdModelerBodyPtr body);

  // Elementary bodies in place of the present one; positions and limits as in OdModeler.
  OdStatus createBox(double dx, double dy, double dz);
  OdStatus createCylinder(double radius, double height);
  OdStatus createCone(double bottomRadius, double topRadius, double height);
  OdStatus createSphere(double radius);
  OdStatus createTorus(double majorRadius, double minorRadius);
  OdStatus createWedge(double dx, double dy, double dz, double topDx);
  OdStatus extrude(const OdModelerProfile& profile, const OdGeVector3d& direction);
  OdStatus revolve(const OdModelerProfile& profile, const OdGePoint3d& axisPoint,
                   const OdGeVector3d& axis, double angle);

  // Operations. `history` may be null; its first input is this solid, the others are the tools.
  /// `tool` stays as it is.
  OdStatus booleanOper(OdModelerBooleanKind kind, const OdDb3dSolid& tool,
                       OdModelerHistory* history = nullptr);
  OdStatus booleanOper(OdModelerBooleanKind kind, std::span<const OdModelerBodyPtr> tools,
                       OdModelerHistory* history = nullptr);
  OdStatus filletEdges(std::span<const OdUInt32> edges, double radius,
                       OdModelerHistory* history = nullptr);
  OdStatus chamferEdges(std::span<const OdUInt32> edges, double distance,
                        OdModelerHistory* history = nullptr);
  /// As OdModeler::removeFaces.
  OdStatus removeFaces(std::span<const OdUInt32> faces, OdModelerHistory* history = nullptr);

  // Subentities.
  [[nodiscard]] OdUInt32 numSubents(OdDb::SubentType type) const;
  /// Colour of a face of its own; by layer when it has none. Raises eInvalidIndex for a face that
  /// is not there.
  [[nodiscard]] OdCmColor getFaceColor(OdGsMarker face) const;
  /// A colour by value, or by layer to take the face's own colour away; others raise eInvalidInput.
  void setFaceColor(OdGsMarker face, const OdCmColor& color);
  /// A solid in no database with the subentity alone and this solid's properties.
  [[nodiscard]] OdDbEntityPtr subentPtr(const OdDbFullSubentPath& path) const override;
  /// The markers of a subentity; those of all faces for the null subentity. eInvalidInput for one
  /// that is not there.
  OdResult getGsMarkersAtSubentPath(const OdDbFullSubentPath& path,
                                    OdArray<OdGsMarker>& markers) const override;
  /// The path of a marker, preceded by the block references of `insertStack` from the outermost
  /// inwards. `type` is the marker's own or null. eInvalidInput for a marker of nothing.
  OdResult getSubentPathsAtGsMarker(OdDb::SubentType type, OdGsMarker marker,
                                    OdDbFullSubentPathArray& paths,
                                    const OdDbObjectIdArray* insertStack = nullptr) const override;

  // Measures.
  OdResult getGeomExtents(OdGeExtents3d& extents) const override;
  /// eNotApplicable for an empty solid.
  OdResult getMassProp(OdModelerMassProperties& properties) const;

  OdResult dwgInFields(OdDbDwgFiler* filer) override;
  void dwgOutFields(OdDbDwgFiler* filer) const override;
  void audit(OdDbAuditInfo* info) override;
  [[nodiscard]] std::size_t approximateSize() const override;

 protected:
  /// Face by face, then edge by edge without seams, each under its selection marker. A face has its
  /// own colour, else that of the entity, and for an entity by layer that of the body. False when
  /// the body cannot be read or meshed.
  bool subWorldDraw(OdGiWorldDraw* context) const override;
  OdResult subTransformBy(const OdGeMatrix3d& transform) override;

 private:
  void setBody(OdModelerBodyPtr body, OdSolidChange change);
  void replaceBody(OdModelerBodyPtr body, OdSolidChange change);
  OdStatus adopt(OdStatus status, OdModelerBodyPtr body, OdSolidChange change);
  template <class Make>
  OdStatus create(const Make& make);
  template <class Operation>
  OdStatus operate(const char* name, OdSolidChangeKind kind,
                   std::span<const OdModelerBodyPtr> tools, OdModelerHistory* history,
                   const Operation& operation);
  OdStatus requireBody(const char* operation, OdModelerBodyPtr& body) const;
  [[nodiscard]] const OdBinaryData& storedBytes() const;

  // The body, and the bytes it is stored as. A solid has at least one of them unless it is empty;
  // where it has both, they agree. Either is made from the other when it is first asked for, by the
  // one thread that uses the drawing.
  mutable OdModelerBodyPtr m_body;
  mutable OdBinaryData m_bytes;
};
