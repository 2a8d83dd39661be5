#include "platform/trace.h"
#include "service/chat_tools.h"

void CChatTools::DispatchSdkEvent(SdkEventRecord& record) {
  switch (record.kind) {
    case kSdkEventFriendAddRequest:
      OnFriendAddRequest(record);
      break;
    case kSdkEventNewMessages:
      OnRecvNewMsg(&record);
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
