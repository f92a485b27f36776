#include "platform/modeler_wall/wall_service.h"

#include <exception>
#include <new>
#include <utility>

#include "platform/base/error.h"
#include "platform/modeler/modeler.h"
#include "platform/modeler_wall/wall_message.h"

namespace od_wall {

namespace {

/// One operation at work.
struct Job {
  OdModeler& modeler;
  MessageReader& arguments;
  MessageWriter& results;
  std::vector<OdModelerBodyPtr> bodies;
  OdModelerBodyPtr made;  ///< the body that the operation makes, if it makes one
  OdModelerHistory history;
  bool wantsHistory;

  template <class T>
  T take() {
    return arguments.get<T>();
  }
  [[nodiscard]] const OdModelerBodyPtr& base() const { return bodies.at(0); }
  [[nodiscard]] std::span<const OdModelerBodyPtr> tools() const {
    return std::span(bodies).subspan(1);
  }
  [[nodiscard]] OdModelerHistory* historyOrNull() { return wantsHistory ? &history : nullptr; }
};

// A braced list takes its arguments from left to right.
template <std::size_t N>
std::array<double, N> takeNumbers(Job& job) {
  std::array<double, N> numbers{};
  for (double& number : numbers) number = job.take<double>();
  return numbers;
}

OdStatus doBox(Job& job) {
  const auto [dx, dy, dz] = takeNumbers<3>(job);
  return job.modeler.box(dx, dy, dz, job.made);
}

OdStatus doCylinder(Job& job) {
  const auto [radius, height] = takeNumbers<2>(job);
  return job.modeler.cylinder(radius, height, job.made);
}

OdStatus doCone(Job& job) {
  const auto [bottom, top, height] = takeNumbers<3>(job);
  return job.modeler.cone(bottom, top, height, job.made);
}

OdStatus doSphere(Job& job) { return job.modeler.sphere(job.take<double>(), job.made); }

OdStatus doTorus(Job& job) {
  const auto [major, minor] = takeNumbers<2>(job);
  return job.modeler.torus(major, minor, job.made);
}

OdStatus doWedge(Job& job) {
  const auto [dx, dy, dz, topDx] = takeNumbers<4>(job);
  return job.modeler.wedge(dx, dy, dz, topDx, job.made);
}

OdStatus doExtrude(Job& job) {
  const auto profile = job.take<OdModelerProfile>();
  const auto direction = job.take<OdGeVector3d>();
  return job.modeler.extrude(profile, direction, job.made);
}

OdStatus doRevolve(Job& job) {
  const auto profile = job.take<OdModelerProfile>();
  const auto point = job.take<OdGePoint3d>();
  const auto axis = job.take<OdGeVector3d>();
  const auto angle = job.take<double>();
  return job.modeler.revolve(profile, point, axis, angle, job.made);
}

OdStatus doBoolean(Job& job) {
  const auto kind = job.take<OdModelerBooleanKind>();
  return job.modeler.boolean(kind, job.base(), job.tools(), job.made, job.historyOrNull());
}

OdStatus doFillet(Job& job) {
  const auto edges = job.take<std::vector<OdUInt32>>();
  const auto radius = job.take<double>();
  return job.modeler.fillet(job.base(), edges, radius, job.made, job.historyOrNull());
}

OdStatus doChamfer(Job& job) {
  const auto edges = job.take<std::vector<OdUInt32>>();
  const auto distance = job.take<double>();
  return job.modeler.chamfer(job.base(), edges, distance, job.made, job.historyOrNull());
}

OdStatus doRemoveFaces(Job& job) {
  const auto faces = job.take<std::vector<OdUInt32>>();
  return job.modeler.removeFaces(job.base(), faces, job.made, job.historyOrNull());
}

OdStatus doImportStep(Job& job) {
  const auto path = job.take<OdString>();
  const auto options = job.take<OdModelerReadOptions>();
  OdModelerAssembly assembly;
  OdStatus status = job.modeler.importStep(path, options, assembly);
  if (status.ok()) job.results(assembly);
  return status;
}

OdStatus doExportStep(Job& job) {
  const auto path = job.take<OdString>();
  const auto assembly = job.take<OdModelerAssembly>();
  return job.modeler.exportStep(path, assembly);
}

OdStatus doCheck(Job& job) { return job.base()->check(); }

OdStatus doTessellate(Job& job) {
  const auto options = job.take<OdModelerMeshOptions>();
  OdModelerMesh mesh;
  OdStatus status = job.base()->tessellate(options, mesh);
  if (status.ok()) job.results(mesh);
  return status;
}

OdStatus doMassProperties(Job& job) {
  job.results(job.base()->massProperties());
  return {};
}

struct Row {
  Operation operation;
  const char* name;
  OdStatus (*run)(Job& job);
};

/// In the order of the enumerators.
constexpr Row kRows[] = {
    {Operation::kBox, "box", doBox},
    {Operation::kCylinder, "cylinder", doCylinder},
    {Operation::kCone, "cone", doCone},
    {Operation::kSphere, "sphere", doSphere},
    {Operation::kTorus, "torus", doTorus},
    {Operation::kWedge, "wedge", doWedge},
    {Operation::kExtrude, "extrusion", doExtrude},
    {Operation::kRevolve, "revolution", doRevolve},
    {Operation::kBoolean, "boolean", doBoolean},
    {Operation::kFillet, "fillet", doFillet},
    {Operation::kChamfer, "chamfer", doChamfer},
    {Operation::kRemoveFaces, "removal of faces", doRemoveFaces},
    {Operation::kImportStep, "import of a STEP file", doImportStep},
    {Operation::kExportStep, "export of a STEP file", doExportStep},
    {Operation::kCheck, "check", doCheck},
    {Operation::kTessellate, "meshing", doTessellate},
    {Operation::kMassProperties, "mass properties", doMassProperties},
};

const Row& rowOf(Operation operation) {
  const auto index = static_cast<std::size_t>(operation);
  if (index >= std::size(kRows)) throw OdError(eCorruptData, L"a request without an operation");
  return kRows[index];
}

}  // namespace

const char* nameOf(Operation operation) { return rowOf(operation).name; }

void WallService::exchangeBodies(MessageReader& request) {
  for (const BodyNumber number : request.get<std::vector<BodyNumber>>()) m_bodies.erase(number);
  const auto count = request.get<OdUInt64>();
  for (OdUInt64 i = 0; i < count; ++i) {
    const auto number = request.get<BodyNumber>();
    m_bodies[number] = request.get<OdModelerBodyPtr>();
  }
}

std::vector<OdModelerBodyPtr> WallService::bodiesOf(MessageReader& request) const {
  std::vector<OdModelerBodyPtr> bodies;
  for (const BodyNumber number : request.get<std::vector<BodyNumber>>()) {
    bodies.push_back(m_bodies.at(number));
  }
  return bodies;
}

OdStatus WallService::work(MessageReader& request, MessageWriter& results) {
  const auto head = request.get<RequestHead>();
  const Row& row = rowOf(head.operation);
  const OdWorkNote note(row.name);
  const OdWorkLimit limit(m_budget);
  exchangeBodies(request);
  m_hasExchanged = true;
  Job job{m_modeler, request, results, bodiesOf(request), {}, {}, head.wantsHistory};
  OdStatus status = row.run(job);
  if (!status.ok() || !job.made) return status;
  results(job.made);
  if (head.wantsHistory) results(job.history);
  m_bodies[head.result] = std::move(job.made);
  return status;
}

std::vector<char> WallService::answer(std::span<const char> request) {
  OdStatus status;
  MessageWriter results;
  m_hasExchanged = false;
  try {
    MessageReader reader(request, m_modeler);
    status = work(reader, results);
  } catch (const OdError& error) {
    status = {error.code(), OdString::fromUtf8(error.what())};
  } catch (const std::bad_alloc&) {
    status = {eOutOfMemory, OdString(L"out of memory")};
  } catch (const std::exception& error) {
    status = {eModelerError, OdString::fromUtf8(error.what())};
  }
  MessageWriter message;
  message(m_hasExchanged, status);
  std::vector<char> bytes(message.bytes().begin(), message.bytes().end());
  if (status.ok()) bytes.insert(bytes.end(), results.bytes().begin(), results.bytes().end());
  return bytes;
}

}  // namespace od_wall
