#include "records/download_param.h"

#include <gtest/gtest.h>

#include "records/json_reader.h"
#include "records/message_parser.h"

namespace {

struct Param {
  int flag;
  int type;
  std::string id;
  int64_t business_id;
  std::string url;
  bool operator==(const Param&) const = default;
};

Param Decode(const std::string& text) {
  Json::Value v;
  EXPECT_TRUE(records::ParseJsonText(text, v)) << text;
  EXPECT_EQ(v.size(), 5u);
  return {v["msg_download_elem_param_flag"].asInt(), v["msg_download_elem_param_type"].asInt(),
          v["msg_download_elem_param_id"].asString(),
          v["msg_download_elem_param_business_id"].asInt64(),
          v["msg_download_elem_param_url"].asString()};
}

ElemStru ParseOneElem(const std::string& elem_json) {
  std::vector<MessageStru> list;
  EXPECT_TRUE(records::ParseMessageArray(R"([{"message_elem_array":[)" + elem_json + "]}]", list));
  EXPECT_EQ(list.at(0).elems.size(), 1u);
  return list.at(0).elems.at(0);
}

TEST(DownloadParam, OnePerDownloadableFile) {
  const ElemStru image = ParseOneElem(
      R"({"elem_type":1,"image_elem_orig_id":"o","image_elem_thumb_id":"t","image_elem_large_id":"l",
          "image_elem_orig_url":"u/o","image_elem_thumb_url":"u/t","image_elem_large_url":"u/l",
          "image_elem_task_id":42})");
  EXPECT_EQ(Decode(image.orig_download_param), (Param{0, 1, "o", 42, "u/o"}));
  EXPECT_EQ(Decode(image.thumb_download_param), (Param{0, 1, "t", 42, "u/t"}));
  EXPECT_EQ(Decode(image.large_download_param), (Param{0, 1, "l", 42, "u/l"}));

  const ElemStru sound = ParseOneElem(
      R"({"elem_type":2,"sound_elem_file_id":"s","sound_elem_business_id":7,"sound_elem_url":"u/s"})");
  EXPECT_EQ(Decode(sound.download_param), (Param{0, 2, "s", 7, "u/s"}));

  const ElemStru file = ParseOneElem(
      R"({"elem_type":4,"file_elem_file_id":"f","file_elem_business_id":8,
          "file_elem_download_flag":2,"file_elem_url":"u/文件"})");
  EXPECT_EQ(Decode(file.download_param), (Param{2, 4, "f", 8, "u/文件"}));

  const ElemStru video = ParseOneElem(
      R"({"elem_type":9,"video_elem_video_id":"v","video_elem_business_id":9,
          "video_elem_video_download_flag":1,"video_elem_video_url":"u/v","video_elem_image_id":"c",
          "video_elem_image_download_flag":3,"video_elem_image_url":"u/c","video_elem_task_id":4000000000})");
  EXPECT_EQ(Decode(video.download_param), (Param{1, 9, "v", 9, "u/v"}));
  EXPECT_EQ(Decode(video.image_download_param), (Param{3, 9, "c", 4000000000, "u/c"}));

  const ElemStru text = ParseOneElem(R"({"elem_type":0,"text_elem_content":"x"})");
  EXPECT_TRUE(text.download_param.empty());
  EXPECT_TRUE(text.orig_download_param.empty());
}

TEST(DownloadParam, StyledLayout) {
  EXPECT_EQ(records::BuildDownloadParam(0, 4, u"id", 3, u"http://x/\"q\""),
            "{\n"
            "   \"msg_download_elem_param_business_id\" : 3,\n"
            "   \"msg_download_elem_param_flag\" : 0,\n"
            "   \"msg_download_elem_param_id\" : \"id\",\n"
            "   \"msg_download_elem_param_type\" : 4,\n"
            "   \"msg_download_elem_param_url\" : \"http://x/\\\"q\\\"\"\n"
            "}\n");
}

}  // namespace
