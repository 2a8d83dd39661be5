#include "platform/json_text.h"

#include <gtest/gtest.h>

namespace {

constexpr platform::JsonLimits kSmall{64, 3, 8};

TEST(JsonText, LimitsRefuseWithoutThrowing) {
  const struct {
    std::string text;
    bool accepted;
  } cases[] = {
      {"[[[1]]]", true},
      {"[[[[1]]]]", false},                  // one level too deep
      {"[1,2,3,4,5,6,7]", true},             // eight values
      {"[1,2,3,4,5,6,7,8]", false},          // nine
      {R"(["[[[[,,,,,,,,,]]]]\""])", true},  // brackets and commas in a string
      {std::string(65, ' ') + "1", false},   // over the byte limit
      {"[1,", false},                        // not complete
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    Json::Value root(42);
    std::string errors;
    EXPECT_EQ(platform::ParseJsonText(c.text, root, &errors, kSmall), c.accepted);
    EXPECT_EQ(errors.empty(), c.accepted);
    EXPECT_EQ(root.isNull(), !c.accepted);
  }
}

TEST(JsonText, DeepNestingWithDefaultLimitsIsRefused) {
  Json::Value root;
  EXPECT_FALSE(platform::ParseJsonText(std::string(5000, '[') + std::string(5000, ']'), root));
  EXPECT_TRUE(platform::ParseJsonText(std::string(60, '[') + std::string(60, ']'), root));
}

}  // namespace
