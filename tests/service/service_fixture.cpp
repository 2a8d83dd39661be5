#include "tests/service/service_fixture.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "platform/folders.h"
#include "imsdk/im_sdk.h"
#include "platform/data_folders.h"
#include "service/current_conversation.h"
#include "service/module_counters.h"
#include "service/posting.h"
#include "store/chat_db.h"

namespace service_test {

void ServiceTest::SetUp() {
  // Tests of this binary run in parallel processes: each gets its own data
  // tree, so every test starts with an empty history. No SDK thread runs yet.
  const testing::TestInfo* test = testing::UnitTest::GetInstance()->current_test_info();
  std::string docs = testing::TempDir() + "service-" + test->test_suite_name() + "-" +
                     test->name() + "-" + std::to_string(getpid());
  std::filesystem::remove_all(docs);
  setenv("IM_COMMON_DOCS_DIR", docs.c_str(), 1);
  engine.Reset();
  for (const char* id : {"10001", "10002", "10003"}) {
    imsdk::AccountOptions options;
    options.nick = std::string("nick") + id;
    engine.CreateAccount(id, options);
  }
  engine.MakeFriends("10001", "10002");
  service::Counters().initialised.store(0);
  service::Counters().logged_in.store(0);
  service::ForgetCurrentConversation();
  tools = std::make_unique<CChatTools>();
  tools->AttachWindow(&window);
}

void ServiceTest::TearDown() {
  TIMUninit();
  for (const platform::WindowMessage& message : window.queue.TakeAll()) Handle(message, false);
  tools.reset();
  CChatDb::Instance().Close();
  service::ForgetCurrentConversation();
  unsetenv("IMSDK_CALL_LOG");
}

bool ServiceTest::SignIn(const std::string& userId, bool waitForLists) {
  WString id = platform::Utf8ToUtf16(userId);
  platform::DataFolders::Instance().Prepare(id);
  if (!service::SignIn(*tools, id, u"sig")) return false;
  if (!waitForLists) return true;
  return PumpUntil([this] {
    return CountEvents(kSdkEventConversationList) >= 1 &&
           CountEvents(kSdkEventFriendProfileList) >= 1;
  });
}

bool ServiceTest::PumpUntil(const std::function<bool()>& done, std::chrono::milliseconds timeout) {
  auto deadline = std::chrono::steady_clock::now() + timeout;
  while (!done()) {
    auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        deadline - std::chrono::steady_clock::now());
    if (left.count() <= 0) return false;
    if (auto message = window.queue.WaitFor(std::min(left, std::chrono::milliseconds(50)))) {
      Handle(*message, true);
    }
  }
  return true;
}

bool ServiceTest::PumpUntilEvent(uint32_t kind, size_t count) {
  return PumpUntil([this, kind, count] { return CountEvents(kind) >= count; });
}

void ServiceTest::DrainNow() {
  while (auto message = window.queue.Take()) Handle(*message, true);
}

void ServiceTest::Handle(const platform::WindowMessage& message, bool dispatch) {
  Seen seen;
  seen.msg = message.msg;
  namespace msg = platform::msg;
  switch (message.msg) {
    case msg::kSdkEvent: {
      auto record = service::AdoptPayload<SdkEventRecord>(message.wParam);
      seen.eventKind = record->kind;
      seen.text = record->text;
      seen_.push_back(seen);
      if (dispatch) tools->DispatchSdkEvent(*record);
      return;
    }
    case msg::kMessageListArrived: {
      auto text = service::AdoptPayload<std::string>(message.wParam);
      seen.text = *text;
      seen_.push_back(seen);
      if (dispatch) tools->OnMsgListArrived(std::move(text));
      return;
    }
    case msg::kFriendDeleted:
      seen.text = *service::AdoptPayload<std::string>(message.wParam);
      break;
    case msg::kConversationDatum:
    case msg::kConversationLogoChanged:
      if (message.wParam != 0) seen.first = *service::AdoptPayload<WString>(message.wParam);
      break;
    case msg::kConversationNameChanged:
      seen.first = *service::AdoptPayload<WString>(message.wParam);
      seen.second = *service::AdoptPayload<WString>(message.lParam);
      break;
    case msg::kDrawingSyncNotice:
      service::AdoptPayload<MessageStru>(message.wParam);
      break;
    case msg::kFriendRequestHandled:
      service::AdoptPayload<FriendRequestResult>(message.wParam);
      break;
    default:
      seen.wParam = message.wParam;
      break;
  }
  seen_.push_back(seen);
}

size_t ServiceTest::CountSeen(unsigned msg) const {
  size_t count = 0;
  for (const Seen& seen : seen_) count += seen.msg == msg ? 1 : 0;
  return count;
}

size_t ServiceTest::CountEvents(uint32_t kind) const {
  size_t count = 0;
  for (const Seen& seen : seen_) {
    count += (seen.msg == platform::msg::kSdkEvent && seen.eventKind == kind) ? 1 : 0;
  }
  return count;
}

std::vector<Seen> ServiceTest::SeenOf(unsigned msg) const {
  std::vector<Seen> out;
  for (const Seen& seen : seen_) {
    if (seen.msg == msg) out.push_back(seen);
  }
  return out;
}

}  // namespace service_test
