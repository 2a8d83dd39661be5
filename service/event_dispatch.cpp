#include "platform/trace.h"
#include "service/chat_tools.h"

void CChatTools::DispatchSdkEvent(SdkEventRecord& record, service::SessionStamp session) {
  if (!session_.IsCurrent(session)) {
    platform::Trace("DispatchSdkEvent: record of kind %u belongs to an ended session, dropped",
                    record.kind);
    return;
  }
  switch (record.kind) {
    case kSdkEventFriendAddRequest:
      OnFriendAddRequest(record, session);
      break;
    case kSdkEventNewMessages:
      OnRecvNewMsg(&record, session);
      // New messages change the rows' previews, times and unread dots: the
      // window redraws the conversation list after this record.
      record.recent_list_flag = 1;
      break;
    case kSdkEventFriendProfileList:
      UpdateFriendList(record.text, session);  // posts 3183
      break;
    case kSdkEventConversationList:
      DealConvList(record.text, session);
      break;
    default:
      platform::Trace("DispatchSdkEvent: record of kind %u ignored", record.kind);
      break;
  }
}
