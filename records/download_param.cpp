#include "records/download_param.h"

#include <json/json.h>

#include <memory>
#include <sstream>

namespace records {
namespace {

// The styled writer's layout: three-space indent, a newline at the end.
std::unique_ptr<Json::StreamWriter> MakeStyledWriter() {
  Json::StreamWriterBuilder builder;
  builder["indentation"] = "   ";
  return std::unique_ptr<Json::StreamWriter>(builder.newStreamWriter());
}

}  // namespace

std::string BuildDownloadParam(int32_t flag, int32_t elem_type, const WString& id,
                               int64_t business_id, const WString& url) {
  Json::Value param(Json::objectValue);
  param["msg_download_elem_param_flag"] = flag;
  param["msg_download_elem_param_type"] = elem_type;
  param["msg_download_elem_param_id"] = platform::Utf16ToUtf8(id);
  param["msg_download_elem_param_business_id"] = Json::Int64{business_id};
  param["msg_download_elem_param_url"] = platform::Utf16ToUtf8(url);

  // Per call: a thread_local writer would pin the module after unloading.
  const std::unique_ptr<Json::StreamWriter> writer = MakeStyledWriter();
  std::ostringstream text;
  writer->write(param, &text);
  text << '\n';
  return text.str();
}

void FillDownloadParams(ElemStru& e) {
  // Images and sounds carry no download flag of their own.
  switch (e.elem_type) {
    case kElemImage:
      e.orig_download_param = BuildDownloadParam(0, e.elem_type, e.orig_id, e.task_id, e.orig_url);
      e.thumb_download_param =
          BuildDownloadParam(0, e.elem_type, e.thumb_id, e.task_id, e.thumb_url);
      e.large_download_param =
          BuildDownloadParam(0, e.elem_type, e.large_id, e.task_id, e.large_url);
      break;
    case kElemSound:
      e.download_param = BuildDownloadParam(0, e.elem_type, e.file_id, e.business_id, e.url);
      break;
    case kElemFile:
      e.download_param =
          BuildDownloadParam(e.download_flag, e.elem_type, e.file_id, e.business_id, e.url);
      break;
    case kElemVideo:
      e.download_param = BuildDownloadParam(e.video_download_flag, e.elem_type, e.video_id,
                                            e.business_id, e.video_url);
      e.image_download_param = BuildDownloadParam(e.image_download_flag, e.elem_type, e.image_id,
                                                  e.video_task_id, e.image_url);
      break;
    default:
      break;
  }
}

}  // namespace records
