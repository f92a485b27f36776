// The subtraction that an intersection has computed.
#include "platform/modeler_occt/occt_kept_cut.h"

#include <BOPAlgo_PaveFiller.hxx>
#include <BRepAlgoAPI_BooleanOperation.hxx>
#include <TopExp_Explorer.hxx>
#include <algorithm>
#include <utility>

#include "platform/modeler_occt/occt_body.h"

namespace od_occt {
namespace {

std::vector<TopoDS_Shape> solidsOf(std::span<const OdModelerBodyPtr> bodies) {
  std::vector<TopoDS_Shape> solids;
  for (const OdModelerBodyPtr& body : bodies) {
    for (TopExp_Explorer it(asOcct(*body).shape(), TopAbs_SOLID); it.More(); it.Next()) {
      solids.push_back(it.Current());
    }
  }
  return solids;
}

// One base and the very same solids as tools, one by one or several in a body.
bool haveSameSolids(std::span<const OdModelerBodyPtr> a, std::span<const OdModelerBodyPtr> b) {
  if (a.empty() || b.empty() || a.front() != b.front()) return false;
  return std::ranges::equal(
      solidsOf(a.subspan(1)), solidsOf(b.subspan(1)),
      [](const TopoDS_Shape& x, const TopoDS_Shape& y) { return x.IsEqual(y); });
}

}  // namespace

FinishedBoolean::FinishedBoolean() = default;
FinishedBoolean::~FinishedBoolean() = default;
FinishedBoolean::FinishedBoolean(FinishedBoolean&& other) noexcept = default;

FinishedBoolean& FinishedBoolean::operator=(FinishedBoolean&& other) noexcept {
  operation = std::move(other.operation);
  intersections = std::move(other.intersections);
  local = std::move(other.local);
  return *this;
}

// Old contents are destroyed without the lock: that may take a while.

void KeptCut::keep(std::span<const OdModelerBodyPtr> inputs, FinishedBoolean cut) {
  Content content{{inputs.begin(), inputs.end()}, std::move(cut)};
  const std::scoped_lock lock(m_mutex);
  std::swap(content, m_content);
}

FinishedBoolean KeptCut::take(std::span<const OdModelerBodyPtr> inputs) {
  Content content;
  {
    const std::scoped_lock lock(m_mutex);
    std::swap(content, m_content);
  }
  if (std::ranges::equal(content.inputs, inputs)) return std::move(content.cut);
  FinishedBoolean split;
  if (content.cut.local && haveSameSolids(content.inputs, inputs)) {
    split.local = std::move(content.cut.local);
  }
  return split;
}

}  // namespace od_occt
