// Rows that define the two members of a property of an entity: what reads it and what sets it. The
// class declares both, with what they mean.
#pragma once

#include <type_traits>

#include "platform/entities/value_checks.h"

/// How a setter takes a value: classes by reference, numbers and enumerators by value.
template <class Value>
using OdDbPassed = std::conditional_t<std::is_class_v<Value>, const Value&, Value>;

/// A property that takes every value.
#define OD_DB_PROPERTY(ClassName, Value, getter, setter, member) \
  Value ClassName::getter() const { return read(member); }       \
  void ClassName::setter(OdDbPassed<Value> value) { change(member, value); }

/// A property whose setter raises eInvalidInput, with `what` as its name, for a value that fails
/// the check; see oddbChecked(). Points need no check: they must be finite.
#define OD_DB_CHECKED_PROPERTY(ClassName, Value, getter, setter, member, what, ...) \
  Value ClassName::getter() const { return read(member); }                          \
  void ClassName::setter(OdDbPassed<Value> value) {                                 \
    change(member, oddbChecked(this, what, value __VA_OPT__(, ) __VA_ARGS__));      \
  }
