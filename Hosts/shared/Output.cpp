#include "Output.h"

#include "BackgroundWriter.h"
#include "Descriptors.h"
#include "ExitCodes.h"
#include "SafeText.h"
#include "Signals.h"
#include "Terminal.h"
#include "Texts.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QJsonDocument>

#include <cerrno>
#include <unistd.h>

namespace Ostrel
{
namespace
{

// How long the end of a program waits for lines that are written in the background.
constexpr std::chrono::milliseconds longestFlush = std::chrono::seconds(5);

// The length of a control character from U+007F to U+009F in well-formed UTF-8; 0 when there is none here.
int GetLateControl(const QByteArray& text, int position)
{
  const char byte = text.at(position);
  if (byte == '\x7F')
    return 1;
  const bool isControl =
      byte == '\xC2' && position + 1 < text.size() && static_cast<uchar>(text.at(position + 1)) < 0xA0;
  return isControl ? 2 : 0;
}

int GetStatus(int error)
{
  if (error == EINTR)
    return EndedBySignal + Signals::Caught();
  return error == EPIPE ? OutputClosed : Failed;
}

// 0, or the exit code for the errno of a failed write, after the reason has been printed.
int ReportFailure(int error)
{
  const int status = error == 0 ? static_cast<int>(Done) : GetStatus(error);
  if (status == Failed)
    PrintError(Texts::tr("cannot write to the standard output: %1").arg(ShowReason(error)));
  return status;
}

BackgroundWriter::Describe DescribeGap(bool isJson)
{
  if (isJson)
    return [](long long count) {
      return ToJsonLine(MakeEvent(QStringLiteral("dropped"), {{QStringLiteral("count"), count}})) + '\n';
    };
  const QString text = Texts::tr("%1 lines were dropped because the output was not read");
  return [text](long long count) { return text.arg(count).toUtf8() + '\n'; };
}

} // namespace

QJsonObject MakeEvent(const QString& event, QJsonObject fields)
{
  fields.insert(QStringLiteral("event"), event);
  fields.insert(QStringLiteral("time"), QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs));
  return fields;
}

// JSON lets the controls beyond the first 32 through, and terminals obey some of them.
QByteArray ToJsonLine(const QJsonObject& object)
{
  const QByteArray json = QJsonDocument(object).toJson(QJsonDocument::Compact);
  QByteArray line;
  line.reserve(json.size());
  int copied = 0;
  for (int position = 0; position < json.size(); ++position)
  {
    const int length = GetLateControl(json, position);
    if (length == 0)
      continue;
    line.append(json.constData() + copied, position - copied);
    line += "\\u00" + QByteArray::number(static_cast<uchar>(json.at(position + length - 1)), 16);
    position += length - 1;
    copied = position + 1;
  }
  return line.append(json.constData() + copied, json.size() - copied);
}

Output::Output(Format format, Writing writing) : format(format), isTerminal(isatty(STDOUT_FILENO) != 0)
{
  if (writing == Writing::InBackground)
    writer = std::make_unique<BackgroundWriter>(STDOUT_FILENO, DescribeGap(IsJson()),
                                                [this](int error) { Close(error); });
}

Output::~Output() = default;

void Output::Print(const QByteArray& human, const QJsonObject& json)
{
  PrintLine(IsJson() ? ToJsonLine(json) : human);
}

void Output::PrintFitted(const QString& text)
{
  PrintLine((isTerminal ? Shorten(text, GetWidth(STDOUT_FILENO)) : text).toUtf8());
}

void Output::PrintTable(const Table& table)
{
  const QStringList lines = table.ToLines(Style(STDOUT_FILENO), isTerminal ? GetWidth(STDOUT_FILENO) : 0);
  for (const QString& line : lines)
    PrintLine(line.toUtf8());
}

void Output::OnClosed(std::function<void(int)> handler)
{
  closedHandler = std::move(handler);
}

void Output::PrintLine(QByteArray line)
{
  if (status != Done)
    return;
  line += '\n';
  if (writer)
    writer->Write(line);
  else if (const int error = WriteAll(STDOUT_FILENO, line))
    Close(error);
}

int Output::Finish(int code)
{
  const int error = writer ? writer->Flush(longestFlush) : 0;
  if (error == ETIMEDOUT)
  {
    writer.reset();
    PrintError(Texts::tr("the end of the output was not read"));
    return code == Done ? static_cast<int>(Failed) : code;
  }
  if (error != 0 && status == Done)
    Close(error);
  return Combine(code);
}

void Output::Close(int error)
{
  status = ReportFailure(error);
  if (closedHandler)
    closedHandler(status);
}

int WriteOutput(const QByteArray& text)
{
  return ReportFailure(WriteAll(STDOUT_FILENO, text));
}

int CloseOutput(int code)
{
  const int failure = close(STDOUT_FILENO) == 0 ? static_cast<int>(Done) : ReportFailure(errno);
  return code == Done ? failure : code;
}

void WriteError(const QString& text)
{
  const QByteArray bytes = text.toUtf8();
  if (!BackgroundErrors::IsActive())
    WriteAll(STDERR_FILENO, bytes);
  else if (write(STDERR_FILENO, bytes.constData(), static_cast<size_t>(bytes.size())) < 0)
    return; // the pipe is full, and waiting would block the event loop
}

void PrintError(const QString& text)
{
  WriteError(QCoreApplication::applicationName() + QStringLiteral(": ") + text + QLatin1Char('\n'));
}

} // namespace Ostrel
