#pragma once
// What the composer needs of the service: sending into the open
// conversation. The composer has checked the limits before; the sink only
// sends. Window thread.

#include "platform/strings.h"

class CChatTools;

namespace service {

class ComposerSink {
 public:
  virtual ~ComposerSink() = default;
  // Each sends one message to the open conversation; false when there is
  // none or the service could not send.
  virtual bool SendText(const WString& text) = 0;
  virtual bool SendImage(const WString& path) = 0;
  virtual bool SendFile(const WString& path) = 0;
  // Where pictures pasted from the clipboard are written until they are sent
  // (created on demand by the caller).
  virtual WString PastedPictureFolder() const = 0;
};

// The sink over the module's service object.
class ChatToolsComposerSink final : public ComposerSink {
 public:
  explicit ChatToolsComposerSink(CChatTools& tools) : tools_(tools) {}
  bool SendText(const WString& text) override;
  bool SendImage(const WString& path) override;
  bool SendFile(const WString& path) override;
  WString PastedPictureFolder() const override;

 private:
  CChatTools& tools_;
};

}  // namespace service
