#include "Support/LogCapture.h"

LogCapture::LogCapture()
{
  google::AddLogSink(this);
}

LogCapture::~LogCapture()
{
  google::RemoveLogSink(this);
}

std::vector<LoggedLine> LogCapture::Lines() const
{
  const std::lock_guard<std::mutex> lock(mutex);
  return lines;
}

std::vector<std::string> LogCapture::Texts(google::LogSeverity severity) const
{
  std::vector<std::string> texts;
  for (const LoggedLine& line : Lines())
    if (line.severity == severity)
      texts.push_back(line.text);
  return texts;
}

void LogCapture::Clear()
{
  const std::lock_guard<std::mutex> lock(mutex);
  lines.clear();
}

void LogCapture::send(google::LogSeverity severity, const char*, const char* baseName, int,
                      const google::LogMessageTime&, const char* message, std::size_t length)
{
  const std::lock_guard<std::mutex> lock(mutex);
  lines.push_back({severity, baseName, std::string(message, length)});
}
