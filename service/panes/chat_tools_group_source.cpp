// The group windows' source over CChatTools and the host.
#include <algorithm>

#include "host/account_id.h"
#include "service/chat_tools.h"
#include "service/conversation_faces.h"
#include "service/group_operations.h"
#include "service/panes/group_source.h"

namespace service {
namespace {

CloudMemberList CloudMembersOf(const std::vector<GroupPerson>& people) {
  CloudMemberList members;
  for (const GroupPerson& person : people) {
    CloudGroupMember member;
    member.accountId = person.accountId;
    member.imUserId = person.id;
    member.displayName = person.name;
    members.push_back(std::move(member));
  }
  return members;
}

class ChatToolsGroupSource final : public GroupSource {
 public:
  explicit ChatToolsGroupSource(CChatTools& tools) : tools_(tools), operations_(tools) {}

  host::UserPrompt& Prompt() override { return tools_.Window(); }
  WString UserId() const override { return tools_.UserId(); }

  std::vector<GroupPerson> Friends() override {
    std::vector<GroupPerson> people;
    for (const FriendsList_Stru& friendRecord : tools_.Friends()) {
      people.push_back(PersonOf(friendRecord));
    }
    return people;
  }

  std::optional<GroupPerson> FindFriend(const WString& id) override {
    std::optional<FriendsList_Stru> found = tools_.FindFriend(id);
    if (!found) return std::nullopt;
    return PersonOf(*found);
  }

  PersonCard CardOf(const WString& id) override {
    PersonCard card;
    card.isUser = id == tools_.UserId();
    std::optional<FriendsList_Stru> friendRecord = tools_.FindFriend(id);
    if (friendRecord) {
      card.person = PersonOf(*friendRecord);
      card.isFriend = true;
      card.remark = friendRecord->remark;
      card.signature = friendRecord->profile.self_signature;
      return card;
    }
    ConversationFace face = LookUpConversationFace(tools_, 1, id);
    card.person.id = id;
    card.person.accountId = host::AccountIdOfImUser(id).value_or(-1);
    card.person.name = face.name.empty() ? tools_.PersonName(id) : face.name;
    card.person.picture = tools_.FacePathFor(face.faceUrl, face.defaultImage, id);
    if (std::optional<UserProfile> profile = tools_.FindProfile(id)) {
      card.signature = profile->self_signature;
    }
    return card;
  }

  host::GroupLookup LookUpGroup(const WString& groupId, host::GroupQueryWording wording) override {
    return operations_.LookUp(groupId, "GroupFunction::GetGroupMemList  error ", wording);
  }

  std::optional<GroupSummary> Summary(const WString& groupId) const override {
    return tools_.Roster().Summary(groupId);
  }

  std::vector<GroupPerson> Members(const WString& groupId) override {
    std::vector<GroupPerson> people;
    for (const CloudGroupMember& member : tools_.Roster().CloudMembers(groupId)) {
      GroupPerson person;
      person.id = member.imUserId;
      person.accountId = member.accountId;
      // The user's own name for a friend (the remark) wins over the host's.
      std::optional<FriendsList_Stru> friendRecord = tools_.FindFriend(member.imUserId);
      WString friendName = friendRecord ? CChatTools::FriendDisplayName(*friendRecord) : WString();
      person.name = !friendName.empty()           ? friendName
                    : !member.displayName.empty() ? member.displayName
                                                  : tools_.PersonName(member.imUserId);
      person.picture = tools_.FacePathFor(member.avatarUrl, kPersonDefaultImage, member.imUserId);
      person.owner = member.role == kHostRoleOwner;
      people.push_back(std::move(person));
    }
    // The owner first, the others in the host's order.
    std::stable_partition(people.begin(), people.end(),
                          [](const GroupPerson& person) { return person.owner; });
    return people;
  }

  bool CreateGroup(const WString& name, const std::vector<GroupPerson>& people) override {
    return operations_.Create(name, CloudMembersOf(people));
  }
  host::GroupActionResult AddMembers(const WString& groupId,
                                     const std::vector<GroupPerson>& people) override {
    return operations_.AddMembers(groupId, CloudMembersOf(people));
  }
  host::GroupActionResult RemoveMembers(const WString& groupId,
                                        const std::vector<GroupPerson>& people) override {
    return operations_.RemoveMembers(groupId, CloudMembersOf(people));
  }
  host::GroupActionResult Rename(const WString& groupId, const WString& name) override {
    return operations_.Rename(groupId, name);
  }
  host::GroupActionResult Leave(const WString& groupId) override {
    return operations_.Leave(groupId);
  }
  host::GroupActionResult Disband(const WString& groupId) override {
    return operations_.Disband(groupId);
  }
  host::OwnerTransferResult TransferOwner(const WString& groupId,
                                          const GroupPerson& newOwner) override {
    return operations_.TransferOwner(groupId, CloudMembersOf({newOwner}).front());
  }

  int RequestFriend(const WString& id) override {
    return tools_.AddFriend(id, u"群成员", u"加好友");
  }

 private:
  GroupPerson PersonOf(const FriendsList_Stru& friendRecord) {
    GroupPerson person;
    person.id = friendRecord.identifier;
    person.accountId = host::AccountIdOfImUser(person.id).value_or(-1);
    person.name = CChatTools::FriendDisplayName(friendRecord);
    if (person.name.empty()) person.name = person.id;
    person.picture =
        tools_.FacePathFor(friendRecord.profile.face_url, kPersonDefaultImage, person.id);
    return person;
  }

  CChatTools& tools_;
  GroupOperations operations_;
};

}  // namespace

std::unique_ptr<GroupSource> MakeGroupSource(CChatTools& tools) {
  return std::make_unique<ChatToolsGroupSource>(tools);
}

}  // namespace service
