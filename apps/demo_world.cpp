#include "apps/demo_world.h"

#include <chrono>

#include "imsdk/engine_control.h"
#include "platform/strings.h"

namespace demo {
namespace {

struct Person {
  const char* id;
  const char* nick;
};
constexpr Person kPeople[] = {
    {kUser, "张明"}, {kAnswering, "王工"}, {kQuiet, "李工"}, {kStranger, "赵工"}};

WString Wide(const std::string& s) {
  return platform::Utf8ToUtf16(s);
}

}  // namespace

World SeedWorld(host::local::LocalHost& host) {
  imsdk::EngineControl& engine = imsdk::EngineControl::Instance();
  engine.Reset();
  for (const Person& person : kPeople) {
    imsdk::AccountOptions options;
    options.nick = person.nick;
    engine.CreateAccount(person.id, options);
    host::local::LocalAccount account;
    account.id = std::stoi(person.id);
    account.displayName = Wide(person.nick);
    account.email = Wide(std::string(person.id) + "@example.com");
    host.AddAccount(account);
  }
  engine.MakeFriends(kUser, kAnswering);
  engine.MakeFriends(kUser, kQuiet);
  host.MakeFriends(std::stoi(kUser), std::stoi(kAnswering));
  host.MakeFriends(std::stoi(kUser), std::stoi(kQuiet));
  engine.SetAutoReply(kAnswering, kReplyDelayMs, kReplyPrefix);

  World world;
  const std::string groupName = "图纸评审组";
  world.groupId = engine.CreateGroup(kAnswering, groupName, {kUser, kQuiet});
  engine.SendText(kAnswering, kTIMConv_Group, world.groupId, "大家好，今天评审一层平面图。");
  engine.SendText(kQuiet, kTIMConv_Group, world.groupId, "收到，我把标注改好了。");

  engine.RequestFriend(kStranger, kUser, "我是赵工，想加您为好友", "账号查找");
  host.SignIn(std::stoi(kUser));
  return world;
}

uint64_t PayloadTimeNow() {
  using namespace std::chrono;
  return static_cast<uint64_t>(
      duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count());
}

}  // namespace demo
