// Group-tip events and member lists.
#include "fuzz/fuzz_input.h"
#include "records/group_parser.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text = fuzz::AsText(data, size);
  std::vector<GroupMemberInfo_Stru> members;
  records::ParseGroupMemberArray(text, members);
  size_t total = members.size();
  fuzz::ForRootAndEntries(text, [&](const Json::Value& value) {
    GroupTipsEvent event;
    records::ParseGroupTipsEvent(value, event);
    total += event.users.size() + event.group_changes.size() + event.changed_members.size();
  });
  fuzz::Keep(total);
  return 0;
}
