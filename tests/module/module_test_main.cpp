// One QApplication for the binary (the module's window lives in it), made
// after GoogleTest has taken its flags; headless unless a platform was chosen.
// The SDK's call log goes to a file of this process, read by the tests.
#include <gtest/gtest.h>

#include <QApplication>
#include <QFont>

#include <cstdlib>
#include <string>

// Present only in sanitizer builds.
extern "C" void __lsan_disable() __attribute__((weak));

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  // The module finds DuiLibRes beside "the host's executable": this tree.
  setenv("IM_MODULE_DIR", IM_RESOURCE_ROOT, 1);
  std::string log =
      std::string(std::getenv("IM_COMMON_DOCS_DIR") ? std::getenv("IM_COMMON_DOCS_DIR") : "/tmp") +
      "/sdk-calls-" + std::to_string(getpid()) + ".jsonl";
  setenv("IMSDK_CALL_LOG", log.c_str(), 1);
  QApplication app(argc, argv);
  QApplication::setFont(QFont(QStringLiteral("WenQuanYi Micro Hei"), 9));
  // Unloading the library unmaps what it made for the whole process (the
  // service object, the named mutexes, Qt's per-library data); the leak
  // checker can then no longer tell whose they were. Leaks of the window
  // code are checked by ui_main_tests, which links it directly.
  if (__lsan_disable != nullptr) __lsan_disable();
  int result = RUN_ALL_TESTS();
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  return result;
}
