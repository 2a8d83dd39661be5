// Saving a history page and reading a conversation back, against the limit
// SQLite itself sets (one reused prepared statement).
#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <unistd.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "records/message_records.h"
#include "store/chat_db.h"
#include "store/hex_text.h"
#include "store/message_codec.h"

namespace {

namespace fs = std::filesystem;

// A scratch folder removed when the process ends.
class ScratchFolder {
 public:
  explicit ScratchFolder(const std::string& name)
      : path_(fs::temp_directory_path() /
              ("im-store-bench-" + name + "-" + std::to_string(::getpid()))) {
    fs::remove_all(path_);
    fs::create_directories(path_);
  }
  ~ScratchFolder() { fs::remove_all(path_); }
  std::string File(const std::string& name) const { return (path_ / name).string(); }

 private:
  fs::path path_;
};

MessageStru ReceivedText(const WString& conv, uint64_t uniqueId, uint64_t serverTime) {
  MessageStru message;
  message.conv_id = conv;
  message.conv_type = 1;
  message.sender = conv;
  message.server_time = serverTime;
  message.platform = 1;
  message.status = 2;
  message.unique_id = uniqueId;
  message.sender_profile = {u"\u5F20\u4E09 Zhang", u"https://faces.example.com/u/12345.png"};
  ElemStru elem;
  elem.conv_id = conv;
  elem.elem_type = kElemText;
  elem.text = u"Message " + platform::W(std::to_string(uniqueId)) +
              u": \u4ECA\u5929\u7684\u56FE\u7EB8\u6539\u597D\u4E86 [smile]";
  message.elems.push_back(std::move(elem));
  return message;
}

std::vector<MessageStru> Page(size_t count, uint64_t firstId) {
  std::vector<MessageStru> page;
  page.reserve(count);
  for (size_t i = 0; i < count; ++i) {
    page.push_back(
        ReceivedText(u"peer" + platform::W(std::to_string(i % 50)), firstId + i, 1700000000 + i));
  }
  return page;
}

std::string FreshStore(const ScratchFolder& folder, int round) {
  std::string path = folder.File("Chat" + std::to_string(round) + ".db");
  fs::remove(path);
  fs::remove(path + "-journal");
  CChatDb db;
  db.Open(path);
  db.CreateSchema();
  return path;
}

void BM_StoreSaveBatch(benchmark::State& state) {
  ScratchFolder folder("save");
  const std::vector<MessageStru> page = Page(static_cast<size_t>(state.range(0)), 1);
  int round = 0;
  for (auto _ : state) {
    state.PauseTiming();
    std::string path = FreshStore(folder, round++);
    CChatDb db;
    db.Open(path);
    state.ResumeTiming();
    db.SaveMessageList(u"me", page);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_StoreSaveBatch)->Arg(10000)->Unit(benchmark::kMillisecond);

// The same rows, values already encoded, through one prepared statement.
void BM_SqliteBaselinePrepared(benchmark::State& state) {
  ScratchFolder folder("baseline");
  const std::vector<MessageStru> page = Page(static_cast<size_t>(state.range(0)), 1);
  struct Row {
    std::string conv, nick, face, info1;
    const MessageStru* message;
  };
  std::vector<Row> rows;
  for (const MessageStru& m : page) {
    rows.push_back({platform::Utf16ToUtf8(m.conv_id),
                    store::EncodeHexText(m.sender_profile.nick_name),
                    store::EncodeHexText(m.sender_profile.face_url),
                    store::EncodeHexText(m.elems[0].text), &m});
  }
  const char* sql =
      "insert into MessageTbl(loginUserId,kTIMMsgConvId,kTIMMsgConvType,kTIMMsgServerTime,"
      "kTIMMsgIsFormSelf,kTIMMsgStatus,kTIMMsgUniqueId,kTIMUserProfileNickName,"
      "kTIMUserProfileFaceUrl,kTIMMsgPlatform,kTIMElemType,info1) "
      "values(?,?,?,?,?,?,?,?,?,?,?,?);";
  int round = 0;
  for (auto _ : state) {
    state.PauseTiming();
    std::string path = FreshStore(folder, round++);
    sqlite3* db = nullptr;
    sqlite3_open_v2(path.c_str(), &db, CChatDb::kOpenFlags, nullptr);
    state.ResumeTiming();
    sqlite3_stmt* insert = nullptr;
    sqlite3_prepare_v2(db, sql, -1, &insert, nullptr);
    sqlite3_exec(db, "BEGIN TRANSACTION;", nullptr, nullptr, nullptr);
    for (const Row& row : rows) {
      const MessageStru& m = *row.message;
      sqlite3_bind_text(insert, 1, "me", 2, SQLITE_STATIC);
      sqlite3_bind_text(insert, 2, row.conv.data(), static_cast<int>(row.conv.size()),
                        SQLITE_STATIC);
      sqlite3_bind_int64(insert, 3, m.conv_type);
      sqlite3_bind_int64(insert, 4, static_cast<sqlite3_int64>(m.server_time));
      sqlite3_bind_int64(insert, 5, m.is_from_self);
      sqlite3_bind_int64(insert, 6, m.status);
      sqlite3_bind_int64(insert, 7, static_cast<sqlite3_int64>(m.unique_id));
      sqlite3_bind_text(insert, 8, row.nick.data(), static_cast<int>(row.nick.size()),
                        SQLITE_STATIC);
      sqlite3_bind_text(insert, 9, row.face.data(), static_cast<int>(row.face.size()),
                        SQLITE_STATIC);
      sqlite3_bind_int64(insert, 10, m.platform);
      sqlite3_bind_int64(insert, 11, kElemText);
      sqlite3_bind_text(insert, 12, row.info1.data(), static_cast<int>(row.info1.size()),
                        SQLITE_STATIC);
      sqlite3_step(insert);
      sqlite3_reset(insert);
    }
    sqlite3_exec(db, "COMMIT TRANSACTION;", nullptr, nullptr, nullptr);
    sqlite3_finalize(insert);
    state.PauseTiming();
    sqlite3_close_v2(db);
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_SqliteBaselinePrepared)->Arg(10000)->Unit(benchmark::kMillisecond);

constexpr int kConversations = 1000;

// 1,000,000 rows: 1,000 conversations, two login users, built once.
const std::string& LargeStore(const ScratchFolder& folder, size_t rows) {
  static std::string path;
  if (!path.empty()) return path;
  path = folder.File("Large.db");
  CChatDb db;
  db.Open(path);
  db.CreateSchema();
  constexpr size_t kChunk = 50000;
  for (size_t first = 0; first < rows; first += kChunk) {
    for (const WString login : {u"alice", u"bob"}) {
      std::vector<MessageStru> chunk;
      for (size_t i = first; i < first + kChunk / 2 && i < rows; ++i) {
        uint64_t id = login == u"alice" ? 2 * i + 1 : 2 * i + 2;
        chunk.push_back(ReceivedText(u"conv" + platform::W(std::to_string(i % kConversations)), id,
                                     1600000000 + i));
      }
      db.SaveMessageList(login, chunk);
    }
  }
  return path;
}

void BM_QueryConversation(benchmark::State& state) {
  static ScratchFolder folder("query");
  const std::string& path = LargeStore(folder, static_cast<size_t>(state.range(0)));
  CChatDb db;
  db.Open(path);
  db.CreateSchema();
  int conv = 0;
  size_t rows = 0;
  for (auto _ : state) {
    std::vector<MessageStru> messages;
    db.QueryCurrentConvMsg(u"conv" + platform::W(std::to_string(conv)),
                           conv % 2 ? u"bob" : u"alice", 100, messages);
    rows += messages.size();
    conv = (conv + 37) % kConversations;
  }
  state.counters["rows_per_query"] =
      benchmark::Counter(static_cast<double>(rows) / static_cast<double>(state.iterations()));
}
BENCHMARK(BM_QueryConversation)->Arg(1000000)->Unit(benchmark::kMillisecond);

}  // namespace
