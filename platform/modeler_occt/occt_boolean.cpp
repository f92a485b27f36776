// Booleans of solids, with their history.
//
// Bodies that lie apart are united as they are (occt_unite_apart.h). Otherwise the faces near the
// tools are tried alone (occt_local_split.h, occt_local_boolean.h). Where they do not decide, for
// reasons that the history names, a boolean looks at the whole bodies, in five steps:
//   1. intersect: all inputs are divided where they meet;
//   2. select: the operation keeps the parts that it asks for;
//   3. join (occt_simplify.h): faces of one surface and edges of one curve that the operation
//      brought together become one;
//   4. check (occt_check.cpp): the outcome is sound, at the cost of what the operation changed;
//   5. history and attributes (occt_history.h): each part of an input gets its images.
//
// The modeller fails now and then, with an exception or an unsound body, where inputs nearly
// coincide or where parts are joined. The operation is then tried again in another of the ways of
// kAttempts, which ask less of it step by step. No way gives a body that fails the check, so that a
// retry can cost edges and faces too many, but never a wrong body. There are six ways, so it ends.
//
// Time is the first step, which compares each face of an input with those of the others whose boxes
// it meets; the other steps grow with the number of parts of the outcome.
#include <BOPAlgo_PaveFiller.hxx>
#include <BRepAlgoAPI_Common.hxx>
#include <BRepAlgoAPI_Cut.hxx>
#include <BRepAlgoAPI_Fuse.hxx>
#include <BRepTools_History.hxx>
#include <BRep_Builder.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_ListOfShape.hxx>
#include <TopoDS_Compound.hxx>
#include <algorithm>
#include <sstream>
#include <utility>

#include "platform/modeler_occt/occt_body.h"
#include "platform/modeler_occt/occt_bridge.h"
#include "platform/modeler_occt/occt_guard.h"
#include "platform/modeler_occt/occt_history.h"
#include "platform/modeler_occt/occt_kept_cut.h"
#include "platform/modeler_occt/occt_local_boolean.h"
#include "platform/modeler_occt/occt_local_split.h"
#include "platform/modeler_occt/occt_operations.h"
#include "platform/modeler_occt/occt_removed_part.h"
#include "platform/modeler_occt/occt_simplify.h"
#include "platform/modeler_occt/occt_unite_apart.h"

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

std::unique_ptr<BOPAlgo_PaveFiller> intersect(std::span<const OdModelerBodyPtr> inputs,
                                              double fuzz) {
  auto met = std::make_unique<BOPAlgo_PaveFiller>();
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

// Several shapes in a compound; a single shape as it is.
TopoDS_Shape joined(const TopTools_ListOfShape& shapes) {
  if (shapes.Extent() == 1) return shapes.First();
  TopoDS_Compound whole;
  BRep_Builder builder;
  builder.MakeCompound(whole);
  for (const TopoDS_Shape& shape : shapes) builder.Add(whole, shape);
  return whole;
}

// The solids of the outcome where all inputs are solid, else all of the outcome.
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

// Later ways give the same body with more edges or faces, or within a tolerance that is a hundred
// times what the modeller counts as one point.
constexpr Attempt kAttempts[] = {
    {0.0, true, FacesToJoin::kAll},     {0.0, false, FacesToJoin::kAll},
    {1e-5, true, FacesToJoin::kAll},    {0.0, true, FacesToJoin::kPlanes},
    {0.0, false, FacesToJoin::kPlanes}, {0.0, false, FacesToJoin::kNone},
};

bool isDone(const Operation& operation) { return operation.IsDone() && !operation.HasErrors(); }

/// One boolean of a base, the first input, and tools, the others.
class Combination {
 public:
  Combination(OdModelerBooleanKind kind, std::span<const OdModelerBodyPtr> inputs,
              const Options& options, KeptCut& kept, bool wantsHistory)
      : m_kind(kind),
        m_options(options),
        m_inputs(inputs),
        m_needsHistory(wantsHistory || std::ranges::any_of(inputs, hasColors)),
        m_kept(kept),
        m_known(kept.take(inputs)) {}

  /// `fates` stays empty where neither the caller nor the attributes need it.
  OdStatus run(OdModelerBodyPtr& result, OdModelerHistory& fates) {
    if (m_options.reach == OdOcctReach::kLocal && runLocally(result, fates)) return {};
    OdStatus status = runWhole(result, fates);
    fates.effort.wholeBecause = m_whyWhole;
    return status;
  }

 private:
  OdStatus runWhole(OdModelerBodyPtr& result, OdModelerHistory& fates) {
    OdStatus first;
    for (const Attempt& way : kAttempts) {
      OdStatus status = guarded(nameOf(m_kind), [&] { return attempt(way, result, fates); });
      if (status.ok() || status.code == eDegenerateGeometry || status.code == eOutOfMemory) {
        return status;
      }
      if (first.ok()) first = std::move(status);
    }
    const bool isOfBase = first.code == eModelerInvalidBody && !m_inputs.front()->check().ok();
    if (isOfBase) first.text += L" (the body was not sound before)";
    return first;
  }

  // False where the operation must look at the whole bodies, or the modeller fails.
  bool runLocally(OdModelerBodyPtr& result, OdModelerHistory& fates) {
    LocalResult local;
    const OdStatus status = guarded(nameOf(m_kind), [&]() -> OdStatus {
      OdStatus split;
      if (!m_known.local) split = splitLocally(m_inputs, m_options, m_known.local);
      if (!split.ok()) return split;
      return booleanLocally(m_kind, m_inputs, *m_known.local, m_options, m_needsHistory, local);
    });
    if (m_known.local && m_kind == OdModelerBooleanKind::kIntersect) {
      FinishedBoolean kept;
      kept.local = m_known.local;
      m_kept.keep(m_inputs, std::move(kept));
    }
    if (!status.ok()) {
      m_whyWhole = status.text;
      return false;
    }
    fates = std::move(local.history);
    fates.effort.numFaces = static_cast<OdUInt32>(m_known.local->region.faces.size());
    result = local.body->withAttributes(m_needsHistory ? inheritAttributes(m_inputs, fates)
                                                       : namedAsBase());
    return true;
  }

  OdStatus attempt(const Attempt& way, OdModelerBodyPtr& result, OdModelerHistory& fates) {
    FinishedBoolean done;
    if (canUseKnown(way)) {
      done = std::move(m_known);
    } else {
      done.intersections = intersect(m_inputs, way.fuzz);
      if (done.intersections->HasErrors()) return failed(reportOf(*done.intersections));
      if (mayGoByCut(way) && commonByCut(done, result)) return {};
      done.operation = newOperation(m_kind, *done.intersections);
      od_occt::run(*done.operation, m_inputs);
    }
    if (!isDone(*done.operation)) return failed(reportOf(*done.operation));
    return finish(*done.operation, way, result, fates);
  }

  [[nodiscard]] bool canUseKnown(const Attempt& way) const {
    return m_kind == OdModelerBooleanKind::kSubtract && way.fuzz == 0.0 && m_known.operation;
  }
  // The cut has no history of the intersection.
  [[nodiscard]] bool mayGoByCut(const Attempt& way) const {
    return m_kind == OdModelerBooleanKind::kIntersect && way.fuzz == 0.0 && !m_needsHistory &&
           m_inputs.size() == 2 && allSolid(m_inputs);
  }

  // The intersection put together from the cut, which is kept. Takes the intersections of `done` in
  // that case. False where the parts of the cut do not bound the common part plainly.
  bool commonByCut(FinishedBoolean& done, OdModelerBodyPtr& result) {
    auto cut = std::make_unique<BRepAlgoAPI_Cut>(*done.intersections);
    od_occt::run(*cut, m_inputs);
    if (!isDone(*cut)) return false;
    const TopoDS_Shape part =
        removedPart(*cut, shapesOf(m_inputs.first(1)), shapesOf(m_inputs.subspan(1)));
    const OdModelerBodyPtr body = part.IsNull() ? nullptr : odBodyFromOcct(part);
    if (!body || !checkShape(asOcct(*body).shape()).ok()) return false;
    done.operation = std::move(cut);
    m_kept.keep(m_inputs, std::move(done));
    result = body->withAttributes(namedAsBase());
    return true;
  }

  OdStatus finish(Operation& operation, const Attempt& way, OdModelerBodyPtr& result,
                  OdModelerHistory& fates) {
    const Simplified outcome = simplified({operation.Shape(), operation.History()}, m_inputs,
                                          nullptr, way.faces, way.unifyEdges);
    const std::shared_ptr<const Body> plain =
        bodyOf(remains(outcome.shape, allSolid(m_inputs)), {}, {outcome.leftApart, {}});
    if (!plain || plain->numFaces() + plain->numEdges() == 0) {
      return failure(eDegenerateGeometry, nameOf(m_kind), "nothing is left");
    }
    if (OdStatus sound = checkOutcome(*plain, asOcct(*m_inputs.front())); !sound.ok()) {
      return {eModelerInvalidBody, OdString(nameOf(m_kind)) + L": " + sound.text};
    }
    if (!m_needsHistory) {
      result = plain->withAttributes(namedAsBase());
      return {};
    }
    fates = collectHistory(*outcome.history, m_inputs, *plain);
    result = plain->withAttributes(inheritAttributes(m_inputs, fates));
    return {};
  }

  [[nodiscard]] OdStatus failed(const OdString& report) const {
    return {eModelerError, OdString(nameOf(m_kind)) + L": " + report};
  }
  [[nodiscard]] OdModelerBodyAttributes namedAsBase() const {
    return {m_inputs.front()->attributes().name, {}, {}, {}};
  }

  OdModelerBooleanKind m_kind;
  const Options& m_options;
  std::span<const OdModelerBodyPtr> m_inputs;
  bool m_needsHistory;
  KeptCut& m_kept;
  FinishedBoolean m_known;  // the cut of these inputs, if it was kept
  OdString m_whyWhole;
};

// Null where the bodies meet, or may meet, or the modeller fails.
OdModelerBodyPtr unitedApart(std::span<const OdModelerBodyPtr> inputs, OdModelerHistory& fates) {
  OdModelerBodyPtr result;
  const OdStatus status = guarded("unite", [&]() -> OdStatus {
    const std::shared_ptr<const Body> whole = uniteApart(inputs);
    if (!whole) return {};
    const Handle(BRepTools_History) nothingChanged = new BRepTools_History;
    fates = collectHistory(*nothingChanged, inputs, *whole);
    result = whole->withAttributes(inheritAttributes(inputs, fates));
    return {};
  });
  return status.ok() ? result : nullptr;
}

}  // namespace

OdStatus boolean(OdModelerBooleanKind kind, const OdModelerBodyPtr& base,
                 std::span<const OdModelerBodyPtr> tools, const Options& options, KeptCut& kept,
                 OdModelerBodyPtr& result, OdModelerHistory* history) {
  std::vector<OdModelerBodyPtr> inputs{base};
  inputs.insert(inputs.end(), tools.begin(), tools.end());
  if (OdStatus status = checkInputs(kind, inputs); !status.ok()) return status;
  OdModelerHistory fates;
  const bool mayBeApart =
      kind == OdModelerBooleanKind::kUnite && options.reach == OdOcctReach::kLocal;
  // What is kept stays for the cut with what is united here.
  const OdModelerBodyPtr apart = mayBeApart ? unitedApart(inputs, fates) : nullptr;
  OdStatus status;
  if (apart) {
    result = apart;
  } else {
    status = Combination(kind, inputs, options, kept, history != nullptr).run(result, fates);
  }
  if (status.ok() && history != nullptr) *history = std::move(fates);
  return status;
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
