#pragma once
// What the group list needs of the service: the joined groups, their
// pictures and whether the signed-in user owns one.

#include <memory>
#include <vector>

#include "platform/strings.h"
#include "service/service_records.h"

class CChatTools;

namespace service {

class GroupListSource {
 public:
  virtual ~GroupListSource() = default;
  // In the service's order.
  virtual std::vector<GroupInfo> Groups() const = 0;
  // A cached face file, or the default picture while there is none.
  virtual WString FaceImage(const WString& groupId) = 0;
  virtual bool IsOwnedByUser(const GroupInfo& group) const = 0;
};

std::unique_ptr<GroupListSource> MakeGroupListSource(CChatTools& tools);

}  // namespace service
