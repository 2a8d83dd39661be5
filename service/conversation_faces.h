#pragma once
// Where a conversation's picture and name come from, split from the fetching
// of the picture, so that a list can show the default picture at once and
// fetch the real one elsewhere.

#include <cstdint>

#include "platform/strings.h"

class CChatTools;

namespace service {

// The pictures shown while a person or a group has none (skin-relative).
inline constexpr char16_t kPersonDefaultImage[] = u"..\\img\\PersonDefaultImg.png";
inline constexpr char16_t kGroupDefaultImage[] = u"..\\img\\GroupDefaultImg.png";

struct ConversationFace {
  WString name;
  WString faceUrl;       // empty: the default picture is the picture
  WString defaultImage;  // skin-relative ("..\img\PersonDefaultImg.png", ...)
};

// Name and picture URL of a conversation: the group's, the friend's (remark,
// else nickname), else the host's account information of a stranger, else
// the id as the name. Asks the host for accounts only, never downloads.
ConversationFace LookUpConversationFace(const CChatTools& tools, uint32_t convType,
                                        const WString& convId);

// The cache file of a picture URL in `faceFolder` (the signed-in user's,
// CChatTools::Folders), or empty when there is no URL or no folder.
WString FaceCachePath(const WString& faceFolder, const WString& faceUrl);
bool FaceFileExists(const WString& path);
// The host's download into `path` (blocking); false and traced on failure.
bool DownloadFace(const WString& faceUrl, const WString& path);

}  // namespace service
