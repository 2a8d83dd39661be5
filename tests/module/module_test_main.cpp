// One headless QApplication for the module's window; the SDK's call log goes
// to a file of this process, read by the tests.
#include <gtest/gtest.h>

#include <QApplication>
#include <QFont>

#include <cstdlib>
#include <filesystem>
#include <string>

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  setenv("IM_MODULE_DIR", IM_RESOURCE_ROOT, 1);  // DuiLibRes beside "the host's executable"
  const char* docs = std::getenv("IM_COMMON_DOCS_DIR");
  // The log's folder must exist before the first SDK call: a test that calls
  // the SDK before signing in would otherwise lose its first lines.
  std::string folder = docs ? docs : "/tmp";
  std::filesystem::create_directories(folder);
  std::string log = folder + "/sdk-calls-" + std::to_string(getpid()) + ".jsonl";
  setenv("IMSDK_CALL_LOG", log.c_str(), 1);
  QApplication app(argc, argv);
  QApplication::setFont(QFont(QStringLiteral("WenQuanYi Micro Hei"), 9));
  int result = RUN_ALL_TESTS();
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  return result;
}
