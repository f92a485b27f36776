// Tests of assertions, messages, tracing and paths.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "vdm_utils/vdm_exception.h"
#include "vdm_utils/vdmc_assert.h"
#include "vdm_utils/vdmc_path.h"
#include "vdm_utils/vdmu_reporter.h"
#include "vdm_utils/vdmu_tracer.h"

TEST(VdmcAssert, ReportsFailuresAndGoesOn) {
  std::vector<std::string> seen;
  setVdmAssertSink([&](const VdmAssertion& failure) {
    seen.push_back(std::string(failure.expression) + "|" + std::string(failure.message.utf8()) +
                   "|" + failure.source + ":" + std::to_string(failure.line));
  });
  const int one = 1;
  EXPECT_TRUE(VDM_ASSERT_AT(one == 1, "vdm_db/file", 1));
  EXPECT_FALSE(VDM_ASSERT_AT(one == 2, "vdm_db/file", 613));
  VDM_ASSERT_MSG(one == 3, L"größer", "vdm_db/file", 7);
  vdmcCallAssert("res", L"", "vdm_db/other", 9);
  EXPECT_EQ(seen, (std::vector<std::string>{"one == 2||vdm_db/file:613",
                                            "one == 3|gr\xC3\xB6\xC3\x9F"
                                            "er|vdm_db/file:7",
                                            "res||vdm_db/other:9"}));
  EXPECT_TRUE(static_cast<bool>(setVdmAssertSink({})));
  testing::internal::CaptureStderr();
  vdmcCallAssert("res", L"text", "vdm_db/other", 9);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "assertion failed: res: text (vdm_db/other:9)\n");
}

TEST(VdmuReporter, PutsArgumentsIntoMessages) {
  VdmuMessageCollector collector;
  collector.reportFormat(eRpt_Fmt_UnexpectedSymbol, 42, 1U, 3, L"*Name");
  EXPECT_TRUE(collector.hasErrors());
  VdmuFileReporter file(collector, L"parts.csv");
  file.reportFormat(eRpt_Fmt_EmptyCell, 7, 2);
  file.report(eRpt_InvalidTableSize, OdString());
  ASSERT_EQ(collector.messages().size(), 3U);
  EXPECT_EQ(collector.messages()[0].text,
            L"row 1, column 3: \"*Name\" begins with the reserved character \"*\"");
  EXPECT_EQ(collector.messages()[1].text, L"parts.csv: row 7, column 2: the cell is empty");
  EXPECT_EQ(
      collector.messages()[2].text,
      L"parts.csv: the number of cells is not the number of rows times the number of columns");
  EXPECT_THROW(vdmuMessageText(static_cast<VdmuMessageId>(0), {}), VdmException);
}

TEST(VdmuTracer, BuildsIndentedLinesOnlyWhileOn) {
  std::vector<OdString> lines;
  VdmuTracer() << L"off";
  VdmuTracer::setSink([&](const OdString& line) { lines.push_back(line); });
  {
    const VdmuTraceIndenter indenter(L"update");
    const OdArray<double> values{0.5, 2};
    VdmuTracer() << L"id " << OdDbHandle(0xAB) << ' ' << eCorruptData << L' ' << true << values;
  }
  VdmuTracer() << static_cast<const OdRxObject*>(nullptr) << L" " << -7;
  VdmuTracer::setSink({});
  VdmuTracer() << L"off again";
  EXPECT_EQ(lines,
            (std::vector<OdString>{L"update", L"  id AB eCorruptData true[0.5, 2]", L"null -7"}));
}

TEST(VdmcPath, ExtractsTheNameWithoutFolderAndExtension) {
  const std::pair<const wchar_t*, const wchar_t*> cases[] = {{L"C:\\jobs\\part.v2.vdm", L"part.v2"},
                                                             {L"a\\b/c.x", L"c"},
                                                             {L"/jobs.d/", L""},
                                                             {L".profile", L".profile"},
                                                             {L"", L""}};
  for (const auto& [path, name] : cases) EXPECT_EQ(VdmcPath::extractBasename(path), name) << path;
}
