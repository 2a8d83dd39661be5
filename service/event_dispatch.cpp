#include "platform/trace.h"
#include "service/chat_tools.h"

void CChatTools::DispatchSdkEvent(SdkEventRecord& record) {
  switch (record.kind) {
    case kSdkEventFriendAddRequest:
      OnFriendAddRequest(record);
      break;
    case kSdkEventNewMessages:
      OnRecvNewMsg(&record);
      // New messages change the rows' previews, times and unread dots: the
      // window redraws the conversation list after this record.
      record.recent_list_flag = 1;
      break;
    case kSdkEventFriendProfileList:
      UpdateFriendList(record.text);  // posts 3183
      break;
    case kSdkEventConversationList:
      DealConvListFunc(std::string(record.text));
      break;
    default:
      platform::Trace("DispatchSdkEvent: record of kind %u ignored", record.kind);
      break;
  }
}
