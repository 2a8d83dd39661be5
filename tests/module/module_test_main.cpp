// One QApplication for the binary (the module's window lives in it), made
// after GoogleTest has taken its flags; headless unless a platform was chosen.
// The SDK's call log goes to a file of this process, read by the tests.
#include <gtest/gtest.h>

#include <QApplication>
#include <QFont>

#include <cstdlib>
#include <string>

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
  int result = RUN_ALL_TESTS();
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  return result;
}

// The service object lives until the process ends by design (SDK callbacks
// may name it at unload); unloading the library in a test drops the pointer.
extern "C" const char* __lsan_default_suppressions() {
  return "leak:CChatTools::Instance\n";
}
