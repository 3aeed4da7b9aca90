#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>

#include <functional>
#include <memory>

/** @file What the programs print: results on standard output, line by line, everything else on standard
 * error. */
namespace Ostrel
{

class BackgroundWriter;
class Table;

/** How results are printed. */
enum class Format
{
  Human, ///< One line per result, for people.
  Json   ///< One JSON object per line and nothing else.
};

/** Whether a line that is not read at once blocks the program. */
enum class Writing
{
  Blocking,
  InBackground ///< For a program whose event loop others depend on: see BackgroundWriter.
};

/**
 * Standard output, a line at a time and written through at once, so that a reader sees each when it happens.
 *
 * When a line cannot be written the output is closed for good: later lines are dropped and the exit code
 * tells.
 */
class Output
{
public:
  explicit Output(Format format, Writing writing = Writing::Blocking);
  ~Output();

  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;

  bool IsJson() const { return format == Format::Json; }
  bool IsTerminal() const { return isTerminal; }

  /** Prints one result in the chosen format. @p human carries no line end and is safe to show. */
  void Print(const QByteArray& human, const QJsonObject& json);

  /** Prints a line for people, on a terminal shortened to its width. @p text is safe to show. */
  void PrintFitted(const QString& text);

  /** Prints the lines of @p table, on a terminal no wider than it is. */
  void PrintTable(const Table& table);

  /** @return Done while all lines were written, else the exit code that tells why not. */
  int Status() const { return status; }

  /** @return Status(), for a line that was lost outweighs what else went well; else @p code. */
  int Combine(int code) const { return status != 0 ? status : code; }

  /**
   * Waits up to 5 s until what is written in the background is written. To be called once, after the last
   * line.
   *
   * @return Combine() of @p code; Failed in place of Done when the time was not enough.
   */
  int Finish(int code);

  /** What to call when the output closes, with the exit code. */
  void OnClosed(std::function<void(int)> handler);

private:
  void PrintLine(QByteArray line);
  void Close(int error);

  Format format;
  bool isTerminal;
  int status = 0;
  std::function<void(int)> closedHandler;
  std::unique_ptr<BackgroundWriter> writer; // null when writing blocks
};

/** @return @p fields with the keys "event" and "time", which is now. */
QJsonObject MakeEvent(const QString& event, QJsonObject fields);

/** @return @p object as one line of JSON without a line end, with no control character in it. */
QByteArray ToJsonLine(const QJsonObject& object);

/** Writes @p text to standard output as it is. @return Done, or the exit code after the reason has been
 * printed. */
int WriteOutput(const QByteArray& text);

/**
 * Closes standard output at the end of a program, because some file systems report a failed write only then.
 *
 * @return @p code, unless it is Done and the file system reports a failure.
 */
int CloseOutput(int code);

/** Writes @p text, which must be safe to show, to standard error as it is. */
void WriteError(const QString& text);

/** Prints the program's name, ": " and @p text, which must be safe to show, as a line on standard error. */
void PrintError(const QString& text);

} // namespace Ostrel
