// The setting of what a host gets back for a file.
#include "tessarin/parser/setup/FileDispatchReturnAsSetting.hpp"

#include <gtest/gtest.h>

#include <optional>

namespace {

using namespace tessarin::compiler::core;
using Setting = FileDispatchReturnAsSetting;

TEST(FileDispatchReturnAsSetting, ScopesNestAndCopiesExtendThem) {
  constexpr auto one = static_cast<FileDispatchReturnAs>(1);
  constexpr auto two = static_cast<FileDispatchReturnAs>(2);
  Setting& setting = Setting::get();
  EXPECT_EQ(&setting, &Setting::get());
  EXPECT_EQ(setting.value(), FileDispatchReturnAs::Default);
  {
    std::optional<Setting::Manager> outer(std::in_place, setting, one);
    EXPECT_EQ(setting.value(), one);
    {
      const Setting::Manager inner(setting, two);
      EXPECT_EQ(setting.value(), two);
    }
    EXPECT_EQ(setting.value(), one);
    const Setting::Manager copy = *outer; // NOLINT(performance-unnecessary-copy-initialization): its life is the test
    outer.reset();
    EXPECT_EQ(setting.value(), one);
  }
  EXPECT_EQ(setting.value(), FileDispatchReturnAs::Default);
}

} // namespace
