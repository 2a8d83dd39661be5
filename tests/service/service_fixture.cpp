#include "tests/service/service_fixture.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "imsdk/im_sdk.h"
#include "platform/data_folders.h"
#include "platform/module_workers.h"
#include "service/current_conversation.h"
#include "service/module_counters.h"
#include "service/posting.h"
#include "store/chat_db.h"

namespace service_test {

Json::Value ParseJsonText(const std::string& text) {
  Json::Value value;
  Json::CharReaderBuilder builder;
  std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
  std::string errors;
  reader->parse(text.data(), text.data() + text.size(), &value, &errors);
  return value;
}

std::vector<std::string> Keys(const Json::Value& object) {
  std::vector<std::string> keys = object.getMemberNames();
  std::sort(keys.begin(), keys.end());
  return keys;
}

std::string Joined(const std::vector<std::string>& texts) {
  std::string out;
  for (const std::string& text : texts) out += (out.empty() ? "" : " ") + text;
  return out;
}

SdkCallLog::SdkCallLog() {
  path_ = testing::TempDir() + "service_call_log_" +
          testing::UnitTest::GetInstance()->current_test_info()->name() + ".jsonl";
  std::filesystem::remove(path_);
  setenv("IMSDK_CALL_LOG", path_.c_str(), 1);
}

std::vector<Json::Value> SdkCallLog::Lines() const {
  std::vector<Json::Value> lines;
  std::ifstream in(path_);
  for (std::string line; std::getline(in, line);) lines.push_back(ParseJsonText(line));
  return lines;
}

std::vector<std::string> SdkCallLog::Calls() const {
  std::vector<std::string> names;
  for (const Json::Value& line : Lines()) {
    if (line.isMember("call")) names.push_back(line["call"].asString());
  }
  return names;
}

std::vector<Json::Value> SdkCallLog::CallsOf(const std::string& function) const {
  std::vector<Json::Value> found;
  for (const Json::Value& line : Lines()) {
    if (line["call"].asString() == function) found.push_back(line["params"]);
  }
  return found;
}

Json::Value SdkCallLog::Param(const Json::Value& params, const char* name) {
  const Json::Value& value = params[name];
  return value.isString() ? ParseJsonText(value.asString()) : value;
}

void ServiceTest::SetUp() {
  // Tests run in parallel processes: each gets its own data tree.
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
  TIMUninit();                                    // no callback runs after this
  platform::ModuleWorkers::Instance().StopAll();  // as unloading does
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
  return !waitForLists || PumpUntil([this] {
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

bool ServiceTest::HandlePushed(int sendResult) {
  const size_t before = CountEvents(kSdkEventNewMessages);
  if (sendResult != 0 || !PumpUntilEvent(kSdkEventNewMessages, before + 1)) return false;
  DrainNow();
  return true;
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
      auto record = service::AdoptPosted<msg::kSdkEvent>(message.wParam);
      seen.eventKind = record->value.kind;
      seen.text = record->value.text;
      seen_.push_back(seen);
      if (dispatch) tools->DispatchSdkEvent(record->value, record->session);
      return;
    }
    case msg::kMessageListArrived: {
      auto page = service::AdoptPosted<msg::kMessageListArrived>(message.wParam);
      seen.text = page->value;
      seen_.push_back(seen);
      if (dispatch) tools->OnMsgListArrived(std::move(page->value), page->session);
      return;
    }
    case msg::kFriendDeleted:
      seen.text = service::AdoptPosted<msg::kFriendDeleted>(message.wParam)->value;
      break;
    case msg::kConversationLogoChanged:
      seen.first = service::AdoptPosted<msg::kConversationLogoChanged>(message.wParam)->value;
      break;
    case msg::kConversationDatum:
      seen.first = service::AdoptPosted<msg::kConversationDatum>(message.wParam)->value;
      break;
    case msg::kConversationNameChanged:
      seen.first = service::AdoptPosted<msg::kConversationNameChanged>(message.wParam)->value;
      seen.second =
          service::AdoptPostedSecond<msg::kConversationNameChanged>(message.lParam)->value;
      break;
    default:
      if (!service::DropPosted(message.msg, message.wParam, message.lParam)) {
        seen.wParam = message.wParam;
      }
      break;
  }
  seen_.push_back(seen);
}

size_t ServiceTest::CountSeen(unsigned msg, std::optional<platform::WPARAM> wParam) const {
  return std::count_if(seen_.begin(), seen_.end(), [&](const Seen& seen) {
    return seen.msg == msg && (!wParam || seen.wParam == *wParam);
  });
}

size_t ServiceTest::CountEvents(uint32_t kind) const {
  return std::count_if(seen_.begin(), seen_.end(), [kind](const Seen& seen) {
    return seen.msg == platform::msg::kSdkEvent && seen.eventKind == kind;
  });
}

std::vector<Seen> ServiceTest::SeenOf(unsigned msg) const {
  std::vector<Seen> out;
  std::copy_if(seen_.begin(), seen_.end(), std::back_inserter(out),
               [msg](const Seen& seen) { return seen.msg == msg; });
  return out;
}

std::vector<MessageStru> ServiceTest::StoredRows(const WString& convId) {
  std::vector<MessageStru> rows;
  CChatDb::Instance().QueryCurrentConvMsg(convId, u"10001", 100, rows);
  return rows;
}

}  // namespace service_test
