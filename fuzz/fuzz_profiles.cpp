// Profile and friend lists, and friend-request pages.
#include "fuzz/fuzz_input.h"
#include "records/profile_parser.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text = fuzz::AsText(data, size);
  std::vector<UserProfile> profiles;
  std::vector<FriendsList_Stru> friends;
  records::ParseUserProfileArray(text, profiles);
  records::ParseFriendArray(text, friends);
  size_t total = profiles.size();
  for (const FriendsList_Stru& f : friends) total += f.group_names.size() + f.custom_strings.size();
  fuzz::ForRootAndEntries(text, [&](const Json::Value& value) {
    PendencyPage page;
    records::ParsePendencyPage(value, page);
    FriendAddPendency pendency;
    records::ParseFriendAddPendency(value, pendency);
    total += page.pendencies.size() + pendency.identifier.size();
  });
  fuzz::Keep(total);
  return 0;
}
