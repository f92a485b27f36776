// Booleans of solids, with their history.
#include <BRepAlgoAPI_Common.hxx>
#include <BRepAlgoAPI_Cut.hxx>
#include <BRepAlgoAPI_Fuse.hxx>
#include <BRep_Builder.hxx>
#include <Precision.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_ListOfShape.hxx>
#include <TopoDS_Compound.hxx>
#include <algorithm>
#include <memory>
#include <sstream>

#include "platform/modeler_occt/occt_body.h"
#include "platform/modeler_occt/occt_bridge.h"
#include "platform/modeler_occt/occt_guard.h"
#include "platform/modeler_occt/occt_history.h"
#include "platform/modeler_occt/occt_operations.h"

namespace od_occt {
namespace {

const char* nameOf(OdModelerBooleanKind kind) {
  switch (kind) {
    case OdModelerBooleanKind::kUnite:
      return "unite";
    case OdModelerBooleanKind::kIntersect:
      return "intersect";
    case OdModelerBooleanKind::kSubtract:
      return "subtract";
  }
  return "boolean";
}

std::unique_ptr<BRepAlgoAPI_BooleanOperation> newOperation(OdModelerBooleanKind kind) {
  switch (kind) {
    case OdModelerBooleanKind::kUnite:
      return std::make_unique<BRepAlgoAPI_Fuse>();
    case OdModelerBooleanKind::kIntersect:
      return std::make_unique<BRepAlgoAPI_Common>();
    default:
      return std::make_unique<BRepAlgoAPI_Cut>();
  }
}

TopTools_ListOfShape shapesOf(std::span<const OdModelerBodyPtr> bodies) {
  TopTools_ListOfShape shapes;
  for (const OdModelerBodyPtr& body : bodies) shapes.Append(asOcct(*body).shape());
  return shapes;
}

void run(BRepAlgoAPI_BooleanOperation& operation, const OdModelerBodyPtr& base,
         std::span<const OdModelerBodyPtr> tools) {
  operation.SetArguments(shapesOf({&base, 1}));
  operation.SetTools(shapesOf(tools));
  operation.SetRunParallel(Standard_False);
  operation.SetNonDestructive(Standard_True);
  operation.SetToFillHistory(Standard_True);
  operation.Build();
}

OdString reportOf(const BRepAlgoAPI_BooleanOperation& operation) {
  std::ostringstream text;
  operation.DumpErrors(text);
  OdString report = OdString::fromUtf8(text.str());
  return report.trimRight();
}

// Bodies stand side by side; a single one stands alone.
TopoDS_Shape joined(const TopTools_ListOfShape& shapes) {
  if (shapes.Extent() == 1) return shapes.First();
  TopoDS_Compound whole;
  BRep_Builder builder;
  builder.MakeCompound(whole);
  for (const TopoDS_Shape& shape : shapes) builder.Add(whole, shape);
  return whole;
}

// What remains: the solids where all inputs are solid, else whatever there is.
TopoDS_Shape remains(const TopoDS_Shape& outcome, bool solidsOnly) {
  if (!solidsOnly) return outcome;
  TopTools_ListOfShape solids;
  for (TopExp_Explorer it(outcome, TopAbs_SOLID); it.More(); it.Next()) solids.Append(it.Current());
  return solids.IsEmpty() ? TopoDS_Shape() : joined(solids);
}

OdModelerStatus checkInputs(OdModelerBooleanKind kind, std::span<const OdModelerBodyPtr> inputs) {
  if (inputs.size() < 2) return failure(eInvalidInput, nameOf(kind), "there is no tool");
  const auto null = std::ranges::find(inputs, nullptr);
  if (null == inputs.end()) return {};
  OdString text;
  text.format(L"%ls: body %u of %u is null", OdString(nameOf(kind)).c_str(),
              static_cast<unsigned>(null - inputs.begin()), static_cast<unsigned>(inputs.size()));
  return {eInvalidInput, text};
}

bool allSolid(std::span<const OdModelerBodyPtr> inputs) {
  return std::ranges::all_of(
      inputs, [](const OdModelerBodyPtr& b) { return b->kind() == OdModelerBodyKind::kSolid; });
}

OdModelerStatus combine(OdModelerBooleanKind kind, std::span<const OdModelerBodyPtr> inputs,
                        OdModelerBodyPtr& result, OdModelerHistory* history) {
  const std::unique_ptr<BRepAlgoAPI_BooleanOperation> operation = newOperation(kind);
  run(*operation, inputs.front(), inputs.subspan(1));
  if (!operation->IsDone() || operation->HasErrors()) {
    return {eModelerError, OdString(nameOf(kind)) + L": " + reportOf(*operation)};
  }
  operation->SimplifyResult(/*theUnifyEdges=*/Standard_True, /*theUnifyFaces=*/Standard_True,
                            Precision::Angular());
  const TopoDS_Shape shape = remains(operation->Shape(), allSolid(inputs));
  const OdModelerBodyPtr plain = odBodyFromOcct(shape);
  if (!plain || plain->numFaces() + plain->numEdges() == 0) {
    return failure(eDegenerateGeometry, nameOf(kind), "nothing is left");
  }
  if (OdModelerStatus sound = checkShape(asOcct(*plain).shape()); !sound.ok()) {
    return {eModelerInvalidBody, OdString(nameOf(kind)) + L": " + sound.text};
  }
  OdModelerHistory fates = collectHistory(*operation, inputs, asOcct(*plain));
  result = plain->withAttributes(inheritAttributes(inputs, fates));
  if (history != nullptr) *history = std::move(fates);
  return {};
}

}  // namespace

OdModelerStatus boolean(OdModelerBooleanKind kind, const OdModelerBodyPtr& base,
                        std::span<const OdModelerBodyPtr> tools, OdModelerBodyPtr& result,
                        OdModelerHistory* history) {
  std::vector<OdModelerBodyPtr> inputs{base};
  inputs.insert(inputs.end(), tools.begin(), tools.end());
  if (OdModelerStatus status = checkInputs(kind, inputs); !status.ok()) return status;
  return guarded(nameOf(kind), [&] { return combine(kind, inputs, result, history); });
}

OdModelerStatus compound(std::span<const OdModelerBodyPtr> bodies, OdModelerBodyPtr& result) {
  if (bodies.empty() || std::ranges::count(bodies, nullptr) != 0) {
    return failure(eInvalidInput, "compound", "there is no body, or one is null");
  }
  return guarded("compound", [&]() -> OdModelerStatus {
    OdModelerBodyPtr whole = odBodyFromOcct(joined(shapesOf(bodies)));
    OdModelerHistory history;
    const Topology& now = asOcct(*whole).topology();
    for (const OdModelerBodyPtr& body : bodies) {
      OdModelerInputHistory& input = history.inputs.emplace_back();
      const TopTools_IndexedMapOfShape& faces = asOcct(*body).topology().faces;
      for (int i = 1; i <= faces.Extent(); ++i) {
        input.faces.push_back({{static_cast<OdUInt32>(now.faces.FindIndex(faces(i)))}, {}, false});
      }
    }
    result = whole->withAttributes(inheritAttributes(bodies, history));
    return {};
  });
}

}  // namespace od_occt
