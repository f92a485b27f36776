// What the visitors of field lists share; see field_list.h.
#pragma once

#include <concepts>

#include "platform/filer/dwg_filer.h"

/// The check of a field that may have any value.
struct OdDbAnyValue {
  template <class T>
  constexpr bool operator()(const T&) const {
    return true;
  }
};

constexpr unsigned kOdDbPlacementSize = 12;  // three rows; the fourth is 0 0 0 1

/// What ids() takes: how an owner gives and receives a list of ids.
///
///   forEach(visit)            visit(id) for each, in stored order
///   isFiled(filer, id)        whether a record that the filer writes has the id
///   isFiledAtAll(filer)       whether it has the list
///   clear(), reserve(count), add(id)    reading replaces the list; null ids are not added
///
/// The group form has the ids of objects that are not erased.
template <class List>
concept OdDbFiledIdList = requires(List list, const OdDbDwgFiler* filer, const OdDbObjectId& id) {
  list.forEach([](const OdDbObjectId&) {});
  { list.isFiled(filer, id) } -> std::same_as<bool>;
  { list.isFiledAtAll(filer) } -> std::same_as<bool>;
  list.clear();
  list.reserve(OdUInt32{});
  list.add(id);
};

/// What most visitors have nothing to do for.
class OdDbIdleFields {
 public:
  void version(OdUInt8) {}
  void version(OdUInt8, OdUInt8, bool) {}
  template <class T, class Reset>
  void from(OdUInt8, T&, const Reset&) {}
  template <class Rule>
  void rule(const Rule&) {}
};
