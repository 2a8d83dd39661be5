#include "service/named_mutexes.h"

#include <memory>
#include <mutex>

namespace service {
namespace {

struct MutexTable {
  std::once_flag created;
  std::vector<std::unique_ptr<platform::NamedMutex>> owned;
  std::vector<platform::NamedMutex*> handles;
};

MutexTable& Table() {
  // Never destroyed: the handles live as long as the process.
  static auto* table = new MutexTable;
  return *table;
}

}  // namespace

const std::vector<std::string_view>& ModuleMutexNames() {
  static const std::vector<std::string_view> names = {"MsgConvSet",
                                                      "GroupMemberData",
                                                      "FriendRequireData",
                                                      "FriendsData",
                                                      "GroupData",
                                                      "RencentConvData",
                                                      "NewMsgmap",
                                                      "NewMsgmap",
                                                      "UserProfile",
                                                      "CreateConvID",
                                                      "Log",
                                                      "DownLoadFile",
                                                      "A1Mu",
                                                      "A2Mu",
                                                      "ConvListMutex",
                                                      "ShowMsgMutex",
                                                      "UpdateRencentConvListMutex",
                                                      "UpdateFriendListMutex",
                                                      "UpdateGroupListMutex",
                                                      "DisplayFriendRequireListMutex"};
  return names;
}

void CreateModuleMutexes() {
  MutexTable& table = Table();
  std::call_once(table.created, [&table] {
    for (std::string_view name : ModuleMutexNames()) {
      table.owned.push_back(platform::NamedMutex::Create(name));
      table.handles.push_back(table.owned.back().get());
    }
  });
}

const std::vector<platform::NamedMutex*>& ModuleMutexes() {
  return Table().handles;
}

platform::NamedMutex& RecentConvDataMutex() {
  CreateModuleMutexes();
  return *Table().handles[5];
}

RecentConvDataLock::RecentConvDataLock() {
  RecentConvDataMutex().Wait();
}
RecentConvDataLock::~RecentConvDataLock() {
  RecentConvDataMutex().Release();
}

}  // namespace service
