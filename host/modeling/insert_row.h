// InsertRow: components that are inserted with one pass, as if each had had its own.
#pragma once

#include <unordered_map>
#include <vector>

#include "host/modeling/box_index.h"
#include "host/modeling/component_tools.h"
#include "host/modeling/insertion.h"
#include "host/modeling/model_editor.h"

namespace vdm_host {

/// Inserts whose order does not matter, and what each of them has of their common pass. Laws:
///   1. an insert joins the row when its tools and its point keep away from what the inserts before
///      it at the same solid may change: the boxes of their tools, as far as these can reach;
///   2. objects are made in the order of the inserts, those of the pass after them;
///   3. a row of several stays only where the pass took the row's features alone, each did its
///   work,
///      and no reference got another grade: then one pass for each would have done the same;
///   4. each result reports its own feature, an equal share of the time, and the work on its solid,
///      which it shares with the others there.
///
/// Lives within the transaction of its edit.
class InsertRow {
 public:
  explicit InsertRow(OdDbDatabase* database) : m_database(database) {}

  /// Makes the objects of the insert. False, with nothing made, where it does not join the row; one
  /// that cannot be placed does not. Raises OdError when the objects cannot be made.
  bool add(const ComponentInsert& component);
  [[nodiscard]] bool isEmpty() const { return m_entries.empty(); }

  /// Law 3, for the report of the common pass.
  [[nodiscard]] OdStatus accept(UpdateReport& report);
  /// Law 4.
  [[nodiscard]] std::vector<EditResult> results(const UpdateReport& all) const;

 private:
  struct Entry {
    OdDbObjectId insert;
    OdDbObjectId feature;
    OdDbObjectId solid;
    bool acceptsNoEffect = false;
    std::vector<ReferenceReport> references;
  };
  /// By face of the solid, the entry whose opening it is in.
  using OpeningFaces = std::unordered_map<OdUInt32, std::size_t>;

  OdGeExtents3d reachOf(const ComponentInsert& component, const InsertionPlace& place);
  [[nodiscard]] OdStatus acceptEntry(const Entry& entry, UpdateReport& report) const;
  [[nodiscard]] std::size_t makerOf(const OdDbObjectId& reference) const;
  bool shareReferences(const UpdateReport& report);
  bool shareReference(const ReferenceReport& reference,
                      const std::unordered_map<OdDbObjectId, OpeningFaces>& openings);
  [[nodiscard]] std::unordered_map<OdDbObjectId, OpeningFaces> openingFaces() const;

  OdDbDatabase* m_database;
  ComponentTools m_tools;
  std::vector<Entry> m_entries;
  std::unordered_map<OdDbObjectId, BoxIndex> m_taken;  // by solid
};

}  // namespace vdm_host
