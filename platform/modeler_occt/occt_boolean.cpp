// Booleans of solids, with their history.
#include <BOPAlgo_PaveFiller.hxx>
#include <BRepAlgoAPI_Common.hxx>
#include <BRepAlgoAPI_Cut.hxx>
#include <BRepAlgoAPI_Fuse.hxx>
#include <BRep_Builder.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_ListOfShape.hxx>
#include <TopoDS_Compound.hxx>
#include <algorithm>
#include <memory>
#include <sstream>
#include <utility>

#include "platform/modeler_occt/occt_body.h"
#include "platform/modeler_occt/occt_bridge.h"
#include "platform/modeler_occt/occt_guard.h"
#include "platform/modeler_occt/occt_history.h"
#include "platform/modeler_occt/occt_operations.h"
#include "platform/modeler_occt/occt_removed_part.h"
#include "platform/modeler_occt/occt_simplify.h"

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

using Operation = BRepAlgoAPI_BooleanOperation;

std::unique_ptr<Operation> newOperation(OdModelerBooleanKind kind, const BOPAlgo_PaveFiller& met) {
  switch (kind) {
    case OdModelerBooleanKind::kUnite:
      return std::make_unique<BRepAlgoAPI_Fuse>(met);
    case OdModelerBooleanKind::kIntersect:
      return std::make_unique<BRepAlgoAPI_Common>(met);
    default:
      return std::make_unique<BRepAlgoAPI_Cut>(met);
  }
}

TopTools_ListOfShape shapesOf(std::span<const OdModelerBodyPtr> bodies) {
  TopTools_ListOfShape shapes;
  for (const OdModelerBodyPtr& body : bodies) shapes.Append(asOcct(*body).shape());
  return shapes;
}

using Intersections = std::shared_ptr<BOPAlgo_PaveFiller>;

// What an intersection has computed, kept for the subtraction of the same tool that tends to
// follow: whoever cuts and wants to know what went asks for both.
struct LastIntersections {
  std::vector<OdModelerBodyPtr> inputs;
  Intersections met;
  std::unique_ptr<BRepAlgoAPI_Cut> cut;  // done but not simplified; uses `met`
};

LastIntersections& lastIntersections() {
  static thread_local LastIntersections last;
  return last;
}

Intersections intersect(std::span<const OdModelerBodyPtr> inputs, double fuzz) {
  auto met = std::make_shared<BOPAlgo_PaveFiller>();
  met->SetArguments(shapesOf(inputs));
  met->SetRunParallel(Standard_False);
  met->SetNonDestructive(Standard_True);
  met->SetFuzzyValue(fuzz);
  met->Perform();
  return met;
}

void run(Operation& operation, std::span<const OdModelerBodyPtr> inputs) {
  operation.SetArguments(shapesOf(inputs.first(1)));
  operation.SetTools(shapesOf(inputs.subspan(1)));
  operation.SetRunParallel(Standard_False);
  operation.SetNonDestructive(Standard_True);
  operation.SetToFillHistory(Standard_True);
  operation.Build();
}

template <class Algorithm>
OdString reportOf(const Algorithm& algorithm) {
  std::ostringstream text;
  algorithm.DumpErrors(text);
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

OdStatus checkInputs(OdModelerBooleanKind kind, std::span<const OdModelerBodyPtr> inputs) {
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

bool hasColors(const OdModelerBodyPtr& body) {
  const OdModelerBodyAttributes& own = body->attributes();
  return own.color || !own.faceColors.empty() || !own.faceNames.empty();
}

/// One way to try. The tolerance within which parts of different inputs count as touching, beyond
/// the inputs' own, in drawing units.
struct Attempt {
  double fuzz;
  bool unifyEdges;
  FacesToJoin faces;
};

// Nearly coincident geometry and its unification are where the modeller fails, with an exception or
// an unsound body. Later ways give the same body with more edges or faces, or within a tolerance
// that is a hundred times what it counts as one point.
constexpr Attempt kAttempts[] = {
    {0.0, true, FacesToJoin::kAll},     {0.0, false, FacesToJoin::kAll},
    {1e-5, true, FacesToJoin::kAll},    {0.0, true, FacesToJoin::kPlanes},
    {0.0, false, FacesToJoin::kPlanes}, {0.0, false, FacesToJoin::kNone},
};

bool isDone(const Operation& operation) { return operation.IsDone() && !operation.HasErrors(); }

// The intersection of two solids by way of the cut, which is kept. Null when that does not tell it.
OdModelerBodyPtr commonByCut(std::span<const OdModelerBodyPtr> inputs, const Intersections& met) {
  if (inputs.size() != 2 || !allSolid(inputs)) return nullptr;
  auto cut = std::make_unique<BRepAlgoAPI_Cut>(*met);
  run(*cut, inputs);
  if (!isDone(*cut)) return nullptr;
  const TopoDS_Shape part =
      removedPart(*cut, shapesOf(inputs.first(1)), shapesOf(inputs.subspan(1)));
  const OdModelerBodyPtr body = part.IsNull() ? nullptr : odBodyFromOcct(part);
  if (!body || !checkShape(asOcct(*body).shape()).ok()) return nullptr;
  lastIntersections() = {{inputs.begin(), inputs.end()}, met, std::move(cut)};
  return body->withAttributes({inputs.front()->attributes().name, {}, {}, {}});
}

// The body is new, and nobody else knows it.
OdModelerBodyPtr withNote(const OdModelerBodyPtr& body, bool leftApart,
                          OdModelerBodyAttributes attributes) {
  const_cast<Body&>(asOcct(*body)).setLeftApart(leftApart);
  return body->withAttributes(std::move(attributes));
}

OdStatus attempt(OdModelerBooleanKind kind, std::span<const OdModelerBodyPtr> inputs,
                 const Attempt& way, OdModelerBodyPtr& result, OdModelerHistory* history) {
  const bool needsHistory = history != nullptr || std::ranges::any_of(inputs, hasColors);
  // Whatever is kept is dropped by the next operation, whether that can use it or not.
  LastIntersections last = std::exchange(lastIntersections(), {});
  std::unique_ptr<Operation> operation;
  if (kind == OdModelerBooleanKind::kSubtract && way.fuzz == 0.0 && last.cut &&
      std::ranges::equal(last.inputs, inputs)) {
    operation = std::move(last.cut);
  } else {
    last.met = intersect(inputs, way.fuzz);
    if (last.met->HasErrors())
      return {eModelerError, OdString(nameOf(kind)) + L": " + reportOf(*last.met)};
    if (kind == OdModelerBooleanKind::kIntersect && way.fuzz == 0.0 && !needsHistory) {
      if (const OdModelerBodyPtr common = commonByCut(inputs, last.met)) {
        result = common;
        return {};
      }
    }
    operation = newOperation(kind, *last.met);
    run(*operation, inputs);
  }
  if (!isDone(*operation))
    return {eModelerError, OdString(nameOf(kind)) + L": " + reportOf(*operation)};
  const Simplified outcome = simplified(*operation, inputs, way.faces, way.unifyEdges);
  const OdModelerBodyPtr plain = odBodyFromOcct(remains(outcome.shape, allSolid(inputs)));
  if (!plain || plain->numFaces() + plain->numEdges() == 0) {
    return failure(eDegenerateGeometry, nameOf(kind), "nothing is left");
  }
  if (OdStatus sound = checkOutcome(asOcct(*plain), asOcct(*inputs.front())); !sound.ok()) {
    return {eModelerInvalidBody, OdString(nameOf(kind)) + L": " + sound.text};
  }
  if (!needsHistory) {
    result = withNote(plain, outcome.leftApart, {inputs.front()->attributes().name, {}, {}, {}});
    return {};
  }
  OdModelerHistory fates = collectHistory(*outcome.history, inputs, asOcct(*plain));
  result = withNote(plain, outcome.leftApart, inheritAttributes(inputs, fates));
  if (history != nullptr) *history = std::move(fates);
  return {};
}

OdStatus combine(OdModelerBooleanKind kind, std::span<const OdModelerBodyPtr> inputs,
                 OdModelerBodyPtr& result, OdModelerHistory* history) {
  OdStatus first;
  for (const Attempt& way : kAttempts) {
    OdStatus status =
        guarded(nameOf(kind), [&] { return attempt(kind, inputs, way, result, history); });
    if (status.ok() || status.code == eDegenerateGeometry || status.code == eOutOfMemory)
      return status;
    if (first.ok()) first = std::move(status);
  }
  return first;
}

}  // namespace

OdStatus boolean(OdModelerBooleanKind kind, const OdModelerBodyPtr& base,
                 std::span<const OdModelerBodyPtr> tools, OdModelerBodyPtr& result,
                 OdModelerHistory* history) {
  std::vector<OdModelerBodyPtr> inputs{base};
  inputs.insert(inputs.end(), tools.begin(), tools.end());
  if (OdStatus status = checkInputs(kind, inputs); !status.ok()) return status;
  return combine(kind, inputs, result, history);
}

OdStatus compound(std::span<const OdModelerBodyPtr> bodies, OdModelerBodyPtr& result) {
  if (bodies.empty() || std::ranges::count(bodies, nullptr) != 0) {
    return failure(eInvalidInput, "compound", "there is no body, or one is null");
  }
  return guarded("compound", [&]() -> OdStatus {
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
