// Tests of memory streams.
#include "platform/rx/memory_stream.h"

#include <gtest/gtest.h>

#include "tests/platform/rx/rx_test_classes.h"

TEST(OdStreamBuf, RefusesWhatLiesBeyondItsEnds) {
  OdUInt8 memory[4] = {1, 2, 3, 4};
  const auto growing = OdMemoryStream::createNew();
  growing->putBytes(memory, 4);
  const auto flat = OdFlatMemStream::createNew(memory, 4);
  for (OdStreamBuf* stream :
       {static_cast<OdStreamBuf*>(growing), static_cast<OdStreamBuf*>(flat)}) {
    OdUInt8 buffer[8] = {};
    EXPECT_EQ(stream->seek(-2, OdDb::kSeekFromEnd), 2U);
    EXPECT_EQ(raisedBy([&] { stream->getBytes(buffer, 3); }), eEndOfStream);
    EXPECT_EQ(raisedBy([&] { stream->getBytes(buffer, ~OdUInt64{0}); }), eEndOfStream);
    EXPECT_EQ(raisedBy([&] { stream->seek(3, OdDb::kSeekFromCurrent); }), eEndOfStream);
    EXPECT_EQ(raisedBy([&] { stream->seek(-3, OdDb::kSeekFromCurrent); }), eInvalidInput);
    EXPECT_EQ(raisedBy([&] { stream->seek(INT64_MIN, OdDb::kSeekFromEnd); }), eInvalidInput);
    EXPECT_EQ(stream->tell(), 2U);
    EXPECT_EQ(stream->getByte(), 3);
    stream->seek(0, OdDb::kSeekFromEnd);
    EXPECT_TRUE(stream->isEof());
    EXPECT_EQ(raisedBy([&] { stream->getByte(); }), eEndOfStream);
    EXPECT_EQ(buffer[0], 0);
  }
  EXPECT_EQ(raisedBy([&] { flat->putByte(9); }), eEndOfStream);
  flat->seek(2, OdDb::kSeekFromStart);
  EXPECT_EQ(raisedBy([&] { flat->putBytes("abc", 3); }), eEndOfStream);
  EXPECT_EQ(memory[2], 3);
  EXPECT_EQ(raisedBy([&] { flat->truncate(); }), eNotImplementedForClass);
  EXPECT_EQ(raisedBy([] { OdMemoryStream::createNew(0); }), eInvalidInput);
  EXPECT_EQ(raisedBy([] { OdFlatMemStream::createNew(nullptr, 1); }), eInvalidInput);
}
