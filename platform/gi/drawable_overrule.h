// OdGiDrawableOverrule: takes over how drawables of a class are drawn.
#pragma once

#include "platform/gi/drawable.h"
#include "platform/rx/overrule.h"

/// Registered with OdRxOverrule::addOverrule for a class of drawables. The operations of the base
/// go on to the next overrule that wants the object, and at the end to the object itself; an
/// override calls them for what it does not take over.
class OdGiDrawableOverrule : public OdRxOverrule {
 public:
  OD_RX_DECLARE_MEMBERS(OdGiDrawableOverrule)

  OdGiDrawableOverrule() = default;

  /// Every object of the class that the overrule is registered for.
  bool isApplicable(const OdRxObject* subject) const override;

  virtual bool setAttributes(const OdGiDrawable* subject, OdGiSubEntityTraits* traits);
  virtual bool worldDraw(const OdGiDrawable* subject, OdGiWorldDraw* context);
};
