// Which subentities of a body are those that were born where a reference was.
#pragma once

#include <map>
#include <optional>
#include <span>
#include <vector>

#include "host/naming/birth_history.h"
#include "host/naming/subent_match.h"

namespace vdm_host {

/// The births at a face, edge or vertex: one set for each face there, in order.
[[nodiscard]] std::vector<BirthSet> birthsAt(const OdModelerBody& body, const FaceBirths& births,
                                             OdModelerSubent subent);

/// A reference, as far as births go: one set for a face, one for each face at an edge or vertex.
struct BornReference {
  OdModelerSubent old;  ///< in the old body; index 0 when it led nowhere
  std::vector<BirthSet> births;
  SubentSignature record;  ///< of its record, where the new body is; for one that led nowhere
};

/// Laws:
///   1. a face is all faces whose births meet its set; an edge or vertex is all where a face of
///      each set meets: one, several (split), or none (lost). What stayed is a candidate like what
///      was cut. Where faces have merged, an edge has only the births whose tools reach it;
///   2. where the old body had several of the same births, each is what the history says has become
///      of it. What comes from none of them belongs to those that the history leaves without: to
///      the one in whose place it lies after the tool's motion, else to all of them;
///   3. edges and vertices of the same birth on another curve, or at another place, are not it:
///      the identical one after the motion counts, else the nearest when the next is at least twice
///      as far. What was not cut again did not leave its curve;
///   4. where nothing meets and no tool's face is among the births, it is the one identical
///      subentity of no known origin: the part has lost it and got it back.
class BirthMatcher {
 public:
  /// All arguments outlive this.
  BirthMatcher(const OdModelerBody& before, const OdModelerBody& now, const BirthHistory& history,
               LineageMatcher& lineage);

  /// Births at the new subentity are the very ones that the old one has.
  [[nodiscard]] bool isSteady(OdModelerSubent old, OdUInt32 image) const;
  /// The births of an old and of a new subentity, in the form of BornReference.
  [[nodiscard]] std::vector<BirthSet> birthsBefore(OdModelerSubent subent) const;
  [[nodiscard]] std::vector<BirthSet> birthsNow(OdModelerSubent subent) const;
  /// Adds births that the old body's record began without.
  void addLateBirths(BornReference& reference) const;
  /// Exact, by lineage, split, ambiguous or lost; by signature where law 4 finds what led nowhere.
  [[nodiscard]] SubentMatch match(const BornReference& reference);
  /// The first opening among the births that was closed in these changes; 0 for none.
  [[nodiscard]] FaceBirth redoneBirth(const std::vector<BirthSet>& births) const;

 private:
  /// A body and its births, with the faces of each birth.
  struct Side {
    const OdModelerBody& body;
    const FaceBirths& births;
    std::map<FaceBirth, std::vector<OdUInt32>> faces;
    bool isIndexed = false;
  };
  using Indices = std::vector<OdUInt32>;

  static void index(Side& side);
  [[nodiscard]] static Indices facesOf(Side& side, const BirthSet& set);
  [[nodiscard]] bool isMetAt(const BirthSet& set, OdUInt32 face, OdUInt32 edge) const;
  void keepReached(const std::vector<BirthSet>& births, Indices& edges) const;
  [[nodiscard]] static Indices candidates(Side& side, OdModelerSubentType type,
                                          const std::vector<BirthSet>& births);
  [[nodiscard]] SubentSignature placed(OdModelerSubent old, const std::vector<BirthSet>& births);
  [[nodiscard]] Indices ofSeveral(const BornReference& reference, const Indices& all,
                                  const Indices& siblings);
  [[nodiscard]] std::optional<Indices> inOwnPlaces(const BornReference& reference,
                                                   const Indices& fresh, const Indices& homeless);
  [[nodiscard]] SubentMatch byEachBirth(const BornReference& reference, const Indices& found);
  [[nodiscard]] SubentMatch byCurve(const BornReference& reference, Indices found);
  [[nodiscard]] SubentMatch graded(const BornReference& reference, Indices found);
  [[nodiscard]] SubentMatch ofThePart(const BornReference& reference);
  [[nodiscard]] bool isOfUnknownOrigin(const BornReference& reference, OdUInt32 image) const;
  const MatchTolerance& tolerance();

  Side m_before;
  Side m_now;
  const BirthHistory& m_history;
  LineageMatcher& m_lineage;
  std::optional<MatchTolerance> m_tolerance;
};

}  // namespace vdm_host
