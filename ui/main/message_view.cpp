#include "ui/main/message_view.h"

#include <filesystem>
#include <string>

#include "platform/trace.h"
#include "platform/window_messages.h"
#include "records/message_summary.h"
#include "service/posting.h"
#include "ui/rules/emoticon_table.h"

namespace ui::main {
namespace {

// The window's 50 ms scroll to the bottom (CIMWnd::kScrollToBottomTimer).
constexpr unsigned kScrollToBottomTimer = 9996;
constexpr unsigned kScrollDelayMs = 50;
// 3164 names an item by its 64-bit id.
static_assert(sizeof(WPARAM) >= sizeof(uint64_t));
// Refresh mode 3: rebuild after an older page, then to the top.
constexpr WPARAM kShowOlderPage = 3;

constexpr std::string_view kRichEdit = "List_Item_RichEdit";
constexpr std::string_view kContainer = "MsgContainer";
constexpr std::string_view kHeader = "List_Item_Edit";
constexpr uint32_t kOneToOne = 1;  // conversation type
constexpr std::string_view kOwnAvatar = "MyselfChatItem_Avatar";
constexpr std::string_view kFriendAvatar = "FriendChatItem_Avatar";

// The resize rule: a bubble and its rich edit are the content's height h
// plus 10, the item h + 45; a system line is h + 12.
constexpr ChatFit kBubbleFit{45, 10, true};
constexpr ChatFit kLineFit{12, 0, false};

WString Image(std::u16string_view name) {
  return u"../img/" + WString(name);
}

bool FileExists(const WString& path) {
  std::error_code error;
  return !path.empty() && std::filesystem::is_regular_file(
                              std::filesystem::path(platform::Utf16ToUtf8(path)), error);
}

WString JoinPath(const WString& folder, const WString& name) {
  if (folder.empty() || folder.back() == u'/' || folder.back() == u'\\') return folder + name;
  return folder + u'/' + name;
}

// A file name from a text that may hold separators.
WString SafeName(WString name) {
  for (char16_t& c : name) {
    if (c == u'/' || c == u'\\') c = u'_';
  }
  return name;
}

int Percent(const ShownElem& view) {
  if (view.totalSize == 0) return -1;
  return static_cast<int>(view.currentSize * 100 / view.totalSize);
}

uint32_t SendState(const MessageStru& message) {
  if (message.status != kSendNone) return message.status;
  return message.elems.empty() ? kSendNone : message.elems.front().send_status;
}

// An own element on its way up, with progress reported.
bool Uploading(const ShownMessage& shown, const ShownElem& view) {
  return view.own && view.totalSize != 0 && SendState(shown.message) == kSending;
}

}  // namespace

MessageView::MessageView(WindowImplBase& window, MainControls& controls,
                         service::MessageViewSource& source, Desktop& desktop)
    : window_(window),
      controls_(controls),
      source_(source),
      desktop_(desktop),
      list_(controls.hisRecordList),
      clock_([] { return std::time(nullptr); }) {}

std::time_t MessageView::Now() const {
  return clock_();
}

void MessageView::Post(unsigned msg, WPARAM wParam) {
  service::Post(window_.GetHWND(), msg, wParam);
}

// Items of another conversation leave the view; the elements of this one's
// messages are inserted again into new items.
void MessageView::Prepare(const WString& convId) {
  if (shownConversation_ == convId && list_.Count() != 0) return;
  list_.RemoveAll();
  shownConversation_ = convId;
}

void MessageView::ShowMsgs() {
  if (!list_ || !controls_.composer) return;
  const WString convId = source_.CurrentConversation();
  Prepare(convId);
  std::vector<ShownMessage>* shownList = messages_.Find(convId);
  if (!shownList) return;
  ChatList::Batch batch(list_);
  const bool atBottom = AtBottom();
  bool rendered = false;
  bool reportRead = false;
  int at = 0;  // where a new item goes: after the last item met
  std::optional<std::time_t> previous;
  for (ShownMessage& shown : *shownList) {
    if (!shown.visible) continue;
    MessageStru& message = shown.message;
    for (size_t i = 0; i < message.elems.size(); ++i) {
      const ElemStru& elem = message.elems[i];
      ShownElem& view = shown.elems[i];
      if (elem.elem_type == kElemImage) {
        view.transfer = ExpireStalledPicture(view.transfer, view.transferStarted, Now());
      }
      if (message.is_from_self) view.own = true;
      // Group tips, faces, locations and group reports are not shown.
      if (elem.elem_type >= kElemGroupTips && elem.elem_type <= kElemGroupReport) continue;
      int row = list_.Find(shown.itemId);
      if (row < 0) {
        std::time_t time = static_cast<std::time_t>(message.server_time);
        if (previous && NeedsTimeSeparator(*previous, time)) AddSeparator(time, at++);
        row = CreateItem(shown, elem, at);
        if (row < 0) continue;
      }
      at = row + 1;
      Render(row, shown, i);
      rendered = true;
    }
    if (!message.elems.empty()) previous = static_cast<std::time_t>(message.server_time);
    if (!shown.readMarked && !message.is_from_self) {
      shown.readMarked = true;
      reportRead = true;
    }
  }
  if (rendered) FollowBottom(atBottom);
  if (reportRead) source_.ReportRead(convId, source_.CurrentConversationType());
}

int MessageView::CreateItem(ShownMessage& shown, const ElemStru& elem, int at) {
  std::string_view skin = TemplateFor(elem, shown.message.is_from_self);
  int row = list_.Add(skin, shown.itemId, at);
  if (row < 0) return -1;
  for (ShownElem& view : shown.elems) {
    view.objectId = 0;
    view.rendered = false;
  }
  if (skin != kSystemReminderTemplate) {
    // A click on the avatar names the sender.
    list_.Set(row, shown.message.is_from_self ? kOwnAvatar : kFriendAvatar, "userdata",
              SenderId(shown.message));
    list_.Set(row, kContainer, "bkcolor", shown.message.is_from_self ? u"#FF4EC5CE" : u"#FFFFFFFF");
    list_.Set(row, kRichEdit, "inset", u"10,10,10,10");
  }
  return row;
}

void MessageView::AddSeparator(std::time_t time, int at) {
  int row = list_.Add(kSystemReminderTemplate, 0, at);
  if (row < 0) return;
  list_.AppendText(row, {ChatRun{SeparatorText(time, Now()), WString()}});
  list_.FitToContent(row, kLineFit);
}

void MessageView::Render(int row, ShownMessage& shown, size_t index) {
  const ElemStru& elem = shown.message.elems[index];
  if (!IsNotice(elem)) {
    if (shown.message.is_from_self && SendState(shown.message) == kSending) FollowTransfer(shown);
    list_.Set(row, kHeader, "text", Header(shown));
  }
  switch (elem.elem_type) {
    case kElemText:
    case kElemLocalNotice:
      RenderText(row, shown, index);
      break;
    case kElemImage:
      RenderPicture(row, shown, index);
      break;
    case kElemSound:
      RenderVoice(row, shown, index);
      break;
    case kElemCustom:
      if (elem.drawing.subType == kCustomDrawing) {
        RenderDrawing(row, shown, index);
      } else if (elem.drawing.subType == kCustomNotice) {
        RenderText(row, shown, index);
      } else {
        RenderGeneric(row, shown, index);
      }
      break;
    case kElemFile:
      RenderFile(row, shown, index);
      break;
    case kElemVideo:
      RenderVideo(row, shown, index);
      break;
    default:
      RenderGeneric(row, shown, index);
      break;
  }
  list_.FitToContent(row, IsNotice(elem) ? kLineFit : kBubbleFit);
}

// Text, local notices and notices carried by a custom element: written
// once, emoticon codes shown as their pictures.
void MessageView::RenderText(int row, ShownMessage& shown, size_t index) {
  ShownElem& view = shown.elems[index];
  if (view.rendered) return;
  const ElemStru& elem = shown.message.elems[index];
  const WString& text = elem.elem_type == kElemCustom ? elem.drawing.content : elem.text;
  std::vector<ChatRun> runs;
  for (rules::TextPiece& piece : rules::SplitEmoticons(text)) {
    WString image;
    if (piece.emoticon) image = u"../emoji/" + piece.emoticon->ImageName() + u".png";
    runs.push_back(ChatRun{std::move(piece.text), std::move(image)});
  }
  list_.AppendText(row, runs);
  view.rendered = true;
}

void MessageView::PutObject(int row, ShownElem& view, const ChatObject& object) {
  if (view.objectId == 0) {
    view.objectId = list_.InsertObject(row, object);
  } else {
    list_.UpdateObject(row, view.objectId, object);
  }
}

void MessageView::StartDownload(ShownMessage& shown, ShownElem& view, const std::string& param,
                                const WString& path) {
  view.localPath = path;
  if (FileExists(path)) {
    view.transfer = TransferState::kDone;  // fetched before
    return;
  }
  view.transfer = TransferState::kInProgress;
  view.transferStarted = Now();
  source_.Download(param, path, shown.itemId);
}

void MessageView::RenderPicture(int row, ShownMessage& shown, size_t index) {
  const ElemStru& elem = shown.message.elems[index];
  ShownElem& view = shown.elems[index];
  if (view.transfer == TransferState::kNone) {
    if (view.own && FileExists(elem.orig_path)) {
      view.localPath = elem.orig_path;
      view.transfer = TransferState::kDone;
    } else if (!elem.thumb_download_param.empty() || !elem.orig_download_param.empty()) {
      const std::string& param =
          elem.thumb_download_param.empty() ? elem.orig_download_param : elem.thumb_download_param;
      WString id =
          elem.thumb_id.empty() ? platform::W(std::to_string(shown.itemId)) : elem.thumb_id;
      StartDownload(shown, view, param,
                    JoinPath(source_.DownloadFolder(), u"thumb_" + SafeName(id)));
    }
  }
  ChatObject object;
  object.maxSide = kPictureSide;
  std::u16string_view state = PictureStateImage(view.transfer);
  object.image = state.empty() ? view.localPath : Image(state);
  if (view.transfer == TransferState::kInProgress || Uploading(shown, view)) {
    object.progress = Percent(view);
  }
  PutObject(row, view, object);
}

void MessageView::RenderVoice(int row, ShownMessage& shown, size_t index) {
  ShownElem& view = shown.elems[index];
  if (view.objectId != 0) return;
  ChatObject object;
  object.image = Image(u"Voice.png");
  object.caption = VoiceLabel(shown.message.elems[index].file_time);
  view.objectId = list_.InsertObject(row, object);
}

void MessageView::RenderFile(int row, ShownMessage& shown, size_t index) {
  const ElemStru& elem = shown.message.elems[index];
  ShownElem& view = shown.elems[index];
  ChatObject object;
  object.image = Image(FileTypeKey(elem.file_name) + u".png");
  object.caption = elem.file_name + u'\n' + SizeText(elem.file_size);
  if (view.own) {
    view.localPath = elem.file_path;
    uint32_t state = SendState(shown.message);
    if (!FileExists(elem.file_path)) {
      object.stateImage = Image(u"FILELOSE.png");
    } else if (state == kSendFailed) {
      object.stateImage = Image(u"FileLoadError.png");
    } else if (state != kSending) {
      object.stateImage = Image(u"FilepUpLoaded.png");
    } else if (Uploading(shown, view)) {
      object.progress = Percent(view);
    }
  } else {
    if (view.transfer == TransferState::kNone && !elem.download_param.empty()) {
      StartDownload(shown, view, elem.download_param,
                    JoinPath(source_.DownloadFolder(), SafeName(elem.file_name)));
    }
    if (view.transfer == TransferState::kDone) object.stateImage = Image(u"FileLoaded.png");
    if (view.transfer == TransferState::kFailed) object.stateImage = Image(u"FileLoadError.png");
    if (view.transfer == TransferState::kInProgress) object.progress = Percent(view);
  }
  PutObject(row, view, object);
}

void MessageView::RenderDrawing(int row, ShownMessage& shown, size_t index) {
  const DrawingMsgStru& drawing = shown.message.elems[index].drawing;
  ChatObject object;
  object.image = Image(u"DWG.png");
  object.caption = drawing.fileName + u'\n' + SizeText(drawing.fileSize);
  if (FileExists(drawing.filePath)) object.stateImage = Image(u"FileLoaded.png");
  PutObject(row, shown.elems[index], object);
}

void MessageView::RenderVideo(int row, ShownMessage& shown, size_t index) {
  const ElemStru& elem = shown.message.elems[index];
  ShownElem& view = shown.elems[index];
  if (view.transfer == TransferState::kNone && !elem.download_param.empty()) {
    WString name =
        elem.video_id.empty() ? platform::W(std::to_string(shown.itemId)) : elem.video_id;
    StartDownload(shown, view, elem.download_param,
                  JoinPath(source_.DownloadFolder(), u"video_" + SafeName(name)));
  }
  ChatObject object;
  object.image =
      Image(view.transfer == TransferState::kFailed ? u"image_video_error.png" : u"videoTip.png");
  if (view.transfer == TransferState::kInProgress) object.progress = Percent(view);
  PutObject(row, view, object);
}

// Anything else: the line the conversation list would show for it.
void MessageView::RenderGeneric(int row, ShownMessage& shown, size_t index) {
  ShownElem& view = shown.elems[index];
  if (view.rendered) return;
  WString text = ::MessageSummaryText(shown.message.elems[index]);
  const DrawingMsgStru& drawing = shown.message.elems[index].drawing;
  if (shown.message.elems[index].elem_type == kElemCustom && !drawing.content.empty()) {
    text += u' ' + drawing.content;
  }
  list_.AppendText(row, {ChatRun{text, WString()}});
  view.rendered = true;
}

bool MessageView::AtBottom() const {
  const Control& view = controls_.hisRecordList;
  return view.GetScrollPos() == view.GetScrollRange();
}

void MessageView::FollowBottom(bool wasAtBottom) {
  if (IsLoadingOlder() || !wasAtBottom) return;
  window_.KillTimer(kScrollToBottomTimer);
  window_.SetTimer(kScrollToBottomTimer, kScrollDelayMs);
}

// Stored rows keep no sender id: the user's own messages are the user's, a
// one-to-one chat's others are its conversation's; a group's stays unknown.
WString MessageView::SenderId(const MessageStru& message) const {
  if (!message.sender.empty()) return message.sender;
  if (message.is_from_self) return source_.SelfId();
  return message.conv_type == kOneToOne ? message.conv_id : WString();
}

WString MessageView::SenderName(const MessageStru& message) const {
  if (message.is_from_self) return source_.SelfName();
  if (std::optional<WString> name = source_.FriendName(message.sender)) return *name;
  if (!message.sender_profile.nick_name.empty()) return message.sender_profile.nick_name;
  return message.sender;
}

WString MessageView::Header(const ShownMessage& shown) const {
  WString header =
      ItemHeader(SenderName(shown.message), static_cast<std::time_t>(shown.message.server_time));
  if (!shown.message.is_from_self) return header;
  switch (SendState(shown.message)) {
    case kSending:
      return header + u"  发送中…";
    case kSendFailed:
      return header + u"  发送失败";
    default:
      return header;
  }
}

// 3164 and sends in flight: the download's progress and the send's state.
void MessageView::FollowTransfer(ShownMessage& shown) {
  if (std::optional<DownloadState> state = source_.Transfer(shown.itemId)) {
    for (ShownElem& view : shown.elems) {
      if (view.transfer != TransferState::kInProgress) continue;
      view.currentSize = state->current_size;
      view.totalSize = state->total_size;
      if (state->downloaded != 0) {
        view.transfer = TransferState::kDone;
        if (!state->path.empty()) view.localPath = state->path;
      }
    }
  }
  MessageStru& message = shown.message;
  if (message.local_id == 0 || message.local_id != shown.itemId) return;
  if (std::optional<UploadProgress> upload = source_.Upload(message.local_id)) {
    for (ShownElem& view : shown.elems) {
      view.currentSize = upload->current;
      view.totalSize = upload->total;
    }
  }
  if (std::optional<MessageStru> sent = source_.SentMessage(message.local_id)) {
    message.status = sent->status;
    if (!message.elems.empty() && !sent->elems.empty()) {
      message.elems.front().send_status = sent->elems.front().send_status;
    }
    // A drawing's placeholder learns its space id, reference and time only
    // when the real message goes out; opening it needs them.
    for (size_t i = 0; i < message.elems.size() && i < sent->elems.size(); ++i) {
      if (message.elems[i].elem_type == kElemCustom && sent->elems[i].elem_type == kElemCustom) {
        message.elems[i].drawing = sent->elems[i].drawing;
      }
    }
    if (sent->unique_id != 0) message.unique_id = sent->unique_id;
  }
}

void MessageView::OnTransferChanged(WPARAM requestKey, LPARAM) {
  WString convId;
  const uint64_t itemId = requestKey;
  ShownMessage* shown = messages_.FindItem(itemId, &convId);
  if (!shown || convId != source_.CurrentConversation()) return;
  FollowTransfer(*shown);
  int row = list_.Find(itemId);
  if (row < 0) return;
  const bool atBottom = AtBottom();
  for (size_t i = 0; i < shown->message.elems.size(); ++i) {
    const ElemStru& elem = shown->message.elems[i];
    switch (elem.elem_type) {
      case kElemImage:
      case kElemSound:
      case kElemFile:
      case kElemVideo:
        Render(row, *shown, i);
        break;
      case kElemCustom:
        if (IsDrawingElem(elem)) Render(row, *shown, i);
        break;
      default:
        list_.Set(row, kHeader, "text", Header(*shown));
        break;
    }
  }
  FollowBottom(atBottom);
}

void MessageView::Clear() {
  messages_.Clear();
  list_.RemoveAll();
  shownConversation_.clear();
}

void MessageView::ReloadCurrentConversation() {
  const WString convId = source_.CurrentConversation();
  if (!messages_.Find(convId)) {
    messages_.Merge(convId, {});
    MergeStored(convId, kFirstPage);
  }
  messages_.Merge(convId, source_.TakeNewMessages(convId));
}

size_t MessageView::MergeStored(const WString& convId, int more) {
  int limit = static_cast<int>(messages_.Count(convId)) + more;
  std::vector<MessageStru> stored = source_.StoredMessages(convId, limit);
  return messages_.Merge(convId, std::vector<MessageStru>(stored.rbegin(), stored.rend()));
}

void MessageView::LoadFromStore(WPARAM more) {
  const WString convId = source_.CurrentConversation();
  if (MergeStored(convId, static_cast<int>(more)) > 0) ShowMsgs();
}

bool MessageView::FetchOlderPage() {
  const WString convId = source_.CurrentConversation();
  if (!messages_.Find(convId)) return false;
  if (MergeStored(convId, kOlderPage) > 0) {
    Post(platform::msg::kRefreshMessageView, kShowOlderPage);
  }
  return true;
}

}  // namespace ui::main
