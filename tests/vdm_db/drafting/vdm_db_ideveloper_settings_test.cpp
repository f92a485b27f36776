// Switches for developers.
#include "vdm_db/drafting/vdm_db_ideveloper_settings.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/module_testing.h"

namespace {

class VdmDbIDeveloperSettingsTest : public virtual VdmModule, public testing::Test {
 protected:
  std::vector<std::string> m_assertions;
  AssertionSink m_sink{[this](const VdmAssertion& assertion) {
    m_assertions.emplace_back(std::string(assertion.message.utf8()));
  }};
};

TEST_F(VdmDbIDeveloperSettingsTest, NamesLeadToSwitchesWhileTheseLive) {
  using Switch = VdmDbIDeveloperSettings;
  EXPECT_TRUE(Switch::getAsBool(L"trace", true));
  EXPECT_EQ(Switch::getInstance(L"trace"), nullptr);
  EXPECT_EQ(m_assertions,
            std::vector<std::string>{"VdmDbIDeveloperSettings::getInstance(\"trace\") failed"});
  {
    Switch on(L"trace", L"ON"), off(L"quick", L"no"), other(L"odd", L"maybe");
    for (Switch* made : {&on, &off, &other}) Switch::setInstance(made, made->name());
    EXPECT_EQ(Switch::getInstance(L"trace"), &on);
    EXPECT_TRUE(Switch::getAsBool(L"trace", false));
    EXPECT_FALSE(Switch::getAsBool(L"quick", true));
    EXPECT_TRUE(Switch::getAsBool(L"odd", true) && !Switch::getAsBool(L"odd", false));
    Switch::setInstance(nullptr, L"quick");
    EXPECT_TRUE(Switch::getAsBool(L"quick", true));
  }
  EXPECT_FALSE(Switch::getAsBool(L"trace", false)) << "a dead switch is off the registry";
}

}  // namespace
