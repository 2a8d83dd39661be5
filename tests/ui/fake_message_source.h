#pragma once
// A message view source held in memory, recording what the view asks.

#include <functional>
#include <map>
#include <vector>

#include "service/panes/message_view_source.h"

namespace ui::test {

class FakeMessageSource : public service::MessageViewSource {
 public:
  struct DownloadCall {
    std::string param;
    WString path;
    uint64_t key;
  };
  WString convId = u"c2c_10002";
  uint32_t convType = 1;
  std::map<WString, WString> friends;
  std::vector<MessageStru> newMessages;
  std::vector<MessageStru> stored;  // oldest first
  std::vector<DownloadCall> downloads;
  std::map<uint64_t, DownloadState> transfers;
  std::map<uint32_t, MessageStru> sent;
  std::map<uint32_t, UploadProgress> uploads;
  int readReports = 0;
  // What opening a drawing does; the path each asked for is recorded.
  std::function<service::drawings::DrawingOpenStep(MessageStru&, host::UserPrompt&)> drawingOpen;
  std::vector<WString> drawingsOpened;

  WString CurrentConversation() const override { return convId; }
  uint32_t CurrentConversationType() const override { return convType; }
  WString SelfId() const override { return u"10001"; }
  WString SelfName() const override { return u"张明"; }
  std::optional<WString> FriendName(const WString& id) const override {
    auto it = friends.find(id);
    if (it == friends.end()) return std::nullopt;
    return it->second;
  }
  std::vector<MessageStru> TakeNewMessages(const WString&) override {
    return std::exchange(newMessages, {});
  }
  std::vector<MessageStru> StoredMessages(const WString&, int limit) override {
    std::vector<MessageStru> newestFirst(stored.rbegin(), stored.rend());
    if (static_cast<int>(newestFirst.size()) > limit)
      newestFirst.resize(static_cast<size_t>(limit));
    return newestFirst;
  }
  void ReportRead(const WString&, uint32_t) override { ++readReports; }
  void Download(const std::string& param, const WString& path, uint64_t key) override {
    downloads.push_back({param, path, key});
  }
  std::optional<DownloadState> Transfer(uint64_t key) const override {
    auto it = transfers.find(key);
    if (it == transfers.end()) return std::nullopt;
    return it->second;
  }
  WString DownloadFolder() const override { return u"/nonexistent/recv"; }
  std::optional<MessageStru> SentMessage(uint32_t localId) const override {
    auto it = sent.find(localId);
    if (it == sent.end()) return std::nullopt;
    return it->second;
  }
  std::optional<UploadProgress> Upload(uint32_t localId) const override {
    auto it = uploads.find(localId);
    if (it == uploads.end()) return std::nullopt;
    return it->second;
  }
  service::drawings::DrawingOpenStep OpenDrawing(MessageStru& message,
                                                 host::UserPrompt& prompt) override {
    drawingsOpened.push_back(message.elems.empty() ? WString() : message.elems[0].drawing.filePath);
    if (!drawingOpen) return service::drawings::DrawingOpenStep::kOpened;
    return drawingOpen(message, prompt);
  }
};

}  // namespace ui::test
