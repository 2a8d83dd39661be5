#pragma once
// The drawing dialogs' view of the controller: the host's open drawings and
// the send for the drawing selection dialog, the group space's tree and the
// share of one of its drawings for ShareDwg. Window thread only.

#include <cstdint>
#include <vector>

#include "host/host_records.h"
#include "platform/strings.h"
#include "platform/window_messages.h"
#include "service/drawings/drawing_upload.h"

class CChatTools;

namespace service::drawings {

class DrawingSelectionSource {
 public:
  virtual ~DrawingSelectionSource() = default;
  // The drawing files open in the host (empty without a host).
  virtual std::vector<WString> HostDrawings() = 0;
  // Sends the drawing to the conversation; kUploading: 1025 reaches `notify`.
  virtual DrawingSendStep Send(const WString& localPath, platform::WindowHandle notify) = 0;
  // 1025: true when the drawing message went out.
  virtual bool Finish(bool stored) = 0;
};

class ShareTreeSource {
 public:
  virtual ~ShareTreeSource() = default;
  virtual WString GroupName() const = 0;
  // The group space's drawings into `tree`; false without a host or space.
  virtual bool FillTree(ShareTreeSelection& tree) = 0;
  // Sends a drawing message for a drawing of the space (nothing is uploaded).
  virtual bool Share(const ShareTreeDrawing& drawing) = 0;
};

// The open conversation's sources, over CChatTools and the host.
class ConversationDrawings final : public DrawingSelectionSource, public ShareTreeSource {
 public:
  ConversationDrawings(CChatTools& tools, DrawingUpload& upload, WString convId, uint32_t convType);

  std::vector<WString> HostDrawings() override;
  DrawingSendStep Send(const WString& localPath, platform::WindowHandle notify) override;
  bool Finish(bool stored) override { return upload_.Finish(stored); }

  WString GroupName() const override;
  bool FillTree(ShareTreeSelection& tree) override;
  bool Share(const ShareTreeDrawing& drawing) override;

 private:
  int32_t CloudGroupId() const;

  CChatTools& tools_;
  DrawingUpload& upload_;
  WString convId_;
  uint32_t convType_;
};

}  // namespace service::drawings
