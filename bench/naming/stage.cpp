// A part under edit: carries out operations at the modeller and writes down what a host would know
// of them: the journal of changes, and which tool cut which face.
#include "bench/naming/stage.h"

#include <algorithm>

#include "bench/naming/made_body.h"
#include "platform/base/sort_unique.h"

namespace naming_bench {
namespace {

using Kind = OdModelerBooleanKind;
using FaceTable = std::vector<std::vector<OdUInt32>>;

// Follows the faces of a table through one operation.
void follow(FaceTable& table, const OdModelerInputHistory& fates) {
  for (std::vector<OdUInt32>& faces : table) {
    std::vector<OdUInt32> now;
    for (const OdUInt32 face : faces) {
      const std::vector<OdUInt32>& images = fates.faces[face - 1].images;
      now.insert(now.end(), images.begin(), images.end());
    }
    odSortUnique(now);
    faces = std::move(now);
  }
}

FaceTable imagesOf(const OdModelerInputHistory& tool) {
  FaceTable table;
  for (const OdModelerFate& fate : tool.faces) table.push_back(fate.images);
  return table;
}

}  // namespace

void Stage::begin() {
  m_trace = {};
  m_trace.before = m_part.body;
  m_atBegin = m_part;
  m_pending.clear();
}

const EditTrace& Stage::finish() {
  m_trace.after = m_part.body;
  for (const Pending& pending : m_pending) {
    const auto found = m_part.tracks.find(pending.feature);
    const Feature* feature = m_part.plan.find(pending.feature);
    if (found == m_part.tracks.end() || feature == nullptr) {
      m_trace.respawns.push_back({pending.feature, pending.before, {}, {}});
      continue;
    }
    const OdGeMatrix3d motion = m_part.plan.frameOf(*feature) * pending.frame.inverse();
    m_trace.respawns.push_back({pending.feature, pending.before, found->second.faces, motion});
  }
  return m_trace;
}

void Stage::change(Operation operation, OdSolidChange change) {
  m_trace.operations.push_back(std::move(operation));
  change.before = m_part.body;
  if (change.history) {
    for (auto& [name, track] : m_part.tracks) follow(track.faces, change.history->inputs[0]);
  }
  m_part.body = change.after;
  m_trace.changes.push_back(std::move(change));
}

void Stage::combine(Kind kind, const OdModelerBodyPtr& tool) {
  OdSolidChange done;
  done.kind = OdSolidChangeKind::kBoolean;
  done.tools = {tool};
  auto history = std::make_shared<OdModelerHistory>();
  done.after = made([&](auto& result) {
    return odModeler().boolean(kind, m_part.body, done.tools, result, history.get());
  });
  done.history = history;
  change({Operation::Kind::kBoolean, kind, tool, 0, 0.0, {}}, std::move(done));
}

void Stage::fillet(OdUInt32 edge, double radius) {
  blend(Operation::Kind::kFillet, &OdModeler::fillet, edge, radius);
}

void Stage::chamfer(OdUInt32 edge, double distance) {
  blend(Operation::Kind::kChamfer, &OdModeler::chamfer, edge, distance);
}

void Stage::blend(Operation::Kind kind, Blending operation, OdUInt32 edge, double size) {
  OdSolidChange done;
  done.kind = OdSolidChangeKind::kBlend;
  auto history = std::make_shared<OdModelerHistory>();
  done.after = made([&](auto& result) {
    return (odModeler().*operation)(m_part.body, {&edge, 1}, size, result, history.get());
  });
  done.history = history;
  change({kind, {}, nullptr, edge, size, {}}, std::move(done));
}

void Stage::move(const OdGeMatrix3d& motion) {
  OdSolidChange done;
  done.kind = OdSolidChangeKind::kMoved;
  done.transform = motion;
  done.after = moved(m_part.body, motion);
  for (auto& [name, track] : m_part.tracks) {
    track.tool = moved(track.tool, motion);
    track.residue = moved(track.residue, motion);
  }
  change({Operation::Kind::kMove, {}, nullptr, 0, 0.0, motion}, std::move(done));
}

void Stage::replace(const OdModelerBodyPtr& body) {
  OdSolidChange done;
  done.kind = OdSolidChangeKind::kReplaced;
  done.after = body;
  m_part.tracks.clear();
  change({Operation::Kind::kReplace, {}, body, 0, 0.0, {}}, std::move(done));
}

void Stage::insert(const Feature& feature) {
  ToolTrack track;
  track.unites = feature.unites();
  track.tool = toolBody(m_part.plan, feature);
  track.residue = made([&](auto& result) {
    return track.unites ? odModeler().boolean(Kind::kSubtract, track.tool, {&m_part.body, 1},
                                              result, nullptr)
                        : odModeler().boolean(Kind::kIntersect, m_part.body, {&track.tool, 1},
                                              result, nullptr);
  });
  combine(track.unites ? Kind::kUnite : Kind::kSubtract, track.tool);
  track.faces = imagesOf(m_trace.changes.back().history->inputs[1]);
  m_part.tracks[feature.name] = std::move(track);
}

void Stage::heal(const std::string& feature) {
  const auto track = m_part.tracks.find(feature);
  if (track == m_part.tracks.end()) {
    throw std::runtime_error("feature " + feature + " has no tool");
  }
  const auto old = m_atBegin.tracks.find(feature);
  if (old != m_atBegin.tracks.end()) {
    const OdGeMatrix3d frame = m_atBegin.plan.frameOf(*m_atBegin.plan.find(feature));
    m_pending.push_back({feature, frame, old->second.faces});
  }
  const ToolTrack healed = m_part.tracks.extract(track).mapped();
  combine(healed.unites ? Kind::kSubtract : Kind::kUnite, healed.residue);
}

void Stage::recut(const std::vector<Feature>& now) {
  for (const Feature& feature : now) heal(feature.name);
  for (const Feature& feature : now) {
    *std::ranges::find(m_part.plan.features, feature.name, &Feature::name) = feature;
    insert(feature);
  }
}

Part startPart(const Plan& plan) {
  Part part;
  part.plan = plan;
  part.body = baseBody(plan);
  Stage stage(part);
  for (const Feature& feature : plan.features) stage.insert(feature);
  return part;
}

}  // namespace naming_bench
