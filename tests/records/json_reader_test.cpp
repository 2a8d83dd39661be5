#include "records/json_reader.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

Json::Value Parse(const char* text) {
  Json::Value root;
  EXPECT_TRUE(records::ParseJsonText(text, root)) << text;
  return root;
}

TEST(JsonReader, IntegersAreCutToTheFieldWidth) {
  const Json::Value json = Parse(
      R"({"big": 3000000000, "neg": -1, "huge": 18446744073709551615, "real": 2.9,
          "yes": true, "null": null})");
  struct Case {
    const char* key;
    int32_t as_int32;
    uint32_t as_uint32;
    uint64_t as_uint64;
  };
  const Case cases[] = {
      {"big", -1294967296, 3000000000u, 3000000000u},
      {"neg", -1, 4294967295u, std::numeric_limits<uint64_t>::max()},
      {"huge", -1, 4294967295u, std::numeric_limits<uint64_t>::max()},
      {"real", 2, 2, 2},
      {"yes", 1, 1, 1},
      {"null", 0, 0, 0},
      {"missing", 0, 0, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.key);
    int32_t i32 = 7;
    uint32_t u32 = 7;
    uint64_t u64 = 7;
    records::Read(json, c.key, i32);
    records::Read(json, c.key, u32);
    records::Read(json, c.key, u64);
    EXPECT_EQ(i32, c.as_int32);
    EXPECT_EQ(u32, c.as_uint32);
    EXPECT_EQ(u64, c.as_uint64);
  }
}

TEST(JsonReader, BooleansFromStringsAreTrueWhenNotEmpty) {
  const Json::Value json = Parse(R"({"word": "g1", "empty": "", "zero": 0, "two": 2})");
  for (auto [key, expected] : {std::pair{"word", true},
                               {"empty", false},
                               {"zero", false},
                               {"two", true},
                               {"missing", false}}) {
    bool value = !expected;
    records::Read(json, key, value);
    EXPECT_EQ(value, expected) << key;
  }
}

TEST(JsonReader, StringsConvertToUtf16AndNumbersToText) {
  const Json::Value json = Parse(R"({"zh": "图纸", "n": 42, "bad": "a\u0000b"})");
  WString text;
  records::Read(json, "zh", text);
  EXPECT_EQ(text, u"图纸");
  records::Read(json, "n", text);
  EXPECT_EQ(text, u"42");
  records::Read(json, "bad", text);
  EXPECT_EQ(text, WString(u"a\0b", 3));
}

TEST(JsonReader, WrongTypesThrow) {
  const Json::Value json = Parse(R"({"s": "12", "o": {"a": 1}, "a": [1]})");
  uint32_t number = 0;
  WString text;
  bool flag = false;
  EXPECT_THROW(records::Read(json, "s", number), Json::Exception);
  EXPECT_THROW(records::Read(json, "o", number), Json::Exception);
  EXPECT_THROW(records::Read(json, "a", text), Json::Exception);
  EXPECT_THROW(records::Read(json, "o", flag), Json::Exception);
  // Indexing a scalar as an object throws as well.
  EXPECT_THROW(records::Read(json["s"], "x", number), Json::Exception);
}

TEST(JsonReader, ListsReadEntriesInOrderAndScalarsAsEmpty) {
  const Json::Value json = Parse(R"({"l": ["a", "b", 3], "s": "x", "o": {"k": 1}, "e": {}})");
  std::vector<WString> list;
  records::ReadList(json, "l", list);
  EXPECT_EQ(list, (std::vector<WString>{u"a", u"b", u"3"}));
  list.clear();
  records::ReadList(json, "s", list);
  records::ReadList(json, "e", list);
  records::ReadList(json, "missing", list);
  EXPECT_TRUE(list.empty());
  EXPECT_THROW(records::ReadList(json, "o", list), Json::Exception);
}

}  // namespace
