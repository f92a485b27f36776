// The same part another way: through files, or with its faces in another order.
#include "bench/naming/exchange.h"

#include <unistd.h>

#include <BRepBuilderAPI_Copy.hxx>
#include <BRepBuilderAPI_NurbsConvert.hxx>
#include <BRepBuilderAPI_Transform.hxx>
#include <BRep_Builder.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Shell.hxx>
#include <TopoDS_Solid.hxx>
#include <algorithm>
#include <filesystem>

#include "bench/naming/made_body.h"
#include "platform/modeler/modeler.h"
#include "platform/modeler_occt/occt_bridge.h"

namespace naming_bench {
namespace {

namespace fs = std::filesystem;

OdModelerAssembly readStep(const std::string& path) {
  OdModelerAssembly assembly;
  const OdStatus status = odModeler().importStep(OdString(path.c_str()), assembly);
  if (!status.ok()) throw std::runtime_error(path + ": " + std::string(status.text.utf8()));
  return assembly;
}

std::vector<OdModelerBodyPtr> solidsOf(const OdModelerAssembly& assembly) {
  std::vector<OdModelerBodyPtr> result;
  for (const OdModelerProduct& product : assembly.products) {
    for (const OdModelerBodyPtr& body : product.bodies) {
      if (body->kind() == OdModelerBodyKind::kSolid && body->numSolids() == 1) {
        result.push_back(body);
      }
    }
  }
  return result;
}

}  // namespace

OdModelerBodyPtr throughStep(const OdModelerBodyPtr& body) {
  OdModelerAssembly assembly;
  OdModelerProduct& product = assembly.products.emplace_back();
  product.name = product.uniqueId = OdString(L"part");
  product.bodies = {body};
  assembly.roots.push_back({0, {}, OdString(L"part"), {}});
  const std::string path =
      (fs::temp_directory_path() / ("vdm_bench_naming_" + std::to_string(getpid()) + ".stp"))
          .string();
  const OdStatus status = odModeler().exportStep(OdString(path.c_str()), assembly);
  if (!status.ok()) throw std::runtime_error(std::string(status.text.utf8()));
  const std::vector<OdModelerBodyPtr> solids = solidsOf(readStep(path));
  fs::remove(path);
  if (solids.size() != 1) {
    throw std::runtime_error("one solid written, " + std::to_string(solids.size()) + " read");
  }
  return solids.front();
}

OdModelerBodyPtr throughBytes(const OdModelerBodyPtr& body) {
  OdBinaryData bytes;
  if (const OdStatus status = body->serialise(bytes); !status.ok()) {
    throw std::runtime_error(std::string(status.text.utf8()));
  }
  return made([&](auto& result) { return odModeler().deserialise(bytes, result); });
}

OdModelerBodyPtr reordered(const OdModelerBodyPtr& body, Random& random) {
  const TopoDS_Shape copy = BRepBuilderAPI_Copy(odOcctShape(*body)).Shape();
  const BRep_Builder builder;
  TopoDS_Solid solid;
  builder.MakeSolid(solid);
  for (TopExp_Explorer shells(copy, TopAbs_SHELL); shells.More(); shells.Next()) {
    std::vector<TopoDS_Shape> faces;
    for (TopExp_Explorer it(shells.Current(), TopAbs_FACE); it.More(); it.Next()) {
      faces.push_back(it.Current());
    }
    for (std::size_t i = faces.size(); i > 1; --i) std::swap(faces[i - 1], faces[pick(random, i)]);
    TopoDS_Shell shell;
    builder.MakeShell(shell);
    for (const TopoDS_Shape& face : faces) builder.Add(shell, face);
    shell.Closed(Standard_True);
    builder.Add(solid, shell);
  }
  const OdModelerBodyPtr result = odBodyFromOcct(solid);
  if (const OdStatus status = result->check(); !status.ok()) {
    throw std::runtime_error(std::string(status.text.utf8()));
  }
  return result;
}

OdModelerBodyPtr splined(const OdModelerBodyPtr& body) {
  return odBodyFromOcct(
      BRepBuilderAPI_NurbsConvert(odOcctShape(*body), /*Copy=*/Standard_True).Shape());
}

OdModelerBodyPtr scaled(const OdModelerBodyPtr& body, double factor) {
  gp_Trsf scaling;
  scaling.SetScale(gp_Pnt(), factor);
  return odBodyFromOcct(
      BRepBuilderAPI_Transform(odOcctShape(*body), scaling, /*Copy=*/Standard_True).Shape());
}

std::vector<FileBody> readStepFolder(const std::string& folder) {
  std::vector<std::string> paths;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
    const std::string extension = entry.path().extension().string();
    if (extension == ".stp" || extension == ".step") paths.push_back(entry.path().string());
  }
  std::ranges::sort(paths);
  std::vector<FileBody> result;
  for (const std::string& path : paths) {
    for (const OdModelerBodyPtr& body : solidsOf(readStep(path))) {
      result.push_back({fs::path(path).stem().string(), body});
    }
  }
  return result;
}

}  // namespace naming_bench
