// The conversation list as the SDK reports it.
#include "fuzz/fuzz_input.h"
#include "records/conversation_parser.h"
#include "records/message_summary.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::vector<ConversationInfo_Stru> conversations;
  records::ParseConversationArray(fuzz::AsText(data, size), conversations);
  size_t total = 0;
  for (const ConversationInfo_Stru& c : conversations) {
    total += c.conv_id.size() + c.owner.size();
    for (const ElemStru& elem : c.last_msg.elems) total += MessageSummaryText(elem).size();
  }
  fuzz::Keep(total);
  return 0;
}
