// Example: walks the blocks and inserts of a drawing, and draws its solids into an SVG picture.
//
//   draw_picture DRAWING OUT.svg
//
// Seen from the front right above, without perspective; faces nearer to the eye cover those behind.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "platform/base/error.h"
#include "platform/db/block_reference.h"
#include "platform/db/block_table_record.h"
#include "platform/db/database.h"
#include "platform/db/db_init.h"
#include "platform/db/host_app_services.h"
#include "platform/modeler/db_3d_solid.h"
#include "platform/modeler_occt/occt_modeler.h"
#include "platform/storage/sqlite_record_store.h"

namespace {

constexpr double kPictureWidth = 800;  // pixels
constexpr double kMargin = 20;
constexpr int kMaxNesting = 32;    // blocks within blocks
constexpr double kMaxEdge = 0.03;  // longest edge drawn in one piece, as a part of the width

const OdGeVector3d kRight = OdGeVector3d(1, 1, 0).normal();
const OdGeVector3d kUp = OdGeVector3d(-1, 1, 2).normal();
const OdGeVector3d kToEye = OdGeVector3d(1, -1, 1).normal();
const OdGeVector3d kLight = OdGeVector3d(0.3, -0.7, 1).normal();

struct Color {
  double red = 0.62, green = 0.68, blue = 0.75;
};

struct Triangle {
  std::array<std::array<double, 3>, 3> corners;  // right, up, towards the eye
  double light;                                  // 0 to 1
  Color color;
};

double dot(const OdGeVector3d& a, const OdGePoint3d& b) {
  return a.x * b.x + a.y * b.y + a.z * b.z;
}

class Picture {
 public:
  void add(const OdModelerBodyPtr& body, const OdGeMatrix3d& placement, const Color& color) {
    OdModelerMesh mesh;
    OdModelerMeshOptions options;
    if (!body->tessellate(options, mesh).ok()) return;
    for (const OdModelerFaceMesh& face : mesh.faces) {
      for (const auto& triangle : face.triangles) addTriangle(face, triangle, placement, color);
    }
  }

  void write(std::FILE* file) {
    divideLargeTriangles();
    std::sort(m_triangles.begin(), m_triangles.end(),
              [](const Triangle& a, const Triangle& b) { return depth(a) < depth(b); });
    const double scale = (kPictureWidth - 2 * kMargin) / std::max(m_high[0] - m_low[0], 1e-9);
    const double height = (m_high[1] - m_low[1]) * scale + 2 * kMargin;
    std::fprintf(file,
                 "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%.0f\" height=\"%.0f\">\n",
                 kPictureWidth, height);
    for (const Triangle& triangle : m_triangles) {
      const auto shade = [&triangle](double part) {
        return static_cast<int>(255 * std::min(1.0, part * (0.35 + 0.65 * triangle.light)));
      };
      const int red = shade(triangle.color.red);
      const int green = shade(triangle.color.green);
      const int blue = shade(triangle.color.blue);
      std::fprintf(file, "<path d=\"");
      for (std::size_t i = 0; i < 3; ++i) {
        std::fprintf(file, "%c%.1f %.1f", i == 0 ? 'M' : 'L',
                     (triangle.corners[i][0] - m_low[0]) * scale + kMargin,
                     height - kMargin - (triangle.corners[i][1] - m_low[1]) * scale);
      }
      std::fprintf(file,
                   "Z\" fill=\"#%02x%02x%02x\" stroke=\"#%02x%02x%02x\" stroke-width=\".6\"/>\n",
                   red, green, blue, red, green, blue);
    }
    std::fprintf(file, "</svg>\n");
  }

 private:
  static double depth(const Triangle& triangle) {
    return triangle.corners[0][2] + triangle.corners[1][2] + triangle.corners[2][2];
  }

  // Drawing from back to front needs pieces that are small beside the distances between faces: the
  // longest edge is halved until all are short.
  void divideLargeTriangles() {
    const double longest = (m_high[0] - m_low[0]) * kMaxEdge;
    for (std::size_t i = 0; i < m_triangles.size();) {
      std::size_t widest = 0;
      double length = 0;
      for (std::size_t edge = 0; edge < 3; ++edge) {
        const auto& from = m_triangles[i].corners[edge];
        const auto& to = m_triangles[i].corners[(edge + 1) % 3];
        const double size = std::hypot(to[0] - from[0], to[1] - from[1], to[2] - from[2]);
        if (size > length) {
          length = size;
          widest = edge;
        }
      }
      if (length <= longest) {
        ++i;
        continue;
      }
      Triangle other = m_triangles[i];
      const std::size_t next = (widest + 1) % 3;
      std::array<double, 3> middle{};
      for (std::size_t axis = 0; axis < 3; ++axis) {
        middle[axis] = (other.corners[widest][axis] + other.corners[next][axis]) / 2;
      }
      m_triangles[i].corners[next] = middle;
      other.corners[widest] = middle;
      m_triangles.push_back(other);
    }
  }

  void addTriangle(const OdModelerFaceMesh& face, const std::array<OdUInt32, 3>& indices,
                   const OdGeMatrix3d& placement, const Color& color) {
    std::array<OdGePoint3d, 3> points;
    for (std::size_t i = 0; i < 3; ++i) points[i] = placement * face.points[indices[i]];
    OdGeVector3d normal = (points[1] - points[0]).crossProduct(points[2] - points[0]);
    if (normal.length() == 0 || normal.dotProduct(kToEye) <= 0) return;  // faces away
    normal = normal.normal();
    Triangle triangle{};
    triangle.color = color;
    triangle.light = std::max(0.0, normal.dotProduct(kLight));
    for (std::size_t i = 0; i < 3; ++i) {
      triangle.corners[i] = {dot(kRight, points[i]), dot(kUp, points[i]), dot(kToEye, points[i])};
      for (std::size_t axis = 0; axis < 2; ++axis) {
        m_low[axis] = std::min(m_low[axis], triangle.corners[i][axis]);
        m_high[axis] = std::max(m_high[axis], triangle.corners[i][axis]);
      }
    }
    m_triangles.push_back(triangle);
  }

  std::vector<Triangle> m_triangles;
  std::array<double, 2> m_low = {1e300, 1e300};
  std::array<double, 2> m_high = {-1e300, -1e300};
};

Color colorOf(const OdDbEntity* entity) {
  const OdCmColor color = entity->color();
  if (!color.isByColor()) return Color();
  return {color.red() / 255.0, color.green() / 255.0, color.blue() / 255.0};
}

void addBlock(Picture& picture, const OdDbObjectId& block, const OdGeMatrix3d& placement,
              int nesting) {
  if (nesting > kMaxNesting) return;
  const OdDbBlockTableRecordPtr record = OdDbBlockTableRecord::cast(block.safeOpenObject());
  for (const OdDbObjectIteratorPtr it = record->newIterator(); !it->done(); it->step()) {
    const OdDbObjectPtr object = it->objectId().openObject();
    if (const OdDb3dSolidPtr solid = OdDb3dSolid::cast(object); !solid.isNull()) {
      if (!solid->isNull()) picture.add(solid->body(), placement, colorOf(solid));
    } else if (const OdDbBlockReferencePtr insert = OdDbBlockReference::cast(object);
               !insert.isNull()) {
      addBlock(picture, insert->blockTableRecord(), placement * insert->blockTransform(),
               nesting + 1);
    }
  }
}

void draw(const char* drawingPath, const char* picturePath) {
  OdDbHostAppServices services(createSqliteStoreFactory());
  OdDbStoreStatus status;
  OdDbReadOptions options;
  options.mode = OdDbStoreOpenMode::kReadOnly;
  const OdDbDatabasePtr drawing = services.readFile(OdString(drawingPath), status, options);
  if (!status.ok()) throw OdError(status.code, status.text);
  Picture picture;
  addBlock(picture, drawing->getModelSpaceId(), OdGeMatrix3d(), 0);
  std::FILE* file = std::fopen(picturePath, "w");
  if (file == nullptr) throw OdError(eFileAccess, OdString(picturePath));
  picture.write(file);
  if (std::fclose(file) != 0) throw OdError(eFileWriteError, OdString(picturePath));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: draw_picture DRAWING OUT.svg\n");
    return 2;
  }
  try {
    oddbInitialize();
    odModelerInitialize();
    odInstallOcctModeler();
    draw(argv[1], argv[2]);
    odModelerUninitialize();
    oddbUninitialize();
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "draw_picture: %s\n", error.what());
    return 1;
  }
}
