#include "imsdk/xmpp/stanza.h"

namespace imsdk::xmpp {

Stanza::Stanza(xmpp_ctx_t* ctx, const char* name) : raw_(xmpp_stanza_new(ctx)) {
  if (raw_ != nullptr) xmpp_stanza_set_name(raw_, name);
}

Stanza Stanza::Adopt(xmpp_stanza_t* raw) {
  Stanza s;
  s.raw_ = raw;
  return s;
}

Stanza::~Stanza() {
  if (raw_ != nullptr) xmpp_stanza_release(raw_);
}

Stanza& Stanza::operator=(Stanza&& other) noexcept {
  if (this != &other) {
    if (raw_ != nullptr) xmpp_stanza_release(raw_);
    raw_ = std::exchange(other.raw_, nullptr);
  }
  return *this;
}

Stanza& Stanza::Attr(const char* key, const std::string& value) {
  if (raw_ != nullptr) xmpp_stanza_set_attribute(raw_, key, value.c_str());
  return *this;
}

Stanza& Stanza::Ns(const char* ns) {
  if (raw_ != nullptr) xmpp_stanza_set_ns(raw_, ns);
  return *this;
}

Stanza& Stanza::Add(const Stanza& child) {
  // add_child takes its own reference.
  if (raw_ != nullptr && child.raw_ != nullptr) xmpp_stanza_add_child(raw_, child.raw_);
  return *this;
}

Stanza& Stanza::AddText(const char* name, const std::string& text) {
  if (raw_ == nullptr) return *this;
  Stanza child(xmpp_stanza_get_context(raw_), name);
  child.Text(text);
  return Add(child);
}

Stanza& Stanza::Text(const std::string& text) {
  if (raw_ == nullptr) return *this;
  xmpp_stanza_t* node = xmpp_stanza_new(xmpp_stanza_get_context(raw_));
  if (node == nullptr) return *this;
  xmpp_stanza_set_text_with_size(node, text.data(), text.size());
  xmpp_stanza_add_child(raw_, node);
  xmpp_stanza_release(node);
  return *this;
}

std::string Stanza::ToText() const {
  return Describe(raw_, std::string::npos);
}

std::string AttrOf(xmpp_stanza_t* st, const char* key) {
  if (st == nullptr) return {};
  const char* v = xmpp_stanza_get_attribute(st, key);
  return v == nullptr ? std::string() : std::string(v);
}

std::string NameOf(xmpp_stanza_t* st) {
  const char* name = st == nullptr ? nullptr : xmpp_stanza_get_name(st);
  return name == nullptr ? std::string() : std::string(name);
}

xmpp_stanza_t* ChildOf(xmpp_stanza_t* st, const char* name, const char* ns) {
  if (st == nullptr) return nullptr;
  return ns == nullptr ? xmpp_stanza_get_child_by_name(st, name)
                       : xmpp_stanza_get_child_by_name_and_ns(st, name, ns);
}

std::string TextOf(xmpp_stanza_t* st) {
  if (st == nullptr) return {};
  char* text = xmpp_stanza_get_text(st);
  if (text == nullptr) return {};
  std::string out(text);
  xmpp_free(xmpp_stanza_get_context(st), text);
  return out;
}

std::string ChildText(xmpp_stanza_t* st, const char* name, const char* ns) {
  return TextOf(ChildOf(st, name, ns));
}

std::string Describe(xmpp_stanza_t* st, size_t limit) {
  if (st == nullptr) return "(none)";
  char* buf = nullptr;
  size_t len = 0;
  if (xmpp_stanza_to_text(st, &buf, &len) != XMPP_EOK || buf == nullptr) return "(unprintable)";
  std::string out(buf, len);
  xmpp_free(xmpp_stanza_get_context(st), buf);
  if (out.size() > limit) out = out.substr(0, limit) + "...";
  return out;
}

std::string BareJid(const std::string& jid) {
  return jid.substr(0, jid.find('/'));
}

std::string LocalPart(const std::string& jid) {
  std::string bare = BareJid(jid);
  size_t at = bare.find('@');
  return at == std::string::npos ? std::string() : bare.substr(0, at);
}

std::string DomainPart(const std::string& jid) {
  std::string bare = BareJid(jid);
  size_t at = bare.find('@');
  return at == std::string::npos ? bare : bare.substr(at + 1);
}

bool IsValidLocalPart(const std::string& id) {
  if (id.empty() || id.size() > 1023) return false;
  for (unsigned char c : id) {
    if (c <= 0x20 || c == '"' || c == '&' || c == '\'' || c == '/' || c == ':' || c == '<' ||
        c == '>' || c == '@' || c == 0x7f) {
      return false;
    }
  }
  return true;
}

std::string ErrorCondition(xmpp_stanza_t* st) {
  xmpp_stanza_t* error = ChildOf(st, "error");
  for (xmpp_stanza_t* c = error == nullptr ? nullptr : xmpp_stanza_get_children(error);
       c != nullptr; c = xmpp_stanza_get_next(c)) {
    const char* ns = xmpp_stanza_get_ns(c);
    if (xmpp_stanza_is_tag(c) && ns != nullptr && std::string(ns) == ns::kStanzaErrors &&
        NameOf(c) != "text") {
      return NameOf(c);
    }
  }
  return error == nullptr ? "" : "undefined-condition";
}

}  // namespace imsdk::xmpp
