#pragma once
// What the friend request list needs of the service: the requests with
// their accepted flags, the requesters' names and pictures, accepting one,
// and reporting the list read.

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/strings.h"
#include "service/service_records.h"

class CChatTools;

namespace service {

class RequestListSource {
 public:
  virtual ~RequestListSource() = default;
  // Pending and accepted requests, in the service's order.
  virtual std::vector<PendingFriendRequest> Requests() const = 0;
  // The requester's nickname, else the id.
  virtual WString RequesterName(const WString& id) const = 0;
  virtual WString FaceImage(const WString& id) = 0;
  // Accepts the request of `id`; true when the SDK took the answer (3167
  // follows).
  virtual bool Accept(const WString& id) = 0;
  // The list was opened at `seconds`: requests until then are read.
  virtual void ReportRead(uint64_t seconds) = 0;
  // Asks for the requests again (3186 follows).
  virtual void Refresh() = 0;
};

std::unique_ptr<RequestListSource> MakeRequestListSource(CChatTools& tools);

}  // namespace service
