// Draws a block into a scene: the drawing context of the pictures.
//
// The block's drawable walks its entities and calls back with primitives; a block reference pushes
// its transform and walks the entities of its block in turn. What arrives is sorted into shapes,
// one for each entity and look, and instances, one for each place at which a shape appears. Shapes
// are in the coordinates of their block. An entity that comes again with the same settled look
// (colour, layer, line type, material) is not drawn again: a part that is inserted a thousand times
// costs one mesh and a thousand matrices.
//
// The key of a shape must hold everything from outside the entity that its primitives depend on.
// That is the look of the reference around it, which only enters through attributes "by block", and
// these are settled before the key is made. Transforms stay out of it: primitives are taken back
// through the transform that was in force when the shape began.
//
// An entity that raises is left out with a warning. The stack of transforms and the traits return
// to what they were before it, so that the entities after it are drawn as if it were not there.
// The cost is one pass over the entities of each occurrence and over the primitives of each shape.
#include <map>
#include <optional>
#include <tuple>
#include <utility>

#include "host/rendering/scene.h"
#include "platform/base/error.h"
#include "platform/base/non_copyable.h"
#include "platform/db/block_table_record.h"
#include "platform/db/dash_drawing.h"
#include "platform/db/database.h"
#include "platform/db/display_attributes.h"
#include "platform/db/material.h"
#include "platform/entities/block_reference.h"
#include "platform/gi/plain_traits.h"
#include "platform/gi/world_draw.h"

namespace rendering {

namespace {

constexpr OdGsMarker kMarkersPerPart = 4;
constexpr OdGsMarker kEdgeRest = 2;  // edge i has the marker 4 i + 2

bool isEdgeMarker(OdGsMarker marker) {
  return marker > kMarkersPerPart && marker % kMarkersPerPart == kEdgeRest;
}

std::string handleText(const OdDbObjectId& id) {
  return static_cast<const char*>(id.getHandle().ascii());
}

// Index 7 is the colour that contrasts with the background: black on white, white on black.
constexpr OdUInt16 kForeground = 7;
constexpr RenderColor kPlainSurface{186, 196, 208};
constexpr RenderColor kPlainLine{30, 32, 36};

RenderColor toColor(const OdCmEntityColor& color, const RenderColor& plain) {
  if (!color.isByColor() && (!color.isByACI() || color.colorIndex() == kForeground)) return plain;
  const OdCmEntityColor value = color.toRGB();
  return {value.red(), value.green(), value.blue()};
}

SurfaceLook lookOf(const OdDbDisplayAttributes& attributes) {
  SurfaceLook look{toColor(attributes.color, kPlainSurface)};
  const OdDbMaterialPtr material = attributes.material.openAs<OdDbMaterial>();
  if (material.isNull()) return look;
  if (!material->diffuse().isByLayer()) look.color = toColor(material->diffuse(), kPlainSurface);
  look.opacity = material->opacity();
  look.shininess = material->shininess();
  return look;
}

/// While it lives lines are drawn without the pattern of their line type.
class WholeLines : OdNonCopyable {
 public:
  explicit WholeLines(bool& flag, bool isWhole = true) : m_flag(flag), m_before(flag) {
    flag = flag || isWhole;
  }
  ~WholeLines() { m_flag = m_before; }

 private:
  bool& m_flag;
  bool m_before;
};

/// Collects the primitives of one entity at a time. An entity that was drawn before with the same
/// settled look is not drawn again: its shape gets another occurrence.
class SceneDraw : public OdGiWorldDraw, public OdGiWorldGeometry, public OdGiContext {
 public:
  SceneDraw(OdDbDatabase& database, double deviation)
      : m_database(database), m_deviation(deviation) {}

  Scene take() { return std::move(m_scene); }

  OdGiContext* context() const override { return const_cast<SceneDraw*>(this); }
  OdGiRegenType regenType() const override { return kOdGiStandardDisplay; }
  OdGiWorldGeometry& geometry() const override { return const_cast<SceneDraw&>(*this); }
  OdGiSubEntityTraits& subEntityTraits() const override { return m_traits; }
  double deviation() const override { return m_deviation; }
  OdRxObject* database() const override { return &m_database; }

  void pushModelTransform(const OdGeMatrix3d& toOuter) override {
    m_transforms.push_back(m_transforms.back() * toOuter);
  }
  void popModelTransform() override {
    if (m_transforms.size() == 1) throw OdError(eInvalidInput, OdString("no transform was pushed"));
    m_transforms.pop_back();
  }
  OdGeMatrix3d getModelToWorldTransform() const override { return m_transforms.back(); }

  void polyline(std::span<const OdGePoint3d> points) override;
  void text(const OdGiText& text) override;
  void polygon(std::span<const OdGePoint3d> points) override;
  void shell(const OdGiShell& shell) override;
  void draw(const OdGiDrawable* drawable) override;

 private:
  using ShapeKey = std::tuple<OdDbObjectId, RenderColor, OdDbObjectId, OdDbObjectId, OdDbObjectId>;

  void drawWithAttributes(const OdGiDrawable& drawable);
  void drawReference(const OdDbBlockReference& reference, const OdDbDisplayAttributes& look);
  void drawEntity(const OdDbObject* object, const OdGiDrawable& drawable,
                  const OdDbDisplayAttributes& look);
  void addInstance(std::size_t shape, const OdDbObject* object);
  [[nodiscard]] OdDbDisplayAttributes settled() const;
  [[nodiscard]] OdGeMatrix3d toShape() const;
  Surface& surfaceFor(const SurfaceLook& look);
  void warn(const OdGiDrawable& drawable, const std::string& what);

  OdDbDatabase& m_database;
  double m_deviation;
  mutable OdStaticRxObject<OdGiPlainTraits> m_traits;
  std::vector<OdGeMatrix3d> m_transforms{OdGeMatrix3d()};
  std::vector<OdDbDisplayAttributes> m_blocks;  // of the references around, settled
  std::string m_path;                           // their handles, each with a slash
  Scene m_scene;
  std::map<ShapeKey, std::size_t> m_known;
  Shape m_shape;                 // being drawn
  std::size_t m_shapeLevel = 1;  // transforms on the stack when the shape began
  bool m_isWhole = false;        // lines have no pattern now
};

OdDbDisplayAttributes SceneDraw::settled() const {
  return oddbSettleDisplay(m_traits, m_blocks.empty() ? nullptr : &m_blocks.back());
}

OdGeMatrix3d SceneDraw::toShape() const {
  if (m_transforms.size() == m_shapeLevel) return {};
  return m_transforms[m_shapeLevel - 1].inverse() * m_transforms.back();
}

void SceneDraw::warn(const OdGiDrawable& drawable, const std::string& what) {
  const auto* object = dynamic_cast<const OdDbObject*>(&drawable);
  const std::string name = object ? m_path + handleText(object->objectId()) : "a drawable";
  m_scene.warnings.push_back("object " + name + ": " + what);
}

void SceneDraw::draw(const OdGiDrawable* drawable) {
  if (!drawable) return;
  const OdGiPlainTraits::Values outer = m_traits.values();
  const std::size_t transforms = m_transforms.size();
  m_traits.setValues({});
  try {
    drawWithAttributes(*drawable);
  } catch (const OdError& error) {
    m_transforms.resize(transforms);
    warn(*drawable, static_cast<const char*>(error.description()));
  }
  m_traits.setValues(outer);
}

void SceneDraw::drawWithAttributes(const OdGiDrawable& drawable) {
  if (!drawable.setAttributes(&m_traits)) return;
  const OdDbDisplayAttributes look = settled();
  if (!look.visible) return;
  if (const auto* reference = dynamic_cast<const OdDbBlockReference*>(&drawable)) {
    return drawReference(*reference, look);
  }
  drawEntity(dynamic_cast<const OdDbObject*>(&drawable), drawable, look);
}

void SceneDraw::drawReference(const OdDbBlockReference& reference,
                              const OdDbDisplayAttributes& look) {
  const std::size_t length = m_path.size();
  m_path += handleText(reference.objectId()) + "/";
  m_blocks.push_back(look);
  bool complete = false;
  try {
    complete = reference.worldDraw(this);
  } catch (...) {
    m_blocks.pop_back();
    m_path.resize(length);
    throw;
  }
  m_blocks.pop_back();
  m_path.resize(length);
  if (!complete) warn(reference, "its block could not be drawn whole");
}

void SceneDraw::drawEntity(const OdDbObject* object, const OdGiDrawable& drawable,
                           const OdDbDisplayAttributes& look) {
  const OdDbObjectId id = object ? object->objectId() : OdDbObjectId();
  const ShapeKey key{id, toColor(look.color, kPlainSurface), look.layer, look.lineType,
                     look.material};
  if (const auto known = m_known.find(key); known != m_known.end() && !id.isNull()) {
    return addInstance(known->second, object);
  }
  m_shape = {};
  m_shapeLevel = m_transforms.size();
  const bool complete = drawable.worldDraw(this);
  if (!complete) warn(drawable, "could not be drawn whole");
  if (m_shape.isEmpty()) return;
  m_shape.name = id.isNull() ? std::string("drawable") : handleText(id);
  m_scene.shapes.push_back(std::move(m_shape));
  m_known.insert_or_assign(key, m_scene.shapes.size() - 1);
  addInstance(m_scene.shapes.size() - 1, object);
}

void SceneDraw::addInstance(std::size_t shape, const OdDbObject* object) {
  const std::string name = object ? handleText(object->objectId()) : m_scene.shapes[shape].name;
  m_scene.instances.push_back({shape, m_transforms.back(), m_path + name});
}

Surface& SceneDraw::surfaceFor(const SurfaceLook& look) {
  for (Surface& surface : m_shape.surfaces) {
    if (surface.look == look) return surface;
  }
  m_shape.surfaces.push_back({look, {}, {}, {}, {}});
  return m_shape.surfaces.back();
}

void SceneDraw::polyline(std::span<const OdGePoint3d> points) {
  if (points.size() < 2) {
    throw OdError(eInvalidInput, OdString("a polyline of " + std::to_string(points.size()) +
                                          " points, the least is 2"));
  }
  const OdDbDisplayAttributes look = settled();
  if (const OdDbLinetypeTableRecordPtr pattern = look.lineType.openAs<OdDbLinetypeTableRecord>();
      !m_isWhole && !pattern.isNull() && pattern->numDashes() > 0) {
    const WholeLines whole(m_isWhole);
    const double scale = m_database.getLTSCALE() * m_traits.lineTypeScale();
    return oddbDrawDashed(*this, points, *pattern, scale);
  }
  const OdGeMatrix3d matrix = toShape();
  Line line{{}, toColor(look.color, kPlainLine), isEdgeMarker(m_traits.selectionMarker())};
  line.points.reserve(points.size());
  for (const OdGePoint3d& point : points) line.points.push_back(matrix * point);
  m_shape.lines.push_back(std::move(line));
}

// Characters take no part in the pattern of the line type.
void SceneDraw::text(const OdGiText& text) {
  const WholeLines whole(m_isWhole);
  OdGiWorldGeometry::text(text);
}

// Filled as a fan from the first point where that fan covers the outline, as it does every convex
// one; other polygons show their outline only.
void SceneDraw::polygon(std::span<const OdGePoint3d> points) {
  if (points.size() < 3) {
    throw OdError(eInvalidInput, OdString("a polygon of " + std::to_string(points.size()) +
                                          " points, the least is 3"));
  }
  std::vector<OdGePoint3d> outline(points.begin(), points.end());
  outline.push_back(outline.front());
  {
    const WholeLines whole(m_isWhole, m_traits.fillType() != OdGiFillType::kFillNever);
    polyline(outline);
  }
  if (m_traits.fillType() == OdGiFillType::kFillNever) return;
  // The sum of the fan's normals is twice the signed area. A triangle that turns the other way lies
  // outside the outline in part.
  OdGeVector3d normal;
  for (std::size_t i = 1; i + 1 < points.size(); ++i) {
    normal += (points[i] - points[0]).crossProduct(points[i + 1] - points[0]);
  }
  std::vector<std::array<OdUInt32, 3>> triangles;
  for (std::size_t i = 1; i + 1 < points.size(); ++i) {
    const OdGeVector3d turn = (points[i] - points[0]).crossProduct(points[i + 1] - points[0]);
    if (turn.dotProduct(normal) < 0.0) return;
    triangles.push_back({0, static_cast<OdUInt32>(i), static_cast<OdUInt32>(i + 1)});
  }
  shell({points, {}, triangles, {}});
}

void checkShell(const OdGiShell& shell) {
  const auto fits = [](std::size_t size, std::size_t wanted) {
    return size == 0 || size == wanted;
  };
  const bool sizesFit = fits(shell.normals.size(), shell.points.size()) &&
                        fits(shell.faces.colors.size(), shell.triangles.size()) &&
                        fits(shell.faces.markers.size(), shell.triangles.size());
  if (!sizesFit) throw OdError(eInvalidInput, OdString("the arrays of a shell do not fit"));
  for (const auto& triangle : shell.triangles) {
    for (const OdUInt32 corner : triangle) {
      if (corner >= shell.points.size()) {
        throw OdError_InvalidIndex(corner, static_cast<OdInt64>(shell.points.size()));
      }
    }
  }
}

/// Puts triangles of a shell into surfaces. A point is shared by the triangles of one surface;
/// where the shell has no normals, each triangle has points of its own with its normal.
class ShellPlacer {
 public:
  ShellPlacer(const OdGiShell& shell, const OdGeMatrix3d& toShape)
      : m_shell(shell), m_normals(toShape.inverse().transpose()), m_flips(toShape.det() < 0.0) {
    m_points.reserve(shell.points.size());
    for (const OdGePoint3d& point : shell.points) m_points.push_back(toShape * point);
  }

  void add(std::size_t index, Surface& surface, OdGsMarker marker) {
    std::array<OdUInt32, 3> corners = m_shell.triangles[index];
    // A mirror turns the order of corners round; swapping two keeps the front in front.
    if (m_flips) std::swap(corners[1], corners[2]);
    const OdGePoint3d& first = m_points[corners[0]];
    const OdGeVector3d across =
        (m_points[corners[1]] - first).crossProduct(m_points[corners[2]] - first);
    const double area = across.length();
    // A triangle without area has no normal and covers no sample; this drops NaN as well.
    if (!(area > 0.0)) return;
    std::vector<std::uint32_t>& placed = placedIn(surface.look);
    std::array<std::uint32_t, 3> triangle{};
    for (std::size_t k = 0; k < 3; ++k) {
      std::uint32_t& at = placed[corners[k]];
      if (at == kNone || m_shell.normals.empty()) {
        at = static_cast<std::uint32_t>(surface.points.size());
        surface.points.push_back(m_points[corners[k]]);
        surface.normals.push_back(normalAt(corners[k], across / area));
      }
      triangle[k] = at;
    }
    surface.triangles.push_back(triangle);
    surface.parts.push_back(static_cast<std::uint32_t>(marker / kMarkersPerPart));
  }

 private:
  static constexpr std::uint32_t kNone = 0xFFFFFFFF;

  std::vector<std::uint32_t>& placedIn(const SurfaceLook& look) {
    std::vector<std::uint32_t>& placed = m_placed[look];
    if (placed.empty()) placed.assign(m_points.size(), kNone);
    return placed;
  }

  [[nodiscard]] OdGeVector3d normalAt(OdUInt32 corner, const OdGeVector3d& flat) const {
    if (m_shell.normals.empty()) return flat;
    const OdGeVector3d own = m_normals * m_shell.normals[corner];
    const double length = own.length();
    return length > 0.0 ? own / length : flat;
  }

  const OdGiShell& m_shell;
  OdGeMatrix3d m_normals;
  bool m_flips;
  std::vector<OdGePoint3d> m_points;
  std::map<SurfaceLook, std::vector<std::uint32_t>> m_placed;  // indices in the surface, by point
};

void SceneDraw::shell(const OdGiShell& shell) {
  checkShell(shell);
  const OdGiFaceData& faces = shell.faces;
  const OdCmEntityColor color = m_traits.trueColor();
  const OdGsMarker marker = m_traits.selectionMarker();
  ShellPlacer placer(shell, toShape());
  SurfaceLook look = lookOf(settled());
  for (std::size_t i = 0; i < shell.triangles.size(); ++i) {
    // Neighbours mostly share their colour; settling a look opens layer and material.
    if (!faces.colors.empty() && (i == 0 || faces.colors[i] != faces.colors[i - 1])) {
      m_traits.setTrueColor(faces.colors[i]);
      look = lookOf(settled());
    }
    placer.add(i, surfaceFor(look), faces.markers.empty() ? marker : faces.markers[i]);
  }
  m_traits.setTrueColor(color);
}

}  // namespace

OdGeExtents3d Shape::extents() const {
  OdGeExtents3d box;
  for (const Surface& surface : surfaces) {
    for (const OdGePoint3d& point : surface.points) box.addPoint(point);
  }
  for (const Line& line : lines) {
    for (const OdGePoint3d& point : line.points) box.addPoint(point);
  }
  return box;
}

OdGeExtents3d Scene::extents() const {
  std::vector<OdGeExtents3d> boxes;
  for (const Shape& shape : shapes) boxes.push_back(shape.extents());
  OdGeExtents3d sum;
  for (const Instance& instance : instances) {
    OdGeExtents3d box = boxes[instance.shape];
    sum.addExt(box.transformBy(instance.toWorld));
  }
  return sum;
}

Scene drawScene(OdDbDatabase& database, const OdDbObjectId& block, double deviation) {
  const OdDbObjectId id = block.isNull() ? database.getModelSpaceId() : block;
  const OdDbBlockTableRecordPtr record = id.openAs<OdDbBlockTableRecord>();
  if (record.isNull()) {
    throw OdError(eWrongObjectType, OdString("object ") + id.getHandle().ascii() + " as block");
  }
  OdStaticRxObject<SceneDraw> draw(database, deviation);
  record->worldDraw(&draw);
  return draw.take();
}

}  // namespace rendering
