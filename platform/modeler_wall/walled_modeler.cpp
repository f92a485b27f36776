#include "platform/modeler_wall/walled_modeler.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string>
#include <utility>

#include "platform/base/error.h"
#include "platform/modeler/modeler.h"
#include "platform/modeler_wall/wall_link.h"
#include "platform/modeler_wall/walled_body.h"

namespace od_wall {

namespace {

[[noreturn]] void notSound(const wchar_t* what) { throw OdError(eCorruptData, what); }

// ---- The worker's answers are checked before they are taken

void checkFates(const OdModelerBody& input, const OdModelerBody& result, OdModelerSubentType type,
                const std::vector<OdModelerFate>& fates) {
  if (fates.size() != input.numSubents(type)) notSound(L"a history of another body");
  for (const OdModelerFate& fate : fates) {
    const bool hasImages = std::ranges::all_of(fate.images, [&](OdUInt32 index) {
      return result.hasSubent({type, index});
    });
    const bool hasGenerated = std::ranges::all_of(
        fate.generated, [&](OdModelerSubent subent) { return result.hasSubent(subent); });
    if (!hasImages || !hasGenerated) notSound(L"a history into another body");
  }
}

void checkHistory(const OdModelerHistory& history, std::span<const OdModelerBodyPtr> inputs,
                  const OdModelerBody& result) {
  if (history.inputs.size() != inputs.size()) notSound(L"a history of other bodies");
  for (std::size_t i = 0; i < inputs.size(); ++i) {
    for (const auto type :
         {OdModelerSubentType::kFace, OdModelerSubentType::kEdge, OdModelerSubentType::kVertex}) {
      checkFates(*inputs[i], result, type, history.inputs[i].fates(type));
    }
  }
}

// ---- Parameters as text, for the reports of failures

std::string textOf(double value) {
  std::array<char, 32> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
  return {digits.data(), end};
}
std::string textOf(OdModelerBooleanKind kind) {
  constexpr std::array kNames{"unite", "intersect", "subtract"};
  return kNames.at(static_cast<std::size_t>(kind));
}
std::string textOf(const std::vector<OdUInt32>& indices) {
  std::string text;
  for (const OdUInt32 index : indices) text += (text.empty() ? "[" : ", ") + std::to_string(index);
  return text.empty() ? "[]" : text + "]";
}
std::string textOf(const OdGeVector3d& v) {
  return "(" + textOf(v.x) + ", " + textOf(v.y) + ", " + textOf(v.z) + ")";
}
std::string textOf(const OdGePoint3d& p) { return textOf(p.asVector()); }
std::string textOf(const OdModelerProfile& profile) {
  std::string text = "profile";
  for (const OdModelerProfileVertex& v : profile.outer) {
    text += " " + textOf(v.point.x) + "," + textOf(v.point.y);
    if (v.bulge != 0.0) text += "," + textOf(v.bulge);
  }
  return text + " and " + std::to_string(profile.holes.size()) + " holes";
}

// ---- The modeller

class WalledModeler final : public OdModeler {
 public:
  WalledModeler(std::shared_ptr<OdModeler> inner, OdWallSettings settings)
      : m_link(std::make_shared<WallLink>(std::move(inner), std::move(settings))) {}

  [[nodiscard]] OdString name() const override { return m_link->inner().name(); }

  OdStatus box(double dx, double dy, double dz, OdModelerBodyPtr& result) override {
    return make({Operation::kBox}, result, nullptr, dx, dy, dz);
  }
  OdStatus cylinder(double radius, double height, OdModelerBodyPtr& result) override {
    return make({Operation::kCylinder}, result, nullptr, radius, height);
  }
  OdStatus cone(double bottomRadius, double topRadius, double height,
                OdModelerBodyPtr& result) override {
    return make({Operation::kCone}, result, nullptr, bottomRadius, topRadius, height);
  }
  OdStatus sphere(double radius, OdModelerBodyPtr& result) override {
    return make({Operation::kSphere}, result, nullptr, radius);
  }
  OdStatus torus(double majorRadius, double minorRadius, OdModelerBodyPtr& result) override {
    return make({Operation::kTorus}, result, nullptr, majorRadius, minorRadius);
  }
  OdStatus wedge(double dx, double dy, double dz, double topDx, OdModelerBodyPtr& result) override {
    return make({Operation::kWedge}, result, nullptr, dx, dy, dz, topDx);
  }
  OdStatus extrude(const OdModelerProfile& profile, const OdGeVector3d& direction,
                   OdModelerBodyPtr& result) override {
    return make({Operation::kExtrude}, result, nullptr, profile, direction);
  }
  OdStatus revolve(const OdModelerProfile& profile, const OdGePoint3d& axisPoint,
                   const OdGeVector3d& axis, double angle, OdModelerBodyPtr& result) override {
    return make({Operation::kRevolve}, result, nullptr, profile, axisPoint, axis, angle);
  }

  OdStatus boolean(OdModelerBooleanKind kind, const OdModelerBodyPtr& base,
                   std::span<const OdModelerBodyPtr> tools, OdModelerBodyPtr& result,
                   OdModelerHistory* history) override {
    if (!base || std::ranges::count(tools, nullptr) != 0) {
      return m_link->inner().boolean(kind, base, tools, result, history);
    }
    std::vector<OdModelerBodyPtr> bodies{innerOf(base)};
    for (const OdModelerBodyPtr& tool : tools) bodies.push_back(innerOf(tool));
    return make({Operation::kBoolean, std::move(bodies)}, result, history, kind);
  }
  OdStatus fillet(const OdModelerBodyPtr& body, std::span<const OdUInt32> edges, double radius,
                  OdModelerBodyPtr& result, OdModelerHistory* history) override {
    if (!body) return m_link->inner().fillet(body, edges, radius, result, history);
    return make({Operation::kFillet, {innerOf(body)}}, result, history, listOf(edges), radius);
  }
  OdStatus chamfer(const OdModelerBodyPtr& body, std::span<const OdUInt32> edges, double distance,
                   OdModelerBodyPtr& result, OdModelerHistory* history) override {
    if (!body) return m_link->inner().chamfer(body, edges, distance, result, history);
    return make({Operation::kChamfer, {innerOf(body)}}, result, history, listOf(edges), distance);
  }
  OdStatus removeFaces(const OdModelerBodyPtr& body, std::span<const OdUInt32> faces,
                       OdModelerBodyPtr& result, OdModelerHistory* history) override {
    if (!body) return m_link->inner().removeFaces(body, faces, result, history);
    return make({Operation::kRemoveFaces, {innerOf(body)}}, result, history, listOf(faces));
  }

  OdStatus compound(std::span<const OdModelerBodyPtr> bodies, OdModelerBodyPtr& result) override {
    std::vector<OdModelerBodyPtr> inner;
    for (const OdModelerBodyPtr& body : bodies) inner.push_back(innerOf(body));
    OdStatus status = m_link->inner().compound(inner, result);
    if (status.ok()) result = wrap(result);
    return status;
  }
  OdStatus deserialise(const OdBinaryData& bytes, OdModelerBodyPtr& result) override {
    OdStatus status = m_link->inner().deserialise(bytes, result);
    if (status.ok()) result = wrap(result);
    return status;
  }

  OdStatus importStep(const OdString& path, const OdModelerReadOptions& options,
                      OdModelerAssembly& result) override {
    MessageWriter arguments;
    arguments(path, options);
    return m_link->ask({Operation::kImportStep, {}, false, path}, arguments,
                       [&](MessageReader& answer, BodyNumber) {
                         auto assembly = answer.get<OdModelerAssembly>();
                         if (const OdStatus status = assembly.check(); !status.ok()) {
                           throw OdError(status.code, status.text);
                         }
                         eachBody(assembly, [this](const auto& body) { return wrap(body); });
                         result = std::move(assembly);
                       });
  }
  OdStatus exportStep(const OdString& path, const OdModelerAssembly& assembly) override {
    if (OdStatus status = assembly.check(); !status.ok()) return status;
    OdModelerAssembly inner = assembly;
    eachBody(inner, [](const auto& body) { return innerOf(body); });
    MessageWriter arguments;
    arguments(path, inner);
    return m_link->ask({Operation::kExportStep, {}, false, path}, arguments,
                       [](MessageReader&, BodyNumber) { odNoteFileWritten(); });
  }

 private:
  static OdModelerBodyPtr innerOf(const OdModelerBodyPtr& body) {
    const auto* walled = dynamic_cast<const WalledBody*>(body.get());
    return walled == nullptr ? body : walled->inner();
  }
  [[nodiscard]] OdModelerBodyPtr wrap(const OdModelerBodyPtr& body) const {
    return std::make_shared<const WalledBody>(body, m_link);
  }
  static std::vector<OdUInt32> listOf(std::span<const OdUInt32> indices) {
    return {indices.begin(), indices.end()};
  }
  template <class Change>
  static void eachBody(OdModelerAssembly& assembly, const Change& change) {
    for (OdModelerProduct& product : assembly.products) {
      for (OdModelerBodyPtr& body : product.bodies) body = change(body);
      for (OdModelerAnnotation& each : product.annotations) each.body = change(each.body);
    }
  }

  /// Asks for an operation that makes a body.
  template <class... T>
  OdStatus make(Question question, OdModelerBodyPtr& result, OdModelerHistory* history,
                const T&... values) {
    question.wantsHistory = history != nullptr;
    question.parameters = [&values...] {
      std::string text;
      ((text += (text.empty() ? "" : "; ") + textOf(values)), ...);
      return text;
    };
    MessageWriter arguments;
    arguments(values...);
    return m_link->ask(question, arguments, [&](MessageReader& answer, BodyNumber made) {
      const auto body = answer.get<OdModelerBodyPtr>();
      if (history != nullptr) {
        auto fates = answer.get<OdModelerHistory>();
        checkHistory(fates, question.bodies, *body);
        *history = std::move(fates);
      }
      m_link->keep(made, *body);
      result = wrap(body);
    });
  }

  std::shared_ptr<WallLink> m_link;
};

}  // namespace

}  // namespace od_wall

std::shared_ptr<OdModeler> odCreateWalledModeler(std::shared_ptr<OdModeler> inner,
                                                 OdWallSettings settings) {
  return std::make_shared<od_wall::WalledModeler>(std::move(inner), std::move(settings));
}
