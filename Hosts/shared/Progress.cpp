#include "Progress.h"

#include "Output.h"
#include "Terminal.h"
#include "Texts.h"

#include <algorithm>
#include <cmath>
#include <unistd.h>

namespace Ostrel
{
namespace
{

const QString eraseLine = QStringLiteral("\r\x1B[K");
constexpr int longestBar = 40;
constexpr int shortestBar = 4;
constexpr int longestAnswer = 100; // bytes

int ToPercentage(double fraction)
{
  return std::isnan(fraction) ? 0 : static_cast<int>(std::lround(std::clamp(fraction, 0.0, 1.0) * 100));
}

} // namespace

Progress::Progress(const QString& what) : what(what), isCapable(IsCapable(STDERR_FILENO)) {}

Progress::~Progress()
{
  Clear();
}

void Progress::Show(double fraction)
{
  const int percentage = ToPercentage(fraction);
  if (percentage == shown)
    return;
  shown = percentage;
  if (isCapable)
    DrawBar(percentage);
  else
    PrintError(Texts::tr("%1: %2 %").arg(what, QString::number(percentage)));
}

void Progress::Clear()
{
  if (isDrawn)
    WriteError(eraseLine);
  isDrawn = false;
}

// One column stays free: a terminal may begin a new line after the last one.
void Progress::DrawBar(int percentage)
{
  const int room = GetWidth(STDERR_FILENO) - 1;
  const QString number = QStringLiteral(" %1%").arg(percentage, 3);
  const int barRoom = room - CountColumns(what) - number.size() - 3;
  const int bar = std::min(barRoom, longestBar);
  const QString line = bar >= shortestBar ? what + QStringLiteral(" [") + MakeBar(percentage / 100.0, bar) +
                                                QLatin1Char(']') + number
                                          : Shorten(what, std::max(0, room - number.size())) + number;
  WriteError(eraseLine + Style(STDERR_FILENO).Bold(line));
  isDrawn = true;
}

bool Confirm(const QString& question)
{
  if (isatty(STDIN_FILENO) == 0 || isatty(STDERR_FILENO) == 0)
    return false;
  WriteError(question + QLatin1Char(' ') + Texts::tr("[yes/no]") + QLatin1Char(' '));
  QByteArray answer(longestAnswer, '\0');
  const ssize_t length = read(STDIN_FILENO, answer.data(), static_cast<size_t>(answer.size()));
  const QString word =
      QString::fromUtf8(answer.left(static_cast<int>(std::max<ssize_t>(length, 0)))).trimmed();
  return word.compare(QLatin1String("yes"), Qt::CaseInsensitive) == 0 ||
         word.compare(QLatin1String("y"), Qt::CaseInsensitive) == 0 ||
         word.compare(Texts::tr("yes"), Qt::CaseInsensitive) == 0;
}

} // namespace Ostrel
