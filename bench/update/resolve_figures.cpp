// References brought up to date after one more cut, and resolved, as cuts accumulate; the peer
// solves the same names over the same record of cuts. References lead to every face, edge and
// vertex of the plate, each made when its hole was cut.
#include <map>
#include <set>
#include <stdexcept>

#include "bench/naming/label_naming.h"
#include "bench/naming/reference_drawing.h"
#include "bench/naming/truth.h"
#include "bench/update/figures.h"
#include "host/naming/reference_query.h"

namespace {

using namespace naming_bench;

constexpr std::size_t kColumns = 40;
constexpr double kPitch = 12.0;

/// Subentities of the body that the last cut made.
std::vector<OdModelerSubent> madeBy(const EditTrace& edit) {
  std::set<OdModelerSubent> all;
  for (const OdModelerSubent subent : referable(*edit.after)) all.insert(subent);
  const OdModelerInputHistory& old = edit.changes.front().history->inputs[0];
  for (const auto type :
       {OdModelerSubentType::kFace, OdModelerSubentType::kEdge, OdModelerSubentType::kVertex}) {
    for (const OdModelerFate& fate : old.fates(type)) {
      for (const OdUInt32 image : fate.images) all.erase({type, image});
    }
  }
  return {all.begin(), all.end()};
}

struct KindRow {
  const char* what;
  OdModelerSubentType type;
};
constexpr KindRow kKinds[] = {{"faces", OdModelerSubentType::kFace},
                              {"edges", OdModelerSubentType::kEdge},
                              {"vertices", OdModelerSubentType::kVertex}};

struct Solved {
  double seconds = 0.0;
  std::size_t count = 0;
};

/// A plate that is cut again and again, with both kinds of references.
class CutPlate {
 public:
  CutPlate(std::size_t cuts, bool withLabels) : m_withLabels(withLabels) {
    m_part.plan.length = kPitch * kColumns;
    m_part.plan.width = kPitch * static_cast<double>((cuts + kColumns) / kColumns + 1);
    m_part.plan.height = 10.0;
    m_part.body = baseBody(m_part.plan);
    m_stage = std::make_unique<Stage>(m_part);
    const std::vector<OdModelerSubent> all = referable(*m_part.body);
    m_drawing = std::make_unique<ReferenceDrawing>(m_part.body, all);
    if (m_withLabels) m_labels.begin(m_part.body);
    remember(all);
  }

  /// One more hole; the references to it are made afterwards.
  SettleCost cut() {
    Feature hole;
    hole.a = 4.0;
    hole.b = 11.0;
    hole.frame =
        OdGeMatrix3d::translation({kPitch * (static_cast<double>(m_holes % kColumns) + 0.5),
                                   kPitch * (static_cast<double>(m_holes / kColumns) + 0.5), 10.0});
    ++m_holes;
    m_stage->begin();
    m_stage->combine(OdModelerBooleanKind::kSubtract, toolBody(m_part.plan, hole));
    const EditTrace& edit = m_stage->finish();
    const SettleCost cost = m_drawing->adopt(edit);
    if (m_withLabels) m_labels.edited(edit);
    m_settled = m_count;
    const std::vector<OdModelerSubent> more = madeBy(edit);
    m_drawing->append(more);
    remember(more);
    return cost;
  }

  [[nodiscard]] std::size_t holes() const { return m_holes; }
  /// References that the last cut found there.
  [[nodiscard]] std::size_t settled() const { return m_settled; }
  [[nodiscard]] std::size_t references() const { return m_count; }

  [[nodiscard]] double resolveOurs() const {
    const OdDbObjectIdArray all = m_drawing->dependencies();
    return workOf([&] {
      for (const vdm_host::ResolvedReference& now :
           vdm_host::resolveReferences({all.begin(), all.size()})) {
        if (!now.resolved()) throw std::logic_error("lost");
      }
    });
  }
  /// Of one kind, a sample when there are many.
  Solved solveLabels(OdModelerSubentType type) {
    Solved solved;
    std::vector<OdModelerSubent> found;
    solved.seconds = workOf([&] {
      for (std::size_t i = 0; i < m_count; i += 1 + m_count / 1000) {
        if (m_types[i] != type) continue;
        m_labels.solve(i, found);
        ++solved.count;
      }
    });
    return solved;
  }

 private:
  void remember(const std::vector<OdModelerSubent>& subents) {
    if (m_withLabels) m_labels.select(subents);
    m_count += subents.size();
    for (const OdModelerSubent subent : subents) m_types.push_back(subent.type);
  }

  Part m_part;
  std::unique_ptr<Stage> m_stage;
  std::unique_ptr<ReferenceDrawing> m_drawing;
  LabelNaming m_labels;
  bool m_withLabels;
  std::size_t m_holes = 0;
  std::size_t m_settled = 0;
  std::size_t m_count = 0;
  std::vector<OdModelerSubentType> m_types;  // by reference
};

constexpr double kMsFor10000 = 1e3 * 10000.0;

/// The same 10,000 references by the peer, kind by kind and all together.
void addPeers(const std::string& name, double ours, CutPlate& plate, std::vector<Figure>& figures) {
  Solved all;
  for (const KindRow& kind : kKinds) {
    const Solved peer = plate.solveLabels(kind.type);
    all.seconds += peer.seconds;
    all.count += peer.count;
    figures.push_back({name, std::string("labels solved, ") + kind.what, ours,
                       kMsFor10000 * peer.seconds / static_cast<double>(peer.count), "ms"});
  }
  figures.push_back({name, "labels solved, all kinds", ours,
                     kMsFor10000 * all.seconds / static_cast<double>(all.count), "ms"});
}

}  // namespace

std::vector<Figure> measureResolving(const FigureOptions& options) {
  std::vector<Figure> figures;
  if (options.cuts.empty()) return figures;
  constexpr std::size_t kRepeats = 5;
  CutPlate plate(options.cuts.back() + kRepeats, options.peers);
  for (const std::size_t cuts : options.cuts) {
    while (plate.holes() < cuts) (void)plate.cut();
    std::vector<double> settled;
    std::vector<double> resolved;
    std::vector<double> renumbered;
    for (std::size_t i = 0; i < kRepeats; ++i) {
      const SettleCost cost = plate.cut();
      const auto count = static_cast<double>(plate.settled());
      settled.push_back(cost.seconds / count);
      renumbered.push_back(100.0 * static_cast<double>(cost.renumbered) / count);
      resolved.push_back(plate.resolveOurs() / static_cast<double>(plate.references()));
    }
    const double settle = kMsFor10000 * medianOf(settled);
    const double resolve = kMsFor10000 * medianOf(resolved);
    const std::string name = "10,000 references, " + std::to_string(cuts) + " cuts";
    if (options.peers) addPeers(name, settle + resolve, plate, figures);
    figures.push_back({name, "", settle + resolve, 0.0, "ms"});
    figures.push_back({"  of that brought up to date", "", settle, 0.0, "ms"});
    figures.push_back({"  of that resolved", "", resolve, 0.0, "ms"});
    figures.push_back({"  renumbered by the cut", "", medianOf(renumbered), 0.0, "%"});
  }
  return figures;
}
