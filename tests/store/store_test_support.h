#pragma once
// Shared by the store tests: scratch folders, a second connection to look at
// what a file holds, and message records to store.

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "records/message_records.h"
#include "store/chat_db.h"

namespace store_test {

// A fresh empty folder, named after the test: ctest runs tests side by side.
inline std::string NewFolder() {
  static std::atomic<int> counter{0};
  const char* base = std::getenv("IM_COMMON_DOCS_DIR");
  const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
  std::string name =
      std::string(test->test_suite_name()) + "." + test->name() + "." + std::to_string(counter++);
  std::ranges::replace(name, '/', '_');
  auto folder = std::filesystem::path(base ? base : "/tmp") / "store" / name;
  std::filesystem::remove_all(folder);
  std::filesystem::create_directories(folder);
  return folder.string();
}

inline std::string OpenFresh(CChatDb& db) {
  std::string path = NewFolder() + "/Chat.db";
  EXPECT_TRUE(db.Open(path));
  db.CreateSchema();
  return path;
}

// Rows of `sql` through a separate connection; NULL reads as "<null>".
using Rows = std::vector<std::vector<std::string>>;
inline Rows Select(const std::string& dbPath, const std::string& sql) {
  Rows rows;
  sqlite3* db = nullptr;
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_open_v2(dbPath.c_str(), &db, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK ||
      sqlite3_prepare_v2(db, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK) {
    ADD_FAILURE() << dbPath << ": " << sql << ": " << sqlite3_errmsg(db);
  }
  while (statement != nullptr && sqlite3_step(statement) == SQLITE_ROW) {
    rows.emplace_back();
    for (int i = 0; i < sqlite3_column_count(statement); ++i) {
      const unsigned char* text = sqlite3_column_text(statement, i);
      rows.back().push_back(text ? reinterpret_cast<const char*>(text) : "<null>");
    }
  }
  sqlite3_finalize(statement);
  sqlite3_close(db);
  return rows;
}

// Runs `sql` through a separate connection; false when it failed.
inline bool Exec(const std::string& dbPath, const std::string& sql) {
  sqlite3* db = nullptr;
  bool ok = sqlite3_open(dbPath.c_str(), &db) == SQLITE_OK &&
            sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
  sqlite3_close(db);
  return ok;
}

inline std::string ReadFile(const std::string& path) {
  std::ostringstream bytes;
  bytes << std::ifstream(path, std::ios::binary).rdbuf();
  return bytes.str();
}

inline void WriteFile(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

inline ElemStru TextElem(const WString& text) {
  ElemStru elem;
  elem.text = text;
  return elem;
}

// A received message of conversation `convId` with one element, holding every
// field a stored row gives back.
inline MessageStru MessageWith(const WString& convId, uint64_t uniqueId, uint64_t serverTime,
                               ElemStru elem) {
  MessageStru message;
  message.conv_id = elem.conv_id = convId;
  message.conv_type = 1;
  message.server_time = serverTime;
  message.platform = elem.platform = 3;
  message.status = 2;
  message.unique_id = uniqueId;
  message.sender_profile = {u"Nick", u"http://face/1.png"};
  message.elems.push_back(std::move(elem));
  return message;
}

}  // namespace store_test
