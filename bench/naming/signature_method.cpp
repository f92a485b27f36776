// Naming by signature alone: the new subentity of the same kind whose parameters, size and place
// are nearest, within a bound. It knows motions of the whole part, as a program would, and
// nothing else.
#include <algorithm>
#include <array>
#include <cmath>

#include "bench/naming/method.h"

namespace naming_bench {
namespace {

/// Kind, curvature and size as lengths, and a place.
struct Signature {
  int kind = 0;
  std::array<double, 3> sizes{};  // radii, square root of an area, length
  OdGePoint3d place;
  OdGeVector3d direction;
};

Signature signatureOf(const OdModelerBody& body, OdModelerSubent subent) {
  switch (subent.type) {
    case OdModelerSubentType::kFace: {
      const OdModelerFace& f = body.face(subent.index);
      const int kind = 2 * static_cast<int>(f.kind) + (f.inward ? 1 : 0);
      return {kind, {f.radius, f.minorRadius, std::sqrt(f.area)}, f.centroid, f.normal};
    }
    case OdModelerSubentType::kEdge: {
      const OdModelerEdge& e = body.edge(subent.index);
      const bool round = e.kind == OdModelerCurveKind::kCircle;
      return {
          static_cast<int>(e.kind), {e.radius, 0.0, e.length}, round ? e.center : e.midPoint, {}};
    }
    default:
      return {0, {}, body.vertex(subent.index).point, {}};
  }
}

double difference(const Signature& a, const Signature& b) {
  double sum = a.place.distanceTo(b.place);
  for (std::size_t i = 0; i < a.sizes.size(); ++i) sum += std::abs(a.sizes[i] - b.sizes[i]);
  return sum;
}

bool facesAway(const Signature& a, const Signature& b) {
  constexpr int kPlane = 2 * static_cast<int>(OdModelerSurfaceKind::kPlane);
  return a.kind == kPlane && !a.direction.isZeroLength() &&
         a.direction.dotProduct(b.direction) < 0.5;
}

class SignatureMethod final : public NamingMethod {
 public:
  [[nodiscard]] const char* name() const override { return "signature"; }
  void begin(const OdModelerBodyPtr& body, std::span<const OdModelerSubent> references) override {
    m_body = body;
    m_references.assign(references.begin(), references.end());
    m_signatures.clear();
    for (const OdModelerSubent subent : references) {
      m_signatures.push_back(signatureOf(*body, subent));
    }
  }
  void edited(const EditTrace& edit) override {
    m_body = edit.after;
    for (const OdSolidChange& change : edit.changes) {
      if (change.kind != OdSolidChangeKind::kMoved) continue;
      for (Signature& signature : m_signatures) {
        signature.place = change.transform * signature.place;
        signature.direction = change.transform * signature.direction;
      }
    }
  }
  std::vector<Answer> answers() override {
    // What is farther than a tenth of the part is something else.
    const double bound = 0.1 * m_body->extents().diagonal().length();
    std::vector<Answer> result;
    for (std::size_t i = 0; i < m_references.size(); ++i) {
      const OdModelerSubentType type = m_references[i].type;
      Answer& answer = result.emplace_back();
      double best = bound;
      for (OdUInt32 k = 1; k <= m_body->numSubents(type); ++k) {
        const Signature other = signatureOf(*m_body, {type, k});
        if (other.kind != m_signatures[i].kind || facesAway(m_signatures[i], other)) continue;
        const double apart = difference(m_signatures[i], other);
        if (apart >= best) continue;
        best = apart;
        answer = {Answer::Kind::kNamed, {{type, k}}, {}};
      }
    }
    return result;
  }

 private:
  OdModelerBodyPtr m_body;
  std::vector<OdModelerSubent> m_references;
  std::vector<Signature> m_signatures;
};

}  // namespace

std::unique_ptr<NamingMethod> makeSignatureMethod() { return std::make_unique<SignatureMethod>(); }

}  // namespace naming_bench
