// GLB models (binary glTF 2.0).
//
// The file is a JSON document and one binary chunk. The document is a graph by number: a node names
// a mesh, a mesh its primitives, a primitive its accessors and its material, an accessor a view, a
// view a range of the chunk. Each object is appended when it is first needed, and its number is its
// place in its list. The order is that of the scene: the same scene gives the same bytes.
//
// A mesh is shared by all instances of its shape. The exception is an instance with shear: the
// matrix of a node must be a product of translation, rotation and scale, so that its mesh is
// written in world coordinates instead. The root node turns Z up into Y up and scales to metres,
// and all others keep drawing units.
//
// All values of the chunk have four bytes, so that every view is aligned. The chunk is collected in
// memory: the model may not exceed the 4 GiB that its header can count.
#include "host/rendering/glb_model.h"

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <nlohmann/json.hpp>
#include <utility>

#include "platform/base/error.h"

namespace rendering {

namespace {

using Json = nlohmann::ordered_json;

static_assert(std::endian::native == std::endian::little, "the format is little-endian");

// Numbers of the format.
constexpr std::uint32_t kMagic = 0x46546C67;
constexpr std::uint32_t kVersion = 2;
constexpr std::uint32_t kJsonChunk = 0x4E4F534A;
constexpr std::uint32_t kBinaryChunk = 0x004E4942;
constexpr int kFloat = 5126;
constexpr int kUnsignedInt = 5125;
constexpr int kArrayBuffer = 34962;
constexpr int kElementBuffer = 34963;
constexpr int kLineStrip = 3;

constexpr double kShearTolerance = 1e-6;  // cosine between axes that count as perpendicular

// From sRGB (IEC 61966-2-1) to the linear values of the format.
double linear(std::uint8_t component) {
  const double value = component / 255.0;
  return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

// Whether the axes of a matrix are not perpendicular to each other.
bool hasShear(const OdGeMatrix3d& matrix) {
  const OdGeVector3d x = matrix.getCsXAxis().normal();
  const OdGeVector3d y = matrix.getCsYAxis().normal();
  const OdGeVector3d z = matrix.getCsZAxis().normal();
  return std::fabs(x.dotProduct(y)) > kShearTolerance ||
         std::fabs(y.dotProduct(z)) > kShearTolerance ||
         std::fabs(z.dotProduct(x)) > kShearTolerance;
}

Json columns(const OdGeMatrix3d& matrix) {
  Json values = Json::array();
  for (unsigned column = 0; column < 4; ++column) {
    for (unsigned row = 0; row < 4; ++row) values.push_back(matrix(row, column));
  }
  return values;
}

class GlbWriter {
 public:
  GlbWriter(const Scene& scene, double metresPerUnit) : m_scene(scene) {
    m_document = {{"asset", {{"version", "2.0"}, {"generator", "vdm"}}},
                  {"scene", 0},
                  {"scenes", Json::array({{{"nodes", {0}}}})},
                  {"nodes", Json::array()},
                  {"meshes", Json::array()},
                  {"materials", Json::array()},
                  {"accessors", Json::array()},
                  {"bufferViews", Json::array()}};
    // Z up becomes Y up.
    const double unit = metresPerUnit;
    const OdGeMatrix3d turn =
        OdGeMatrix3d::coordSystem({}, {unit, 0, 0}, {0, 0, -unit}, {0, unit, 0});
    m_document["nodes"].push_back({{"name", "drawing"}, {"matrix", columns(turn)}});
  }

  std::string write() {
    m_meshOfShape.assign(m_scene.shapes.size(), kNone);
    Json children = Json::array();
    for (const Instance& instance : m_scene.instances) {
      children.push_back(m_document["nodes"].size());
      addNode(instance);
    }
    m_document["nodes"][0]["children"] = std::move(children);
    m_document["buffers"] = Json::array({{{"byteLength", m_binary.size()}}});
    return container(m_document.dump());
  }

 private:
  static constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();

  void addNode(const Instance& instance) {
    Json node = {{"name", instance.name}};
    if (hasShear(instance.toWorld)) {
      node["mesh"] = addMesh(m_scene.shapes[instance.shape], instance.toWorld);
    } else {
      std::size_t& mesh = m_meshOfShape[instance.shape];
      if (mesh == kNone) mesh = addMesh(m_scene.shapes[instance.shape], OdGeMatrix3d());
      node["mesh"] = mesh;
      if (instance.toWorld != OdGeMatrix3d()) node["matrix"] = columns(instance.toWorld);
    }
    m_document["nodes"].push_back(std::move(node));
  }

  std::size_t addMesh(const Shape& shape, const OdGeMatrix3d& matrix) {
    Json primitives = Json::array();
    for (const Surface& surface : shape.surfaces) primitives.push_back(addSurface(surface, matrix));
    for (const Line& line : shape.lines) {
      if (!line.isEdge || shape.surfaces.empty()) primitives.push_back(addLine(line, matrix));
    }
    m_document["meshes"].push_back({{"name", shape.name}, {"primitives", std::move(primitives)}});
    return m_document["meshes"].size() - 1;
  }

  Json addSurface(const Surface& surface, const OdGeMatrix3d& matrix) {
    // Normals are covariant: the inverse transpose keeps them square to a scaled surface.
    const OdGeMatrix3d normalMatrix = matrix.inverse().transpose();
    const bool flips = matrix.det() < 0.0;
    std::vector<float> normals;
    for (const OdGeVector3d& normal : surface.normals) {
      const OdGeVector3d turned = (normalMatrix * normal).normal();
      for (const double value : {turned.x, turned.y, turned.z}) {
        normals.push_back(static_cast<float>(value));
      }
    }
    std::vector<std::uint32_t> indices;
    for (const auto& triangle : surface.triangles) {
      indices.insert(indices.end(),
                     {triangle[0], triangle[flips ? 2 : 1], triangle[flips ? 1 : 2]});
    }
    const std::size_t positions = addPositions(surface.points, matrix);
    const std::size_t normalsAt = addAccessor(normals, kArrayBuffer, kFloat, "VEC3", 3);
    const std::size_t indicesAt = addAccessor(indices, kElementBuffer, kUnsignedInt, "SCALAR", 1);
    return {{"attributes", {{"POSITION", positions}, {"NORMAL", normalsAt}}},
            {"indices", indicesAt},
            {"material", materialOf(surface.look)}};
  }

  Json addLine(const Line& line, const OdGeMatrix3d& matrix) {
    return {{"attributes", {{"POSITION", addPositions(line.points, matrix)}}},
            {"mode", kLineStrip},
            {"material", materialOf({line.color, 1.0, 0.0})}};
  }

  // The format requires the box of the points.
  std::size_t addPositions(const std::vector<OdGePoint3d>& points, const OdGeMatrix3d& matrix) {
    constexpr float kFar = std::numeric_limits<float>::infinity();
    std::vector<float> values;
    float low[3] = {kFar, kFar, kFar};
    float high[3] = {-kFar, -kFar, -kFar};
    for (const OdGePoint3d& point : points) {
      const OdGePoint3d moved = matrix * point;
      const double coordinates[3] = {moved.x, moved.y, moved.z};
      for (int i = 0; i < 3; ++i) {
        const auto value = static_cast<float>(coordinates[i]);
        values.push_back(value);
        low[i] = std::min(low[i], value);
        high[i] = std::max(high[i], value);
      }
    }
    const std::size_t index = addAccessor(values, kArrayBuffer, kFloat, "VEC3", 3);
    m_document["accessors"][index]["min"] = low;
    m_document["accessors"][index]["max"] = high;
    return index;
  }

  template <class T>
  std::size_t addAccessor(const std::vector<T>& values, int target, int component, const char* type,
                          std::size_t perElement) {
    static_assert(sizeof(T) == 4, "offsets stay aligned");
    const std::size_t bytes = values.size() * sizeof(T);
    m_document["bufferViews"].push_back({{"buffer", 0},
                                         {"byteOffset", m_binary.size()},
                                         {"byteLength", bytes},
                                         {"target", target}});
    m_document["accessors"].push_back({{"bufferView", m_document["bufferViews"].size() - 1},
                                       {"componentType", component},
                                       {"count", values.size() / perElement},
                                       {"type", type}});
    const std::size_t offset = m_binary.size();
    m_binary.resize(offset + bytes);
    std::memcpy(m_binary.data() + offset, values.data(), bytes);
    return m_document["accessors"].size() - 1;
  }

  std::size_t materialOf(const SurfaceLook& look) {
    const auto [known, isNew] = m_materials.try_emplace(look, m_materials.size());
    if (!isNew) return known->second;
    const RenderColor& color = look.color;
    Json material = {{"pbrMetallicRoughness",
                      {{"baseColorFactor",
                        {linear(color.red), linear(color.green), linear(color.blue), look.opacity}},
                       {"metallicFactor", 0.1},
                       {"roughnessFactor", 1.0 - 0.8 * look.shininess}}},
                     {"doubleSided", true}};
    if (look.opacity < 1.0) material["alphaMode"] = "BLEND";
    m_document["materials"].push_back(std::move(material));
    return known->second;
  }

  // The header and both chunks. A chunk is a multiple of four bytes long: spaces fill the JSON,
  // zeros the binary one.
  [[nodiscard]] std::string container(std::string json) const {
    std::string binary = m_binary;
    json.resize((json.size() + 3) / 4 * 4, ' ');
    binary.resize((binary.size() + 3) / 4 * 4, '\0');
    const std::size_t size = 12 + 8 + json.size() + 8 + binary.size();
    if (size > std::numeric_limits<std::uint32_t>::max()) {
      throw OdError(eLimitExceeded, OdString("a model of " + std::to_string(size) +
                                             " bytes, the format holds 4294967295"));
    }
    std::string file;
    file.reserve(size);
    const auto add = [&file](std::size_t value) {
      const auto word = static_cast<std::uint32_t>(value);
      file.append(reinterpret_cast<const char*>(&word), sizeof word);
    };
    for (const std::size_t word : {std::size_t{kMagic}, std::size_t{kVersion}, size}) add(word);
    add(json.size());
    add(kJsonChunk);
    file += json;
    add(binary.size());
    add(kBinaryChunk);
    return file + binary;
  }

  const Scene& m_scene;
  Json m_document;
  std::string m_binary;
  std::map<SurfaceLook, std::size_t> m_materials;
  std::vector<std::size_t> m_meshOfShape;
};

}  // namespace

std::string encodeGlb(const Scene& scene, double metresPerUnit) {
  return GlbWriter(scene, metresPerUnit).write();
}

}  // namespace rendering
