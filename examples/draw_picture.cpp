// Example: walks the blocks and inserts of a drawing, and draws its solids into an SVG picture.
//
//   draw_picture DRAWING OUT.svg
//
// Seen from the front right above, without perspective; what is nearer to the eye covers the rest.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "platform/base/error.h"
#include "platform/db/block_reference.h"
#include "platform/db/block_table_record.h"
#include "platform/db/database.h"
#include "platform/db/db_init.h"
#include "platform/db/host_app_services.h"
#include "platform/ge/extents3d.h"
#include "platform/modeler/db_3d_solid.h"
#include "platform/modeler_occt/occt_modeler.h"
#include "platform/storage/sqlite_record_store.h"

namespace {

constexpr int kWidth = 800;  // pixels
constexpr int kMargin = 20;
constexpr int kMaxNesting = 32;  // blocks within blocks

const OdGeVector3d kRight = OdGeVector3d(1, 1, 0).normal();
const OdGeVector3d kUp = OdGeVector3d(-1, 1, 2).normal();
const OdGeVector3d kToEye = OdGeVector3d(1, -1, 1).normal();
const OdGeVector3d kLight = OdGeVector3d(0.3, -0.7, 1).normal();

struct Color {
  double red = 0.62, green = 0.68, blue = 0.75;
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

  /// One path for each colour, made of the horizontal runs of pixels that have it.
  void write(std::FILE* file) {
    if (m_triangles.empty()) throw OdError(eNotApplicable, OdString("there is nothing to draw"));
    rasterise();
    std::map<unsigned, std::string> paths;
    for (int y = 0; y < m_height; ++y) {
      for (int x = 0; x < kWidth;) {
        const unsigned color = pixel(x, y).color;
        const int first = x;
        while (x < kWidth && pixel(x, y).color == color) ++x;
        if (color == kBackground) continue;
        paths[color] +=
            "M" + std::to_string(first) + " " + std::to_string(y) + "h" + std::to_string(x - first);
      }
    }
    std::fprintf(file,
                 "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 -.5 %d %d\" "
                 "width=\"%d\" height=\"%d\" shape-rendering=\"crispEdges\">\n",
                 kWidth, m_height, kWidth, m_height);
    for (const auto& [color, path] : paths) {
      std::fprintf(file, "<path stroke=\"#%06x\" d=\"%s\"/>\n", color, path.c_str());
    }
    std::fprintf(file, "</svg>\n");
  }

 private:
  static constexpr unsigned kBackground = ~0u;
  struct Pixel {
    double depth = -1e300;
    unsigned color = kBackground;
  };
  struct Triangle {
    std::array<OdGePoint3d, 3> corners;  // right, up, towards the eye
    unsigned color;
  };

  Pixel& pixel(int x, int y) { return m_pixels[static_cast<std::size_t>(y * kWidth + x)]; }

  static unsigned shade(const Color& color, double light) {
    const auto part = [light](double value) {
      return static_cast<unsigned>(255 * std::min(1.0, value * (0.35 + 0.65 * light)));
    };
    return part(color.red) << 16 | part(color.green) << 8 | part(color.blue);
  }

  void addTriangle(const OdModelerFaceMesh& face, const std::array<OdUInt32, 3>& indices,
                   const OdGeMatrix3d& placement, const Color& color) {
    std::array<OdGePoint3d, 3> points;
    for (std::size_t i = 0; i < 3; ++i) points[i] = placement * face.points[indices[i]];
    OdGeVector3d normal = (points[1] - points[0]).crossProduct(points[2] - points[0]);
    if (normal.length() == 0 || normal.dotProduct(kToEye) <= 0) return;  // faces away
    Triangle triangle{};
    triangle.color = shade(color, std::max(0.0, normal.normal().dotProduct(kLight)));
    for (std::size_t i = 0; i < 3; ++i) {
      triangle.corners[i] = {dot(kRight, points[i]), dot(kUp, points[i]), dot(kToEye, points[i])};
      m_extents.addPoint(triangle.corners[i]);
    }
    m_triangles.push_back(triangle);
  }

  void rasterise() {
    const OdGePoint3d low = m_extents.minPoint();
    const OdGePoint3d high = m_extents.maxPoint();
    const double scale = (kWidth - 2 * kMargin) / std::max(high.x - low.x, 1e-9);
    m_height = static_cast<int>((high.y - low.y) * scale) + 2 * kMargin;
    m_pixels.assign(static_cast<std::size_t>(kWidth * m_height), Pixel());
    for (Triangle triangle : m_triangles) {
      for (OdGePoint3d& corner : triangle.corners) {
        corner.x = (corner.x - low.x) * scale + kMargin;
        corner.y = m_height - kMargin - (corner.y - low.y) * scale;
      }
      fill(triangle);
    }
  }

  // Each pixel whose middle lies in the triangle, by its barycentric coordinates.
  void fill(const Triangle& triangle) {
    const auto& [a, b, c] = triangle.corners;
    const double area = (b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y);
    if (area == 0) return;
    const int top = static_cast<int>(std::floor(std::min({a.y, b.y, c.y})));
    const int bottom = static_cast<int>(std::ceil(std::max({a.y, b.y, c.y})));
    const int left = static_cast<int>(std::floor(std::min({a.x, b.x, c.x})));
    const int right = static_cast<int>(std::ceil(std::max({a.x, b.x, c.x})));
    for (int y = std::max(0, top); y < std::min(m_height, bottom); ++y) {
      for (int x = std::max(0, left); x < std::min(kWidth, right); ++x) {
        const double px = x + 0.5;
        const double py = y + 0.5;
        const double toB = ((px - a.x) * (c.y - a.y) - (c.x - a.x) * (py - a.y)) / area;
        const double toC = ((b.x - a.x) * (py - a.y) - (px - a.x) * (b.y - a.y)) / area;
        if (toB < 0 || toC < 0 || toB + toC > 1) continue;
        const double depth = a.z + toB * (b.z - a.z) + toC * (c.z - a.z);
        if (depth > pixel(x, y).depth) pixel(x, y) = {depth, triangle.color};
      }
    }
  }

  std::vector<Triangle> m_triangles;
  OdGeExtents3d m_extents;
  std::vector<Pixel> m_pixels;
  int m_height = 0;
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
