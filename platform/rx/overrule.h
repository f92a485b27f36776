// Overrules: objects that change the behaviour of other classes' operations.
#pragma once

#include "platform/base/export.h"
#include "platform/rx/rx_macros.h"

/// Base of all overrules. A subclass such as a draw overrule declares the operations that it takes
/// over, and the code that runs such an operation asks odrxFindOverrule for one first.
class OD_API OdRxOverrule : public OdRxObject {
  OD_RX_DECLARE_MEMBERS(OdRxOverrule)

  /// Whether the overrule wants this object, whose class it is registered for.
  virtual bool isApplicable(const OdRxObject* subject) const = 0;

  /// Registers an overrule for a class and all below it, behind or in front of the others; a
  /// reference is held, and one with static lifetime has to be removed before it ends. False for
  /// null arguments and when it is registered there already.
  static bool addOverrule(OdRxClass* overruledClass, OdRxOverrule* overrule,
                          bool addAtLast = false);
  /// False when it is not registered there.
  static bool removeOverrule(OdRxClass* overruledClass, OdRxOverrule* overrule);
  /// The switch for all overrules of the process; on at first.
  static void setIsOverruling(bool overruling) noexcept;
  static bool isOverruling() noexcept;
};
using OdRxOverrulePtr = OdSmartPtr<OdRxOverrule>;

/// The first overrule of a kind that wants the object: from the object's class up, in each class in
/// the order of its list. Null when there is none or overruling is off. `after` is an overrule that
/// was found before: the search continues after it, which is how an overrule reaches the next one.
/// Costs a few loads while no overrule is registered on the object's classes.
OD_API OdRxOverrule* odrxFindOverrule(const OdRxObject* subject, const OdRxClass* kind,
                                      const OdRxOverrule* after = nullptr);
