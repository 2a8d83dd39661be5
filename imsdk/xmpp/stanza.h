#pragma once
// Small C++ helpers over libstrophe's stanzas: an owning handle that builds
// stanzas fluently, and null-safe readers. Text is escaped by libstrophe
// when a stanza is serialised, so values are passed as they are.
#include <strophe.h>

#include <string>
#include <utility>

namespace imsdk::xmpp {

namespace ns {
inline constexpr const char* kRoster = "jabber:iq:roster";
inline constexpr const char* kMam = "urn:xmpp:mam:2";
inline constexpr const char* kRsm = "http://jabber.org/protocol/rsm";
inline constexpr const char* kDataForm = "jabber:x:data";
inline constexpr const char* kForward = "urn:xmpp:forward:0";
inline constexpr const char* kDelay = "urn:xmpp:delay";
inline constexpr const char* kStanzaId = "urn:xmpp:sid:0";
inline constexpr const char* kVCard = "vcard-temp";
inline constexpr const char* kPing = "urn:xmpp:ping";
inline constexpr const char* kStanzaErrors = "urn:ietf:params:xml:ns:xmpp-stanzas";
inline constexpr const char* kHints = "urn:xmpp:hints";
inline constexpr const char* kOob = "jabber:x:oob";
inline constexpr const char* kMarkers = "urn:xmpp:chat-markers:0";
inline constexpr const char* kFasten = "urn:xmpp:fasten:0";
inline constexpr const char* kRetract0 = "urn:xmpp:message-retract:0";
inline constexpr const char* kRetract1 = "urn:xmpp:message-retract:1";
// Our own element: the message's element array as JSON, untouched by servers.
inline constexpr const char* kElems = "urn:x-imsdk:elems:0";
}  // namespace ns

class Stanza {
 public:
  Stanza() = default;
  // A new element named `name`.
  Stanza(xmpp_ctx_t* ctx, const char* name);
  // Takes over a reference the caller owns.
  static Stanza Adopt(xmpp_stanza_t* raw);
  ~Stanza();
  Stanza(Stanza&& other) noexcept : raw_(std::exchange(other.raw_, nullptr)) {}
  Stanza& operator=(Stanza&& other) noexcept;
  Stanza(const Stanza&) = delete;
  Stanza& operator=(const Stanza&) = delete;

  Stanza& Attr(const char* key, const std::string& value);
  Stanza& Ns(const char* ns);
  Stanza& Add(const Stanza& child);
  // Adds a child element `name` holding `text`.
  Stanza& AddText(const char* name, const std::string& text);
  // Adds a text node.
  Stanza& Text(const std::string& text);
  xmpp_stanza_t* get() const { return raw_; }
  explicit operator bool() const { return raw_ != nullptr; }
  std::string ToText() const;

 private:
  xmpp_stanza_t* raw_ = nullptr;
};

// Readers; a null stanza reads as empty.
std::string AttrOf(xmpp_stanza_t* st, const char* key);
std::string NameOf(xmpp_stanza_t* st);
xmpp_stanza_t* ChildOf(xmpp_stanza_t* st, const char* name, const char* ns = nullptr);
// All text inside the element.
std::string TextOf(xmpp_stanza_t* st);
std::string ChildText(xmpp_stanza_t* st, const char* name, const char* ns = nullptr);
// The serialised stanza, for traces (cut to `limit` bytes).
std::string Describe(xmpp_stanza_t* st, size_t limit = 300);

// JID parts: "local@domain/resource".
std::string BareJid(const std::string& jid);
std::string LocalPart(const std::string& jid);
std::string DomainPart(const std::string& jid);
// A user id usable as a JID local part (RFC 7622 forbids these characters).
bool IsValidLocalPart(const std::string& id);

// The stanza error condition of a type="error" stanza ("" when none).
std::string ErrorCondition(xmpp_stanza_t* st);

}  // namespace imsdk::xmpp
