// The subtraction that an intersection has computed.
#include "platform/modeler_occt/occt_kept_cut.h"

#include <BOPAlgo_PaveFiller.hxx>
#include <BRepAlgoAPI_BooleanOperation.hxx>
#include <algorithm>
#include <utility>

namespace od_occt {

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
  if (!std::ranges::equal(content.inputs, inputs)) return {};
  return std::move(content.cut);
}

}  // namespace od_occt
