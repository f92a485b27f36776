// Objects in their group form.
#pragma once

#include <string>
#include <string_view>

#include "platform/db/database.h"
#include "platform/db/db_object.h"
#include "platform/filer/dxf_text_filer.h"

inline std::string groupsOf(const OdDbObject& object) {
  OdDbTextDxfFiler filer(object.database());
  object.dxfOutFields(&filer);
  return filer.text();
}

/// Handles of the text are those of the drawing, which may be null.
inline OdResult readGroups(OdDbObject& object, const std::string& text, OdDbDatabase* drawing) {
  const auto resolve = [](void* of, const OdDbHandle& handle) {
    return of == nullptr ? OdDbObjectId() : static_cast<OdDbDatabase*>(of)->getOdDbObjectId(handle);
  };
  OdDbTextDxfFiler filer(text, drawing, resolve, drawing);
  return object.dxfInFields(&filer);
}

inline std::string replaced(std::string text, std::string_view from, std::string_view to) {
  const std::size_t place = text.find(from);
  return place == std::string::npos ? text : text.replace(place, from.size(), to);
}
