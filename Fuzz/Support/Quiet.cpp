// Linked into every target: the library's log goes to the sinks alone, and Qt's warnings nowhere.

#include <QtGlobal>

#include <glog/logging.h>

extern "C" int LLVMFuzzerInitialize(int*, char*** arguments)
{
  google::InitGoogleLogging((*arguments)[0]);
  for (int severity = google::GLOG_INFO; severity < google::NUM_SEVERITIES; ++severity)
    google::SetLogDestination(severity, "");
  FLAGS_stderrthreshold = google::NUM_SEVERITIES;
  qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
  return 0;
}
