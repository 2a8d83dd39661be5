// One headless QApplication for the module's window; the SDK's call log goes
// to a file of this process, read by the tests.
#include <gtest/gtest.h>

#include <QApplication>
#include <QFont>

#include <cstdlib>
#include <string>

extern "C" void __lsan_disable() __attribute__((weak));  // sanitizer builds only

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  setenv("IM_MODULE_DIR", IM_RESOURCE_ROOT, 1);  // DuiLibRes beside "the host's executable"
  const char* docs = std::getenv("IM_COMMON_DOCS_DIR");
  std::string log =
      std::string(docs ? docs : "/tmp") + "/sdk-calls-" + std::to_string(getpid()) + ".jsonl";
  setenv("IMSDK_CALL_LOG", log.c_str(), 1);
  QApplication app(argc, argv);
  QApplication::setFont(QFont(QStringLiteral("WenQuanYi Micro Hei"), 9));
  // Unloading the library unmaps what it made for the whole process, so the
  // leak checker can no longer tell whose it was; ui_main_tests, which links
  // the window code directly, checks its leaks.
  if (__lsan_disable != nullptr) __lsan_disable();
  int result = RUN_ALL_TESTS();
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  return result;
}
