#pragma once
// Group changes of the embedded engine, for whoever keeps its own copy of
// the groups in step (the demo's and the tests' local host). Ids are the
// engine's: group ids and account ids as UTF-8 text.
//
// When: once per change, however it was made (the TIMGroup... functions of
// the signed-in account or EngineControl acting for anyone), in the order
// the changes happened. A request that changes nothing (refused, failed,
// queued failure, network down) reports nothing. Reset and Load replace the
// world and report nothing.
//
// Where: on the thread that made the change, after the engine's lock has
// been released and before that call returns. While another thread is
// delivering, that thread delivers the change and the call waits for it.
// Inside an observer call, the observer may call the engine again (also to
// change groups: that change is delivered right after the current call
// returns, on the same thread). The observer must not wait for the SDK's
// callback thread (TIMLogout, TIMUninit, or a result it waits for): the
// callback thread holds back the callbacks of a change (its tips and the
// request's result) until the observer has seen it, so that whoever reads
// the observer's copy from a tips callback reads it up to date.
#include <string>
#include <vector>

#include "imsdk/im_sdk.h"

namespace imsdk {

class IMSDK_API GroupObserver {
 public:
  virtual ~GroupObserver();
  // `members` includes the owner.
  virtual void OnGroupCreated(const std::string& group_id, const std::string& name,
                              const std::string& owner,
                              const std::vector<std::string>& members) = 0;
  virtual void OnMembersJoined(const std::string& group_id,
                               const std::vector<std::string>& members) = 0;
  // Members who quit or were removed.
  virtual void OnMembersLeft(const std::string& group_id,
                             const std::vector<std::string>& members) = 0;
  virtual void OnGroupRenamed(const std::string& group_id, const std::string& name) = 0;
  virtual void OnOwnerChanged(const std::string& group_id, const std::string& new_owner) = 0;
  virtual void OnGroupDismissed(const std::string& group_id) = 0;
};

}  // namespace imsdk
