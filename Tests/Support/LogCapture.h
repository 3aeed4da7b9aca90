#pragma once

#include <glog/logging.h>

#include <mutex>
#include <string>
#include <vector>

/** One line that was logged while a LogCapture lived. */
struct LoggedLine
{
  google::LogSeverity severity;
  std::string file; ///< The source file's name without its folder.
  std::string text;
};

/** Collects what is logged while it lives. */
class LogCapture : private google::LogSink
{
public:
  LogCapture();
  ~LogCapture() override;

  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;

  std::vector<LoggedLine> Lines() const;

  /** The texts of one severity, in order. */
  std::vector<std::string> Texts(google::LogSeverity severity) const;
  std::vector<std::string> Errors() const { return Texts(google::GLOG_ERROR); }
  std::vector<std::string> Warnings() const { return Texts(google::GLOG_WARNING); }
  std::vector<std::string> Infos() const { return Texts(google::GLOG_INFO); }

  void Clear();

private:
  void send(google::LogSeverity severity, const char* fullName, const char* baseName, int line,
            const google::LogMessageTime& time, const char* message, std::size_t length) override;

  mutable std::mutex mutex;
  std::vector<LoggedLine> lines;
};
