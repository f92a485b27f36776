// OdDbDatabase: tables and dictionaries of styles, and what new entities get.
#include <string>

#include "platform/base/error.h"
#include "platform/db/database.h"
#include "platform/db/database_impl.h"
#include "platform/db/dictionary.h"
#include "platform/db/dim_style_table.h"
#include "platform/db/layer_table.h"
#include "platform/db/linetype_file.h"
#include "platform/db/linetype_table.h"
#include "platform/db/open_upgrade.h"
#include "platform/db/text_style_table.h"

namespace {

/// A dictionary below the named objects.
OdDbObjectId namedDictionary(const OdDbDatabase& database, const wchar_t* name, bool create) {
  const OdDbDictionaryPtr root =
      database.getNamedObjectsDictionaryId().safeOpenAs<OdDbDictionary>();
  const OdDbObjectId found = root->getAt(name);
  if (!found.isNull() || !create) return found;
  const OdDbDictionaryPtr made = OdDbDictionary::createObject();
  const OdDbOpenUpgrade upgrade(root);
  return root->setAt(name, made);
}

double numberOf(const OdDbDatabase& database, const char* setting) {
  return database.impl().settings.number(OdDbDrawingSettings::find(OdString(setting)));
}

/// The object that a setting names; a fixed one when that is erased or not there.
OdDbObjectId objectOf(const OdDbDatabase& database, const char* setting, OdUInt64 fallback) {
  const auto handle = static_cast<OdUInt64>(numberOf(database, setting));
  const OdDbObjectId id = database.getOdDbObjectId(OdDbHandle(handle));
  return id.isNull() || id.isErased() ? database.getOdDbObjectId(OdDbHandle(fallback)) : id;
}

void setObject(OdDbDatabase& database, const char* setting, const OdDbObjectId& id,
               const OdRxClass* wanted) {
  const OdString text = OdString("object ") + id.getHandle().ascii() + " as " + setting;
  if (id.database() != &database) throw OdError(eWrongDatabase, text);
  const OdRxClass* found = id.objectClass();
  if (found == nullptr || !found->isDerivedFrom(wanted)) throw OdError(eWrongObjectType, text);
  database.setSysVar(OdString(setting), OdResBuf::newRb(5, id.getHandle()).get());
}

}  // namespace

OdDbObjectId OdDbDatabase::getMaterialDictionaryId(bool createIfNotFound) {
  return namedDictionary(*this, L"MATERIALS", createIfNotFound);
}
OdDbObjectId OdDbDatabase::getVisualStyleDictionaryId(bool createIfNotFound) {
  return namedDictionary(*this, L"VISUALSTYLES", createIfNotFound);
}
OdDbObjectId OdDbDatabase::getMLStyleDictionaryId(bool createIfNotFound) {
  return namedDictionary(*this, L"MLINESTYLES", createIfNotFound);
}

double OdDbDatabase::getLTSCALE() const { return numberOf(*this, "LTSCALE"); }
void OdDbDatabase::setLTSCALE(double scale) {
  setSysVar(OdString("LTSCALE"), OdResBuf::newRb(40, scale).get());
}

OdDbObjectId OdDbDatabase::getCLAYER() const {
  return objectOf(*this, "CLAYER", OdDbRootHandles::kLayerZero);
}
void OdDbDatabase::setCLAYER(const OdDbObjectId& layer) {
  setObject(*this, "CLAYER", layer, OdDbLayerTableRecord::desc());
}
OdUInt16 OdDbDatabase::getCECOLOR() const {
  return static_cast<OdUInt16>(numberOf(*this, "CECOLOR"));
}
void OdDbDatabase::setCECOLOR(OdUInt16 index) {
  setSysVar(OdString("CECOLOR"), OdResBuf::newRb(90, OdInt32{index}).get());
}
OdDbObjectId OdDbDatabase::getCELTYPE() const {
  return objectOf(*this, "CELTYPE", OdDbRootHandles::kLinetypeByLayer);
}
void OdDbDatabase::setCELTYPE(const OdDbObjectId& linetype) {
  setObject(*this, "CELTYPE", linetype, OdDbLinetypeTableRecord::desc());
}
double OdDbDatabase::getCELTSCALE() const { return numberOf(*this, "CELTSCALE"); }
void OdDbDatabase::setCELTSCALE(double scale) {
  setSysVar(OdString("CELTSCALE"), OdResBuf::newRb(40, scale).get());
}
OdDb::LineWeight OdDbDatabase::getCELWEIGHT() const {
  return static_cast<OdDb::LineWeight>(static_cast<int>(numberOf(*this, "CELWEIGHT")));
}
void OdDbDatabase::setCELWEIGHT(OdDb::LineWeight weight) {
  setSysVar(OdString("CELWEIGHT"), OdResBuf::newRb(90, OdInt32{weight}).get());
}
OdDbObjectId OdDbDatabase::getTEXTSTYLE() const {
  return objectOf(*this, "TEXTSTYLE", OdDbRootHandles::kTextStyleStandard);
}
void OdDbDatabase::setTEXTSTYLE(const OdDbObjectId& style) {
  setObject(*this, "TEXTSTYLE", style, OdDbTextStyleTableRecord::desc());
}
OdDbObjectId OdDbDatabase::getDIMSTYLE() const {
  return objectOf(*this, "DIMSTYLE", OdDbRootHandles::kDimStyleStandard);
}
void OdDbDatabase::setDIMSTYLE(const OdDbObjectId& style) {
  setObject(*this, "DIMSTYLE", style, OdDbDimStyleTableRecord::desc());
}

OdStatus OdDbDatabase::loadLineTypeFile(const OdString& linetype, const OdString& path,
                                        OdDb::DuplicateLinetypeLoading duplicates) {
  return oddbLoadLinetypes(*this, linetype, path, duplicates);
}
