#pragma once
// The embedded engine's call log for one test: the parameters the service
// passed to each SDK function.

#include <gtest/gtest.h>
#include <json/json.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace service_test {

inline Json::Value ParseJsonText(const std::string& text) {
  Json::Value value;
  Json::CharReaderBuilder builder;
  std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
  std::string errors;
  reader->parse(text.data(), text.data() + text.size(), &value, &errors);
  return value;
}

class SdkCallLog {
 public:
  SdkCallLog() {
    path_ = testing::TempDir() + "service_send_call_log_" +
            testing::UnitTest::GetInstance()->current_test_info()->name() + ".jsonl";
    std::filesystem::remove(path_);
    setenv("IMSDK_CALL_LOG", path_.c_str(), 1);
  }
  // The parameters of every call of `function`, in order.
  std::vector<Json::Value> CallsOf(const std::string& function) const {
    std::vector<Json::Value> found;
    std::ifstream in(path_);
    for (std::string line; std::getline(in, line);) {
      Json::Value entry = ParseJsonText(line);
      if (entry["call"].asString() == function) found.push_back(entry["params"]);
    }
    return found;
  }
  // A JSON parameter as the function got it (logged as text or as a value).
  static Json::Value Param(const Json::Value& params, const char* name) {
    const Json::Value& value = params[name];
    return value.isString() ? ParseJsonText(value.asString()) : value;
  }

 private:
  std::string path_;
};

// The member names of an object, sorted.
inline std::vector<std::string> Keys(const Json::Value& object) {
  std::vector<std::string> keys = object.getMemberNames();
  std::sort(keys.begin(), keys.end());
  return keys;
}

}  // namespace service_test
