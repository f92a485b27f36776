// OdGiDrawable and OdGiDrawableOverrule: the way from a drawable through its overrules to itself.
#include "platform/gi/drawable.h"

#include "platform/gi/drawable_overrule.h"

OD_RX_DEFINE_ABSTRACT(OdGiDrawable, OdRxObject, L"OdGiDrawable")
OD_RX_DEFINE_ABSTRACT(OdGiDrawableOverrule, OdRxOverrule, L"OdGiDrawableOverrule")

namespace {

OdGiDrawableOverrule* findOverrule(const OdGiDrawable* subject, const OdRxOverrule* after) {
  if (!OdGiDrawableOverrule::desc()) return nullptr;
  return static_cast<OdGiDrawableOverrule*>(
      odrxFindOverrule(subject, OdGiDrawableOverrule::desc(), after));
}

}  // namespace

OdGiDrawable::~OdGiDrawable() = default;

bool OdGiDrawable::setAttributes(OdGiSubEntityTraits* traits) const {
  OdGiDrawableOverrule* overrule = findOverrule(this, nullptr);
  return overrule ? overrule->setAttributes(this, traits) : subSetAttributes(traits);
}

bool OdGiDrawable::worldDraw(OdGiWorldDraw* context) const {
  OdGiDrawableOverrule* overrule = findOverrule(this, nullptr);
  return overrule ? overrule->worldDraw(this, context) : subWorldDraw(context);
}

bool OdGiDrawable::subSetAttributes(OdGiSubEntityTraits*) const { return true; }

bool OdGiDrawable::subWorldDraw(OdGiWorldDraw*) const { return true; }

bool OdGiDrawableOverrule::isApplicable(const OdRxObject*) const { return true; }

bool OdGiDrawableOverrule::setAttributes(const OdGiDrawable* subject, OdGiSubEntityTraits* traits) {
  OdGiDrawableOverrule* next = findOverrule(subject, this);
  return next ? next->setAttributes(subject, traits) : subject->subSetAttributes(traits);
}

bool OdGiDrawableOverrule::worldDraw(const OdGiDrawable* subject, OdGiWorldDraw* context) {
  OdGiDrawableOverrule* next = findOverrule(subject, this);
  return next ? next->worldDraw(subject, context) : subject->subWorldDraw(context);
}
