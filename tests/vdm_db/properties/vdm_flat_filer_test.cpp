// Tests of the flat form: bytes of the primitives, sanitising, chunks.
#include "vdm_db/properties/vdm_flat_filer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "platform/base/error.h"
#include "tests/vdm_db/properties/property_testing.h"

using namespace property_testing;

namespace {

TEST(VdmFlatFiler, WritesEachPrimitive) {
  OdDbIdRecord idRecord;
  VdmFlatFiler filer;
  filer.clear();
  filer.wrBool(true);
  filer.wrInt16(-2);
  filer.wrInt64(1);
  filer.wrDbHandle(OdDbHandle(0x0102030405060708u));
  filer.wrString(OdString());
  filer.wrString(OdString("ab"));
  filer.wrHardOwnershipId(OdDbObjectId(&idRecord));  // ids are not kept
  filer.wrBytes("xyz", 3);
  EXPECT_EQ(hexOf(filer.getBinaryData()),
            "01 FE FF 01 00 00 00 00 00 00 00 01 02 03 04 05 06 07 08 00 00 02 00 61 62 78 79 7A");
  EXPECT_TRUE(filer.rdHardPointerId().isNull());
}

TEST(VdmFlatFiler, ReadsOnlyNormalDoubles) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double infinity = std::numeric_limits<double>::infinity();
  VdmFlatFiler filer;
  filer.clear();
  for (const double value : {1.5e-320, nan, infinity, -infinity, -0.0, 2.5, -1e-300}) {
    filer.wrDouble(value);
  }
  filer.wrScale3d(OdGeScale3d(2.0, infinity, 3.0));
  filer.wrPoint2d(OdGePoint2d(nan, 4.0));
  filer.seek(0, OdDb::kSeekFromStart);
  for (int i = 0; i < 5; ++i) {
    const double value = filer.rdDouble();
    EXPECT_EQ(value, 0.0);
    EXPECT_FALSE(std::signbit(value));
  }
  EXPECT_EQ(filer.rdDouble(), 2.5);
  EXPECT_EQ(filer.rdDouble(), -1e-300);
  EXPECT_EQ(filer.rdScale3d(), OdGeScale3d(2.0, 0.0, 3.0));
  EXPECT_EQ(filer.rdPoint2d(), OdGePoint2d(0.0, 4.0));
}

TEST(VdmFlatFiler, CannotReadLongStringsBack) {
  VdmFlatFiler filer;
  for (const std::size_t size : {32767u, 32768u, 65535u}) {
    const OdString text(L'x', size);
    filer.clear();
    filer.wrString(text);
    EXPECT_EQ(filer.getBinaryDataSize(), size + 2);
    EXPECT_EQ(filer.hasUnreadableString(), size > 32767);
    filer.seek(0, OdDb::kSeekFromStart);
    if (size <= 32767) {
      EXPECT_EQ(filer.rdString(), text);
      continue;
    }
    try {
      filer.rdString();
      ADD_FAILURE() << size;
    } catch (const OdError& error) {
      EXPECT_EQ(error.code(), eCorruptData);
    }
  }
  filer.clear();
  EXPECT_THROW(filer.wrString(OdString(L'x', 65536)), OdError);
  EXPECT_EQ(filer.getBinaryDataSize(), 0u);
}

TEST(VdmFlatFiler, JoinsChunksUpToAnotherCode) {
  const auto chunk = [](const char* text) {
    OdResBufPtr rb = OdResBuf::newRb(1004);
    OdBinaryData data;
    for (; *text != '\0'; ++text) data.append(static_cast<OdUInt8>(*text));
    rb->setBinaryChunk(data);
    return rb;
  };
  const OdResBufPtr first = chunk("ab");
  const OdResBufPtr other = OdResBuf::newRb(1071, 5);
  first->insert(chunk("c"))->insert(other)->insert(chunk("d"));
  VdmFlatFiler filer;
  ASSERT_TRUE(filer.setBinaryChunk(first.get()));
  EXPECT_EQ(hexOf(filer.getBinaryData()), "61 62 63");
  EXPECT_FALSE(filer.setBinaryChunk(other.get()));
  EXPECT_FALSE(filer.setBinaryChunk(nullptr));
  EXPECT_EQ(filer.getBinaryDataSize(), 3u);
}

}  // namespace
