// Field lists: one list of a class's fields, from which its binary and its DXF form both come.
#pragma once

#include "platform/db/field_list_dwg.h"
#include "platform/db/field_list_dxf.h"

/// A class lists its fields in stored order, in a member template that its four filing functions
/// call:
///
///   template <class Fields, class Self>
///   void OdDbLine::fields(Fields& fields, Self& line) {
///     fields.version(1);                        // binary form only
///     fields.value(10, line.m_start, isSound);  // group code, member, check
///     fields.value(11, line.m_end, isSound);
///   }
///
/// Each visitor below takes the same calls:
///
///   version(number)               uint8; another number ends reading with eUnsupportedVersion
///   version(number, newest, isNeeded)  writes `newest` when `isNeeded`, else `number`; reads all
///                                 from `number` to `newest`
///   from(newest, object, reset)   the fields that follow came with that version; an older record
///                                 calls reset(object), which gives them their first values
///   rule(holds)                   a predicate over the fields so far; false is eCorruptData
///   value(code, member, check)    filed by the member's type, see the table
///   number<T>(code, member, ...)  an enumeration, filed as the integer T
///   pointer<type>(code, id)       an id with its reference type
///   list(code, array, limit, check)    doubles, int32, strings or points, at most `limit`, each
///                                      checked
///   pointers<type>(code, array)   ids of one reference type, nulls included
///   placement(code, matrix, check)     an affine matrix behind a unique_ptr, null for none
///   ids<type>(code, list)              ids of one reference type, see OdDbFiledIdList
///
///   member        binary          groups
///   OdString      string          code
///   bool          bool            code
///   OdUInt8       uint8           code
///   OdInt16       int16           code
///   OdInt32       int32           code
///   double        double          code
///   OdGePoint2d   2 doubles       code, code + 10
///   OdGePoint3d   3 doubles       code, code + 10, code + 20; so OdGeVector3d
///   OdGeScale3d   3 doubles       code, code + 1, code + 2
///   OdCmColor     4 x uint8       code, an int32 of the four bytes, method first
///   list          int32 count, elements          code, for each in order
///   placement     bool, then 3 rows of 4 doubles    code to code + 11; none without a matrix
///   pointers      int32 count, ids               code, for each in order
///   ids           int32 count, ids               code, for each in order
///
/// A check decides whether a value may be kept; one that fails ends reading with eCorruptData.
/// Reading stores into the members as it goes: after a failure the caller drops the object or
/// rolls it back. The group form begins with a subclass marker (100 and the class name), may
/// have its groups in any order, and ends before the next marker; groups that no field has are
/// passed. Fields of a newer version that are not needed have no groups.
///
/// The visitors of the binary form are in field_list_dwg.h, those of the groups in
/// field_list_dxf.h.

/// Files the fields of a class T, after those of its base. T is a friend, as its list and its
/// members are private.
struct OdDbFieldFiling {
  static constexpr int kSubclassMarker = 100;

  template <class T>
  static void dwgOut(OdDbDwgFiler* filer, const T& object) {
    OdDbDwgFieldWriter fields(filer);
    T::fields(fields, object);
  }

  template <class T>
  [[nodiscard]] static OdResult dwgIn(OdDbDwgFiler* filer, T& object) {
    OdDbDwgFieldReader fields(filer);
    T::fields(fields, object);
    return fields.result();
  }

  template <class T>
  static void dxfOut(OdDbDxfFiler* filer, const T& object) {
    filer->wrString(kSubclassMarker, T::desc()->name());
    OdDbDxfFieldWriter fields(filer);
    T::fields(fields, object);
  }

  /// eCorruptData when the groups do not begin with the marker of T, or a value fails its check.
  template <class T>
  [[nodiscard]] static OdResult dxfIn(OdDbDxfFiler* filer, T& object) {
    if (filer->atEOF() || filer->nextItem() != kSubclassMarker ||
        filer->rdString() != T::desc()->name()) {
      return eCorruptData;
    }
    OdDbFieldEmptier emptier;
    T::fields(emptier, object);
    while (!filer->atEOF()) {
      const int code = filer->nextItem();
      if (code == kSubclassMarker) {
        filer->pushBackItem();
        break;
      }
      OdDbDxfFieldReader fields(filer, code);
      T::fields(fields, object);
      if (fields.result() != eOk) return fields.result();
    }
    OdDbFieldChecker checker;
    T::fields(checker, static_cast<const T&>(object));
    return checker.isSound() ? eOk : eCorruptData;
  }
};
