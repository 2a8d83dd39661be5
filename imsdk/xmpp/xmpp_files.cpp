// Files and pictures: uploaded through the server's HTTP upload service
// before their message is sent (the message carries the download URL),
// downloaded from that URL with an interrupted download resumed.
#include <filesystem>

#include "imsdk/im_sdk.h"
#include "imsdk/json_util.h"
#include "imsdk/xmpp/xmpp_backend.h"

namespace imsdk::xmpp {
namespace {

constexpr const char* kUploadNs = "urn:xmpp:http:upload:0";

// The local file an element still has to upload ("" when none).
std::string PendingPath(const Json::Value& elem) {
  switch (elem["elem_type"].asInt()) {
    case kTIMElem_Image:
      return elem.get("image_elem_orig_url", "").asString().empty()
                 ? elem.get("image_elem_orig_path", "").asString()
                 : "";
    case kTIMElem_File:
      return elem.get("file_elem_url", "").asString().empty()
                 ? elem.get("file_elem_file_path", "").asString()
                 : "";
    default:
      return "";
  }
}

bool IsHttpUrl(const std::string& text) {
  return text.rfind("http://", 0) == 0 || text.rfind("https://", 0) == 0;
}

}  // namespace

void XmppBackend::UploadFiles(std::shared_ptr<Json::Value> msg, Json::ArrayIndex index,
                              std::function<void(int code, const std::string& desc)> then) {
  Json::Value& elems = (*msg)["message_elem_array"];
  while (index < elems.size() && PendingPath(elems[index]).empty()) ++index;
  if (index >= elems.size()) return then(TIM_SUCC, "");
  const std::string path = PendingPath(elems[index]);
  std::error_code ec;
  const uint64_t size = std::filesystem::file_size(path, ec);
  if (ec) return then(TIM_ERR_FILE, "cannot read " + path);
  if (size > TIM_MAX_FILE_SIZE) return then(TIM_ERR_FILE_TOO_LARGE, path + " is too large");
  std::string name = elems[index].get("file_elem_file_name", "").asString();
  if (name.empty()) name = std::filesystem::path(path).filename().string();
  Stanza request(link_->ctx(), "request");
  request.Ns(kUploadNs)
      .Attr("filename", name)
      .Attr("size", std::to_string(size))
      .Attr("content-type", "application/octet-stream");
  Stanza iq(link_->ctx(), "iq");
  iq.Attr("type", "get").Attr("to", config_.upload_domain).Add(request);
  link_->SendIq(std::move(iq), [this, msg, index, path, name, size, then](xmpp_stanza_t* reply) {
    if (reply == nullptr) return then(TIM_ERR_NETWORK, "the upload service did not answer");
    if (AttrOf(reply, "type") != "result") {
      if (ChildOf(ChildOf(reply, "error"), "file-too-large", kUploadNs) != nullptr) {
        return then(TIM_ERR_FILE_TOO_LARGE, "the upload service refused the size");
      }
      return then(TIM_ERR_FILE, "the upload service refused: " + ErrorCondition(reply));
    }
    xmpp_stanza_t* slot = ChildOf(reply, "slot", kUploadNs);
    xmpp_stanza_t* put = ChildOf(slot, "put");
    const std::string put_url = AttrOf(put, "url");
    const std::string get_url = AttrOf(ChildOf(slot, "get"), "url");
    if (!IsHttpUrl(put_url) || !IsHttpUrl(get_url)) {
      return then(TIM_ERR_FILE, "the upload service sent no usable slot");
    }
    std::vector<std::string> headers = {"Content-Type: application/octet-stream"};
    for (xmpp_stanza_t* h = ChildOf(put, "header"); h != nullptr; h = xmpp_stanza_get_next(h)) {
      const std::string header = AttrOf(h, "name");
      // Only the headers the upload protocol allows, without line breaks.
      const std::string value = TextOf(h);
      if ((header == "Authorization" || header == "Cookie" || header == "Expires") &&
          value.find_first_of("\r\n") == std::string::npos) {
        headers.push_back(header + ": " + value);
      }
    }
    const std::string snapshot = WriteJson(*msg);
    transfers_.Put(
        put_url, headers, path,
        [this, snapshot, index](uint64_t done, uint64_t total) {
          Emit(Event{EventKind::kUploadProgress, snapshot, static_cast<int64_t>(index),
                     static_cast<int64_t>(done), static_cast<int64_t>(total)});
        },
        [this, msg, index, get_url, name, size, then](const TransferResult& result) {
          link_->Post([this, msg, index, get_url, name, size, then, result] {
            if (!result.ok) return then(TIM_ERR_FILE, "the upload failed: " + result.error);
            Json::Value& elem = (*msg)["message_elem_array"][index];
            if (elem["elem_type"].asInt() == kTIMElem_Image) {
              for (const char* key :
                   {"image_elem_orig_url", "image_elem_thumb_url", "image_elem_large_url",
                    "image_elem_orig_id", "image_elem_thumb_id", "image_elem_large_id"}) {
                elem[key] = get_url;  // one stored file; its URL is its id
              }
            } else {
              elem["file_elem_url"] = get_url;
              elem["file_elem_file_id"] = get_url;
              elem["file_elem_file_name"] = name;
              elem["file_elem_file_size"] = Json::UInt64(size);
            }
            UploadFiles(msg, index + 1, then);
          });
        });
  });
}

int XmppBackend::Download(const Json::Value& param, const std::string& path, ResultFn done) {
  ParamReader reader(param);
  const std::string id = reader.String("msg_download_elem_param_id");
  const std::string url = reader.String("msg_download_elem_param_url");
  if (!reader.ok()) return TIM_ERR_INVALID_JSON;
  if (path.empty()) return TIM_ERR_INVALID_PARAM;
  // An element's id is its download URL.
  const std::string target = IsHttpUrl(id) ? id : url;
  return WhenSignedIn([this, target, path, done] {
    if (!IsHttpUrl(target)) return done(TIM_ERR_FILE_NOT_FOUND, "no download URL", "");
    transfers_.Get(target, path, [this, target, done](const TransferResult& result) {
      link_->Post([this, target, done, result] {
        if (!result.ok) {
          Trace("download of %s failed: %s", target.c_str(), result.error.c_str());
          const int code =
              result.status == 404 || result.status == 410 ? TIM_ERR_FILE_NOT_FOUND : TIM_ERR_FILE;
          return done(code, "the download failed: " + result.error, "");
        }
        if (result.resumed_from > 0) {
          Trace("download of %s resumed at byte %llu", target.c_str(),
                static_cast<unsigned long long>(result.resumed_from));
        }
        Json::Value sizes(Json::objectValue);
        sizes["msg_download_elem_result_current_size"] = Json::UInt64(result.size);
        sizes["msg_download_elem_result_total_size"] = Json::UInt64(result.size);
        done(TIM_SUCC, "", WriteJson(sizes));
      });
    });
  });
}

}  // namespace imsdk::xmpp
