// The fates of a part's faces over a whole edit.
#include "bench/naming/fates.h"

#include <algorithm>

#include "platform/base/sort_unique.h"

namespace naming_bench {

std::vector<std::vector<OdUInt32>> faceImages(const EditTrace& edit) {
  std::vector<std::vector<OdUInt32>> images;
  for (OdUInt32 i = 1; i <= edit.before->numFaces(); ++i) images.push_back({i});
  for (const OdSolidChange& change : edit.changes) {
    if (change.kind == OdSolidChangeKind::kReplaced) return {};
    if (change.kind == OdSolidChangeKind::kMoved) continue;
    for (std::vector<OdUInt32>& faces : images) {
      std::vector<OdUInt32> now;
      for (const OdUInt32 face : faces) {
        const auto& next = change.history->inputs[0].faces[face - 1].images;
        now.insert(now.end(), next.begin(), next.end());
      }
      faces = std::move(now);
    }
  }
  for (const Respawn& respawn : edit.respawns) {
    for (std::size_t k = 0; k < respawn.before.size() && k < respawn.after.size(); ++k) {
      for (const OdUInt32 face : respawn.before[k]) {
        std::vector<OdUInt32>& now = images[face - 1];
        now.insert(now.end(), respawn.after[k].begin(), respawn.after[k].end());
      }
    }
  }
  for (std::vector<OdUInt32>& faces : images) {
    odSortUnique(faces);
  }
  return images;
}

}  // namespace naming_bench
