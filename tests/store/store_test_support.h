#pragma once
// Shared by the store tests: scratch folders, a second connection to look at
// what a file holds, and message records to store.

#include <string>
#include <vector>

#include "records/message_records.h"

namespace store_test {

// A fresh empty folder under the test's scratch area.
std::string NewFolder();

// Rows of `sql` through a separate connection; NULL reads as "<null>".
using Rows = std::vector<std::vector<std::string>>;
Rows Select(const std::string& dbPath, const std::string& sql);
// Runs `sql` through a separate connection; false when it failed.
bool Exec(const std::string& dbPath, const std::string& sql);

std::string ReadFile(const std::string& path);
void WriteFile(const std::string& path, const std::string& bytes);

// A received message of conversation `convId` with one element.
MessageStru MessageWith(const WString& convId, uint64_t uniqueId, uint64_t serverTime,
                        ElemStru elem);
ElemStru TextElem(const WString& text);

}  // namespace store_test
