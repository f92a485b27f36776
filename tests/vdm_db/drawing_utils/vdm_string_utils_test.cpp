// Tests of beginnings, ends and parts of texts, and of chains of result buffers.
#include "vdm_db/drawing_utils/vdm_string_utils.h"

#include <gtest/gtest.h>

#include "vdm_db/drawing_utils/vdm_res_buf_utils.h"

namespace {

TEST(VdmStringUtils, BeginningsAndEnds) {
  OdString text(L"*U12");
  EXPECT_TRUE(vdmu::startsWith(text, L"*U") && vdmu::endsWith(text, L"12"));
  EXPECT_FALSE(vdmu::startsWith(text, L"*u") || vdmu::endsWith(text, L"*U12 "));
  EXPECT_TRUE(vdmu::startsWith(text, L"") && vdmu::endsWith(L"", L""));
  EXPECT_FALSE(vdmu::trimPrefix(text, L"U"));
  EXPECT_FALSE(vdmu::trimSuffix(text, L"1"));
  EXPECT_EQ(text, L"*U12");
  EXPECT_TRUE(vdmu::trimPrefix(text, L"*U"));
  EXPECT_TRUE(vdmu::trimSuffix(text, L"2"));
  EXPECT_EQ(text, L"1");
}

TEST(VdmStringUtils, Parts) {
  using Parts = OdArray<OdString>;
  EXPECT_EQ(vdmu::tokenize(L",a;;b,", L",;", false), (Parts{L"a", L"b"}));
  EXPECT_EQ(vdmu::tokenize(L",a;;b,", L",;", true), (Parts{L"", L"a", L"", L"b"}));
  EXPECT_EQ(vdmu::tokenize(L"a b", L"", true), Parts{L"a b"});
  EXPECT_TRUE(vdmu::tokenize(L"", L",", true).isEmpty());
}

TEST(VdmResBufUtils, LongChainsAreReleasedFromTheFront) {
  OdResBufPtr chain = OdResBuf::newRb(1070, OdInt16{1});
  OdResBufPtr last = chain;
  for (int i = 0; i < 300000; ++i) {
    const OdResBufPtr next = OdResBuf::newRb(1070, OdInt16{1});
    last->setNext(next);
    last = next;
  }
  vdmu::clearRbSequence(chain);
  EXPECT_TRUE(chain.isNull());
  EXPECT_EQ(last->numRefs(), 1) << "the chain holds nothing any more";
}

}  // namespace
