// The value types of properties as rows, for declarations that no template can make: explicit
// instantiations and their extern declarations.
//
// Each list calls ROW once for each type. The lists must hold the types of VdmPlainTypes and
// VdmElementTypes (vdm_property_types.h) in their order, which is checked below.
#pragma once

#include <tuple>
#include <type_traits>

#include "vdm_db/properties/vdm_property_types.h"

// ROW(T): the plain types, which are also the keys of maps.
#define VDM_PLAIN_TYPE_ROWS(ROW) \
  ROW(OdString)                  \
  ROW(OdLong)                    \
  ROW(double)                    \
  ROW(bool)                      \
  ROW(signed char)               \
  ROW(OdDbHandle)                \
  ROW(OdDbTypedId)

// ROW(V, ...): the elements of arrays and values of maps, with what else the row needs.
#define VDM_ELEMENT_TYPE_ROWS(ROW, ...)              \
  ROW(VdmPropertyDataPtr __VA_OPT__(, ) __VA_ARGS__) \
  ROW(OdString __VA_OPT__(, ) __VA_ARGS__)           \
  ROW(OdLong __VA_OPT__(, ) __VA_ARGS__)             \
  ROW(double __VA_OPT__(, ) __VA_ARGS__)             \
  ROW(bool __VA_OPT__(, ) __VA_ARGS__)               \
  ROW(signed char __VA_OPT__(, ) __VA_ARGS__)        \
  ROW(OdDbHandle __VA_OPT__(, ) __VA_ARGS__)         \
  ROW(OdDbTypedId __VA_OPT__(, ) __VA_ARGS__)        \
  ROW(VdmBlob __VA_OPT__(, ) __VA_ARGS__)

// ROW(T): every value type but the maps: plain values, blobs and arrays.
#define VDM_SINGLE_AND_ARRAY_TYPE_ROWS(ROW) \
  VDM_PLAIN_TYPE_ROWS(ROW)                  \
  ROW(VdmBlob)                              \
  VDM_ELEMENT_TYPE_ROWS(VDM_ARRAY_TYPE_ROW, ROW)
#define VDM_ARRAY_TYPE_ROW(V, ROW) ROW(VdmArray<V>)

// The parameter list that the rows make is compared with the one that the type list makes.
template <class... T>
void (*vdmFunctionOfTypes(std::tuple<T...>*))(int, T*...);
#define VDM_PARAMETER_OF_TYPE(T) , T*
static_assert(std::is_same_v<void (*)(int VDM_PLAIN_TYPE_ROWS(VDM_PARAMETER_OF_TYPE)),
                             decltype(vdmFunctionOfTypes(static_cast<VdmPlainTypes*>(nullptr)))>);
static_assert(std::is_same_v<void (*)(int VDM_ELEMENT_TYPE_ROWS(VDM_PARAMETER_OF_TYPE)),
                             decltype(vdmFunctionOfTypes(static_cast<VdmElementTypes*>(nullptr)))>);
#undef VDM_PARAMETER_OF_TYPE
