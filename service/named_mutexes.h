#pragma once
// The module's twenty named mutexes, created once when the main window object
// is constructed (at library load) and kept for the life of the process.
// Only "RencentConvData" is ever locked; the others exist because other
// processes of the session may open them by name.

#include <string_view>
#include <vector>

#include "platform/named_mutex.h"

namespace service {

// The names in creation order ("NewMsgmap" twice: two handles, one mutex).
const std::vector<std::string_view>& ModuleMutexNames();

// Creates the twenty handles in order; later calls do nothing. The main
// window object's constructor calls this.
void CreateModuleMutexes();

// The handles in creation order (empty before CreateModuleMutexes).
const std::vector<platform::NamedMutex*>& ModuleMutexes();

// Guards the service object's recent-conversation list. Creates the module's
// mutexes first when that has not happened yet.
platform::NamedMutex& RecentConvDataMutex();

// Holds "RencentConvData" for a scope (waited on without time-out).
class RecentConvDataLock {
 public:
  RecentConvDataLock();
  ~RecentConvDataLock();
  RecentConvDataLock(const RecentConvDataLock&) = delete;
  RecentConvDataLock& operator=(const RecentConvDataLock&) = delete;
};

}  // namespace service
