// OdDbMaterial: what a surface is made of, for pictures.
#include "platform/db/material.h"

#include <string>

#include "platform/base/error.h"
#include "platform/db/field_list.h"

OD_RX_DEFINE_DB(OdDbMaterial, OdDbObject, L"OdDbMaterial", 0, 0, 0, L"MATERIAL", OdString())

namespace {

// False for what is no number, too.
bool isFraction(double value) { return value >= 0.0 && value <= 1.0; }

bool isSurfaceColor(const OdCmColor& color) { return !color.isByBlock() && !color.isNone(); }

}  // namespace

OdCmColor OdDbMaterial::diffuse() const { return read(m_diffuse); }

void OdDbMaterial::setDiffuse(const OdCmColor& color) {
  if (!isSurfaceColor(color)) {
    throw OdError(eInvalidInput, OdString("colour method " + std::to_string(color.colorMethod()) +
                                          " of material ") +
                                     getDbHandle().ascii());
  }
  assign(m_diffuse, color);
}

double OdDbMaterial::opacity() const { return read(m_opacity); }

void OdDbMaterial::setOpacity(double opacity) { setFraction(m_opacity, opacity, "opacity"); }

double OdDbMaterial::shininess() const { return read(m_shininess); }

void OdDbMaterial::setShininess(double shininess) {
  setFraction(m_shininess, shininess, "shininess");
}

void OdDbMaterial::setFraction(double& member, double value, const char* what) {
  if (!isFraction(value)) {
    throw OdError(eInvalidInput, OdString(std::string(what) + " " + std::to_string(value) +
                                          " is not from 0 to 1, material ") +
                                     getDbHandle().ascii());
  }
  assign(member, value);
}

// Fields:
//
//   field                  binary      groups
//   version                uint8
//   name, description      2 strings   2, 4
//   diffuse                4 x uint8   420      see OdCmColor; neither by block nor none
//   opacity, shininess     2 doubles   40, 41   0 to 1

template <class Fields, class Self>
void OdDbMaterial::fields(Fields& fields, Self& self) {
  nameFields(fields, self);
  fields.value(420, self.m_diffuse, isSurfaceColor);
  fields.value(40, self.m_opacity, isFraction);
  fields.value(41, self.m_shininess, isFraction);
}

OD_DB_DEFINE_FILING(OdDbMaterial, OdDbObject)

std::size_t OdDbMaterial::approximateSize() const {
  return OdDbObject::approximateSize() + sizeof(*this) - sizeof(OdDbObject) +
         static_cast<std::size_t>(m_name.getLength() + m_description.getLength()) * sizeof(wchar_t);
}
