#include "imsdk/xmpp/message_codec.h"

#include <cctype>
#include <cstdio>
#include <ctime>

#include "imsdk/im_sdk.h"
#include "imsdk/json_util.h"

namespace imsdk::xmpp {
namespace {

// The element kinds a peer may send; tips and reports come from groups only.
bool IsSendableKind(const Json::Value& elem) {
  if (!elem.isObject() || !elem["elem_type"].isIntegral()) return false;
  const auto type = elem["elem_type"].asLargestInt();
  return type == kTIMElem_Text || type == kTIMElem_Image || type == kTIMElem_Custom ||
         type == kTIMElem_File;
}

Json::Value TextElem(const std::string& text) {
  Json::Value elem(Json::objectValue);
  elem["elem_type"] = kTIMElem_Text;
  elem["text_elem_content"] = text;
  return elem;
}

// The last path segment of a URL, percent-decoded.
std::string FileNameOf(const std::string& url) {
  std::string path = url.substr(0, url.find_first_of("?#"));
  std::string segment = path.substr(path.find_last_of('/') + 1);
  std::string name;
  for (size_t i = 0; i < segment.size(); ++i) {
    if (segment[i] == '%' && i + 2 < segment.size() &&
        std::isxdigit(static_cast<unsigned char>(segment[i + 1])) &&
        std::isxdigit(static_cast<unsigned char>(segment[i + 2]))) {
      name += static_cast<char>(std::stoi(segment.substr(i + 1, 2), nullptr, 16));
      i += 2;
    } else {
      name += segment[i];
    }
  }
  return name.empty() ? "file" : name;
}

// A picture when the name says so, else a file; the URL is its id.
Json::Value FileElemFromUrl(const std::string& url) {
  const std::string name = FileNameOf(url);
  std::string ext = name.substr(name.find_last_of('.') + 1);
  for (auto& c : ext) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  Json::Value elem(Json::objectValue);
  if (ext == "png" || ext == "jpg" || ext == "jpeg" || ext == "gif" || ext == "bmp" ||
      ext == "webp") {
    elem["elem_type"] = kTIMElem_Image;
    for (const char* key : {"image_elem_orig_url", "image_elem_thumb_url", "image_elem_large_url",
                            "image_elem_orig_id", "image_elem_thumb_id", "image_elem_large_id"}) {
      elem[key] = url;
    }
    elem["image_elem_orig_path"] = "";
    elem["image_elem_large_pic_width"] = 0;
    elem["image_elem_large_pic_height"] = 0;
    return elem;
  }
  elem["elem_type"] = kTIMElem_File;
  elem["file_elem_file_path"] = "";
  elem["file_elem_file_name"] = name;
  elem["file_elem_file_size"] = 0;  // not told
  elem["file_elem_file_id"] = url;
  elem["file_elem_url"] = url;
  return elem;
}

}  // namespace

std::string ReadableBody(const Json::Value& elems) {
  std::string body;
  for (const auto& elem : elems) {
    if (!body.empty()) body += "\n";
    switch (elem["elem_type"].asInt()) {
      case kTIMElem_Text:
        body += elem["text_elem_content"].asString();
        break;
      case kTIMElem_Custom: {
        const std::string desc = elem.get("custom_elem_desc", "").asString();
        body += desc.empty() ? "[custom message]" : desc;
        break;
      }
      case kTIMElem_Image: {
        // Other clients show a link (or the picture itself).
        const std::string url = elem.get("image_elem_orig_url", "").asString();
        body += url.empty() ? "[picture]" : url;
        break;
      }
      case kTIMElem_File: {
        const std::string url = elem.get("file_elem_url", "").asString();
        body += url.empty() ? "[file] " + elem.get("file_elem_file_name", "").asString() : url;
        break;
      }
      default:
        body += "[message]";
    }
  }
  return body;
}

Stanza BuildChatMessage(xmpp_ctx_t* ctx, const std::string& to, const std::string& origin_id,
                        const Json::Value& elems, const char* type) {
  Stanza message(ctx, "message");
  message.Attr("type", type).Attr("to", to).Attr("id", origin_id);
  message.AddText("body", ReadableBody(elems));
  message.Add(Stanza(ctx, "origin-id").Ns(ns::kStanzaId).Attr("id", origin_id));
  Stanza payload(ctx, "elems");
  payload.Ns(ns::kElems).Text(WriteJson(elems));
  message.Add(payload);
  // The first file or picture as out-of-band data, which clients render.
  for (const auto& elem : elems) {
    const std::string url =
        elem.get("image_elem_orig_url", elem.get("file_elem_url", "")).asString();
    if (url.empty()) continue;
    message.Add(Stanza(ctx, "x").Ns(ns::kOob).AddText("url", url));
    break;
  }
  // Peers may tell when they have read it.
  message.Add(Stanza(ctx, "markable").Ns(ns::kMarkers));
  // Archived even by servers that store only what they recognise.
  message.Add(Stanza(ctx, "store").Ns(ns::kHints));
  return message;
}

namespace {

// What both kinds of message carry; `archive_owner` names whose archive ids
// are trusted.
std::optional<WireMessage> ReadContent(xmpp_stanza_t* message, const std::string& archive_owner,
                                       std::string* why) {
  WireMessage out;
  out.from_bare = BareJid(AttrOf(message, "from"));
  out.to_bare = BareJid(AttrOf(message, "to"));
  out.origin_id = AttrOf(ChildOf(message, "origin-id", ns::kStanzaId), "id");
  for (xmpp_stanza_t* c = xmpp_stanza_get_children(message); c != nullptr;
       c = xmpp_stanza_get_next(c)) {
    // Only the archive owner's server may name the archive id.
    if (NameOf(c) == "stanza-id" && AttrOf(c, "by") == archive_owner) {
      out.archive_id = AttrOf(c, "id");
    }
  }
  out.server_time = DelayStamp(message);
  out.elems = Json::Value(Json::arrayValue);
  if (xmpp_stanza_t* payload = ChildOf(message, "elems", ns::kElems)) {
    Json::Value elems;
    if (ParseJson(TextOf(payload), &elems) && elems.isArray()) {
      for (auto& elem : elems) {
        if (!IsSendableKind(elem)) continue;
        // The sender's local paths mean nothing here.
        if (elem.isMember("image_elem_orig_path")) elem["image_elem_orig_path"] = "";
        if (elem.isMember("file_elem_file_path")) elem["file_elem_file_path"] = "";
        out.elems.append(elem);
      }
    }
    if (out.elems.empty()) *why = "an unreadable element array, read from its body instead";
  }
  if (out.elems.empty()) {
    // A file shared by another client: its URL as out-of-band data.
    const std::string url = ChildText(ChildOf(message, "x", ns::kOob), "url");
    if (url.rfind("http://", 0) == 0 || url.rfind("https://", 0) == 0) {
      const std::string body = ChildText(message, "body");
      if (!body.empty() && body != url) out.elems.append(TextElem(body));
      out.elems.append(FileElemFromUrl(url));
      return out.from_bare.empty() ? std::nullopt : std::optional<WireMessage>(out);
    }
    xmpp_stanza_t* body = ChildOf(message, "body");
    if (body == nullptr) {
      if (why->empty()) *why = "no content";
      return std::nullopt;
    }
    out.elems.append(TextElem(TextOf(body)));
  }
  if (out.from_bare.empty()) {
    *why = "no sender";
    return std::nullopt;
  }
  return out;
}

}  // namespace

std::optional<WireMessage> ReadChatMessage(xmpp_stanza_t* message, const std::string& archive_owner,
                                           std::string* why) {
  const std::string type = AttrOf(message, "type");
  if (type == "error" || type == "groupchat" || type == "headline") {
    *why = "a message of type " + type;
    return std::nullopt;
  }
  return ReadContent(message, archive_owner, why);
}

std::optional<WireMessage> ReadGroupMessage(xmpp_stanza_t* message, std::string* why) {
  if (AttrOf(message, "type") != "groupchat") {
    *why = "not a group message";
    return std::nullopt;
  }
  const std::string from = AttrOf(message, "from");
  const size_t slash = from.find('/');
  if (slash == std::string::npos || slash + 1 == from.size()) {
    *why = "no content";  // the room's own notices (subject, status)
    return std::nullopt;
  }
  auto out = ReadContent(message, BareJid(from), why);
  if (out) out->nick = from.substr(slash + 1);
  return out;
}

std::string RetractedId(xmpp_stanza_t* message) {
  if (xmpp_stanza_t* retract = ChildOf(message, "retract", ns::kRetract1)) {
    return AttrOf(retract, "id");
  }
  xmpp_stanza_t* apply_to = ChildOf(message, "apply-to", ns::kFasten);
  if (ChildOf(apply_to, "retract", ns::kRetract0) != nullptr) return AttrOf(apply_to, "id");
  return "";
}

bool IsMarkerOrRetraction(xmpp_stanza_t* message) {
  return ChildOf(message, "displayed", ns::kMarkers) != nullptr || !RetractedId(message).empty();
}

uint64_t Hash63(const std::string& text) {
  uint64_t h = 1469598103934665603ULL;  // FNV-1a
  for (unsigned char c : text) {
    h ^= c;
    h *= 1099511628211ULL;
  }
  h &= 0x7fffffffffffffffULL;
  return h == 0 ? 1 : h;
}

uint64_t MessageIdFor(const WireMessage& msg) {
  if (!msg.origin_id.empty()) {
    const std::string sender = msg.nick.empty() ? msg.from_bare : msg.from_bare + "/" + msg.nick;
    return Hash63(sender + "\n" + msg.origin_id);
  }
  return Hash63("archive\n" + msg.archive_id);
}

std::string FormatStamp(uint64_t seconds) {
  const std::time_t t = static_cast<std::time_t>(seconds);
  std::tm tm{};
  gmtime_r(&t, &tm);
  char text[32];
  std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &tm);
  return text;
}

uint64_t ParseStamp(const std::string& stamp) {
  int y = 0, mo = 0, d = 0, h = 0, mi = 0, s = 0, consumed = 0;
  if (std::sscanf(stamp.c_str(), "%4d-%2d-%2dT%2d:%2d:%2d%n", &y, &mo, &d, &h, &mi, &s,
                  &consumed) != 6) {
    return 0;
  }
  std::tm tm{};
  tm.tm_year = y - 1900;
  tm.tm_mon = mo - 1;
  tm.tm_mday = d;
  tm.tm_hour = h;
  tm.tm_min = mi;
  tm.tm_sec = s;
  time_t t = timegm(&tm);
  if (t < 0) return 0;
  std::string rest = stamp.substr(static_cast<size_t>(consumed));
  size_t i = 0;
  if (i < rest.size() && rest[i] == '.') {
    for (++i; i < rest.size() && rest[i] >= '0' && rest[i] <= '9'; ++i) {
    }
  }
  rest = rest.substr(i);
  int oh = 0, om = 0;
  if ((rest.size() == 6) && (rest[0] == '+' || rest[0] == '-') &&
      std::sscanf(rest.c_str() + 1, "%2d:%2d", &oh, &om) == 2) {
    const int64_t offset = (oh * 60 + om) * 60;
    t += rest[0] == '+' ? -offset : offset;
  } else if (rest != "Z" && !rest.empty()) {
    return 0;
  }
  return t < 0 ? 0 : static_cast<uint64_t>(t);
}

uint64_t DelayStamp(xmpp_stanza_t* st) {
  return ParseStamp(AttrOf(ChildOf(st, "delay", ns::kDelay), "stamp"));
}

}  // namespace imsdk::xmpp
