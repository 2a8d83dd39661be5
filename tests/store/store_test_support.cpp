#include "tests/store/store_test_support.h"

#include <sqlite3.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

namespace store_test {

std::string NewFolder() {
  static std::atomic<int> counter{0};
  const char* base = std::getenv("IM_COMMON_DOCS_DIR");
  std::filesystem::path root = base ? base : std::filesystem::temp_directory_path().string();
  const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
  std::string name = info ? std::string(info->test_suite_name()) + "." + info->name() : "store";
  for (char& c : name) {
    if (c == '/') c = '_';
  }
  std::filesystem::path folder = root / "store" / (name + "." + std::to_string(counter++));
  std::filesystem::remove_all(folder);
  std::filesystem::create_directories(folder);
  return folder.string();
}

Rows Select(const std::string& dbPath, const std::string& sql) {
  Rows rows;
  sqlite3* db = nullptr;
  if (sqlite3_open_v2(dbPath.c_str(), &db, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK) {
    ADD_FAILURE() << "cannot open " << dbPath;
    sqlite3_close(db);
    return rows;
  }
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v2(db, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK) {
    ADD_FAILURE() << sql << ": " << sqlite3_errmsg(db);
  } else {
    while (sqlite3_step(statement) == SQLITE_ROW) {
      std::vector<std::string> row;
      for (int i = 0; i < sqlite3_column_count(statement); ++i) {
        const unsigned char* text = sqlite3_column_text(statement, i);
        row.push_back(text ? reinterpret_cast<const char*>(text) : "<null>");
      }
      rows.push_back(std::move(row));
    }
  }
  sqlite3_finalize(statement);
  sqlite3_close(db);
  return rows;
}

bool Exec(const std::string& dbPath, const std::string& sql) {
  sqlite3* db = nullptr;
  bool ok = sqlite3_open(dbPath.c_str(), &db) == SQLITE_OK &&
            sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
  sqlite3_close(db);
  return ok;
}

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return bytes.str();
}

void WriteFile(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

MessageStru MessageWith(const WString& convId, uint64_t uniqueId, uint64_t serverTime,
                        ElemStru elem) {
  MessageStru message;
  message.conv_id = convId;
  message.conv_type = 1;
  message.sender = u"peer";
  message.server_time = serverTime;
  message.platform = 3;
  message.status = 2;
  message.unique_id = uniqueId;
  message.sender_profile = {u"Nick", u"http://face/1.png"};
  elem.conv_id = convId;
  elem.platform = message.platform;
  message.elems.push_back(std::move(elem));
  return message;
}

ElemStru TextElem(const WString& text) {
  ElemStru elem;
  elem.elem_type = kElemText;
  elem.text = text;
  return elem;
}

}  // namespace store_test
