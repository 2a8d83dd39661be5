// The SDK thread saves while the window thread queries: the store's own lock
// keeps the mutex-less connection to one statement at a time (run under TSan).
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "store/chat_db.h"
#include "tests/store/store_test_support.h"

namespace {

using store_test::MessageWith;
using store_test::TextElem;

TEST(ChatDbThreads, InsertsOnOneThreadWhileAnotherQueries) {
  CChatDb db;
  std::string path = store_test::OpenFresh(db);
  constexpr int kMessages = 300;
  std::atomic<bool> done{false};
  std::thread sdk([&] {
    for (int i = 1; i <= kMessages; ++i) {
      MessageStru message = MessageWith(u"c", i, i, TextElem(u"text"));
      i % 3 ? db.SaveMessage(u"me", message) : db.SaveMessageList(u"me", {message});
    }
    done = true;
  });
  size_t lastSeen = 0;
  bool ok = true;
  for (int queries = 0; !done || queries == 0; ++queries) {
    std::vector<MessageStru> read;
    ok = ok && db.QueryCurrentConvMsg(u"c", u"me", kMessages + 10, read);
    // Rows only ever accumulate, and every row read is whole.
    ok = ok && read.size() >= lastSeen;
    for (const MessageStru& m : read) ok = ok && m.elems.size() == 1 && m.elems[0].text == u"text";
    lastSeen = read.size();
  }
  sdk.join();
  EXPECT_TRUE(ok);
  std::vector<MessageStru> all;
  ASSERT_TRUE(db.QueryCurrentConvMsg(u"c", u"me", kMessages + 10, all));
  EXPECT_EQ(all.size(), static_cast<size_t>(kMessages));
}

TEST(ChatDbThreads, CloseAndReopenWhileOthersUseTheStore) {
  CChatDb db;
  std::string path = store_test::OpenFresh(db);
  std::atomic<bool> stop{false};
  std::thread user([&] {
    for (uint64_t id = 1; !stop; ++id) {
      db.SaveMessageList(u"me", {MessageWith(u"c", id, id, TextElem(u"x"))});
      std::vector<MessageStru> read;
      db.QueryCurrentConvMsg(u"c", u"me", 5, read);
    }
  });
  for (int login = 0; login < 20; ++login) {
    db.Close();
    ASSERT_TRUE(db.Open(path));
    db.CreateSchema();
  }
  stop = true;
  user.join();
  EXPECT_TRUE(db.IsOpen());
}

}  // namespace
