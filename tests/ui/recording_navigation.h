#pragma once
// A ChatNavigator that records the panes' switches.

#include <cstdint>
#include <vector>

#include "ui/main/conversation_list_pane.h"

namespace ui::test {

struct RecordingNavigation : ui::main::ChatNavigator {
  struct Call {
    WString id;
    uint32_t type;
    int mode;
    bool operator==(const Call&) const = default;
  };
  std::vector<Call> calls;
  void UpdateCovnID(const WString& id, uint32_t type, int mode) override {
    calls.push_back({id, type, mode});
  }
};

}  // namespace ui::test
