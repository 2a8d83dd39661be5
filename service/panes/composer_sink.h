#pragma once
// What the composer needs of the service: sending into the open
// conversation. The composer has checked the limits before; the sink only
// sends. Window thread.

#include <memory>

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
std::unique_ptr<ComposerSink> MakeComposerSink(CChatTools& tools);

}  // namespace service
