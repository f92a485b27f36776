// What one body became in another one.
//
// The idea: bodies and operations form a graph without cycles, since a body is never changed after
// it was made. A trace keeps the part of that graph that leads from the old body to the new one, as
// a list of steps in the order in which they happened. Bodies are numbered, the old one is 0.
//
// The invariant of following: before a step is taken, all that ever arrives at its first body has
// arrived, because each step into a body happened before each step out of it. One walk over the
// list in its order is therefore enough, and where two ways meet the images are united.
//
// The cost of following one subentity is the number of steps times the images on the way, which is
// nearly always one. A chain, by far the most frequent case, needs no set of images for each body.
#include "host/naming/body_trace.h"

#include <utility>

#include "platform/base/sort_unique.h"

namespace vdm_host {

namespace {

// Replaces the images by their images after one more operation. `found` is spare memory.
void mapImages(SubentFate& fate, const std::vector<OdModelerFate>& next,
               std::vector<OdUInt32>& found) {
  found.clear();
  for (const OdUInt32 middle : fate.images) {
    // A damaged history may be shorter than the body has subentities: such an image ends here.
    if (middle > next.size()) continue;
    const OdModelerFate& step = next[middle - 1];
    found.insert(found.end(), step.images.begin(), step.images.end());
    fate.changed |= step.changed;
  }
  if (found.size() > 1) odSortUnique(found);
  std::swap(fate.images, found);
}

}  // namespace

// Drops the steps that do not lead to the body. Walks backwards: a step leads there when the body
// after it does.
void BodyTrace::keepWaysTo(OdUInt32 body) {
  m_last = body;
  std::vector<bool> leads(m_bodies, false);
  leads[body] = true;
  std::vector<Step> kept;
  for (auto step = m_steps.rbegin(); step != m_steps.rend(); ++step) {
    if (!leads[step->to]) continue;
    leads[step->from] = true;
    kept.push_back(*step);
  }
  m_steps.assign(kept.rbegin(), kept.rend());
  OdUInt32 at = 0;
  for (const Step& step : m_steps) {
    m_isChain &= step.from == at;
    at = step.to;
  }
}

void BodyTrace::follow(OdModelerSubent subent, SubentFate& fate) const {
  fate.images.clear();
  fate.changed = false;
  if (!m_old->hasSubent(subent)) return;
  if (m_isChain) {
    followChain(subent, fate);
  } else {
    followWays(subent, fate);
  }
}

void BodyTrace::followChain(OdModelerSubent subent, SubentFate& fate) const {
  fate.images.push_back(subent.index);
  std::vector<OdUInt32> found;
  for (const Step& step : m_steps) {
    if (step.history == nullptr) continue;
    const std::vector<OdModelerFate>& next = step.history->fates(subent.type);
    if (fate.images.size() != 1) {
      mapImages(fate, next, found);
      continue;
    }
    // The frequent case, one image that stays one, copies into memory that is there already.
    const OdUInt32 index = fate.images.front();
    if (index > next.size()) {
      fate.images.clear();
      continue;
    }
    const OdModelerFate& one = next[index - 1];
    fate.images.assign(one.images.begin(), one.images.end());
    if (fate.images.size() > 1) odSortUnique(fate.images);
    fate.changed |= one.changed;
  }
}

// Several ways lead from the old body to the new one: images that arrive at a body by different
// ways are united there.
void BodyTrace::followWays(OdModelerSubent subent, SubentFate& fate) const {
  std::vector<SubentFate> reached(m_bodies);
  reached[0].images.push_back(subent.index);
  std::vector<OdUInt32> found;
  for (const Step& step : m_steps) {
    SubentFate next = reached[step.from];
    if (step.history != nullptr) mapImages(next, step.history->fates(subent.type), found);
    SubentFate& meeting = reached[step.to];
    meeting.images.insert(meeting.images.end(), next.images.begin(), next.images.end());
    odSortUnique(meeting.images);
    meeting.changed |= next.changed;
  }
  fate = std::move(reached[m_last]);
}

std::vector<OdUInt32> BodyTrace::sourceCounts(OdModelerSubentType type, OdUInt32 count) const {
  std::vector<OdUInt32> counts(count, 0);
  SubentFate fate;
  for (OdUInt32 index = 1; index <= m_old->numSubents(type); ++index) {
    follow({type, index}, fate);
    for (const OdUInt32 image : fate.images) {
      if (image > counts.size()) counts.resize(image, 0);
      ++counts[image - 1];
    }
  }
  return counts;
}

}  // namespace vdm_host
