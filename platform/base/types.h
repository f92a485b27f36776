// Fixed-width integer types of the runtime's interfaces.
#pragma once

#include <cstdint>

using OdInt8 = std::int8_t;
using OdUInt8 = std::uint8_t;
using OdInt16 = std::int16_t;
using OdUInt16 = std::uint16_t;
using OdInt32 = std::int32_t;
using OdUInt32 = std::uint32_t;
using OdInt64 = std::int64_t;
using OdUInt64 = std::uint64_t;

/// The interfaces' 32-bit `long`. The same type as `int`, so that templates see one type.
using OdLong = std::int32_t;
using OdULong = std::uint32_t;
