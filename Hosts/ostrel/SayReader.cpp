#include "SayReader.h"

#include "Output.h"
#include "Payload.h"
#include "SafeText.h"
#include "Texts.h"

#include <array>
#include <cerrno>
#include <unistd.h>

namespace Ostrel
{

using namespace std::chrono_literals;

namespace
{

// The serving process takes 50 messages a second from one client; some never get a result.
constexpr int mostUnanswered = 200;
constexpr std::chrono::milliseconds patienceTime = 5s;

} // namespace

SayReader::SayReader(SayHandler say) : say(std::move(say)), notifier(STDIN_FILENO, QSocketNotifier::Read)
{
  patience.setSingleShot(true);
  patience.setInterval(patienceTime);
  patience.callOnTimeout(
      [this]
      {
        unanswered = 0;
        Update();
      });
  QObject::connect(&notifier, &QSocketNotifier::activated, &notifier, [this] { ReadSome(); });
}

void SayReader::NoteResult()
{
  unanswered = qMax(unanswered - 1, 0);
  Update();
}

void SayReader::ReadSome()
{
  std::array<char, 4096> bytes;
  const ssize_t count = read(STDIN_FILENO, bytes.data(), bytes.size());
  if (count > 0)
    buffer.append(bytes.data(), static_cast<int>(count));
  else if (count == 0)
    End();
  else if (errno != EINTR && errno != EAGAIN)
  {
    PrintError(Texts::tr("cannot read %1: %2").arg(Texts::tr("the standard input"), ShowReason(errno)));
    End();
  }
  TakeLines();
  Update();
}

void SayReader::TakeLines()
{
  int begin = 0;
  for (int end = buffer.indexOf('\n'); end >= 0; end = buffer.indexOf('\n', begin))
  {
    TakeLine(buffer.mid(begin, end - begin));
    begin = end + 1;
  }
  buffer.remove(0, begin);
  if (buffer.size() > longestPayload)
  {
    PrintError(Texts::tr("a line to say is too long"));
    buffer.clear();
    End();
  }
}

void SayReader::TakeLine(const QByteArray& line)
{
  if (line.isEmpty())
    return;
  const int space = line.indexOf(' ');
  const QByteArray recipient = space < 0 ? line : line.left(space);
  if (recipient.isEmpty() || !IsUtf8(recipient))
  {
    PrintError(Texts::tr("cannot say a line that does not begin with a name: %1")
                   .arg(QString::fromUtf8(EscapeBytes(line.left(80)))));
    return;
  }
  ++unanswered;
  say(DecodeUtf8(recipient), space < 0 ? QByteArray() : line.mid(space + 1));
}

void SayReader::End()
{
  hasEnded = true;
  if (!buffer.isEmpty() && !buffer.endsWith('\n'))
    buffer += '\n';
}

void SayReader::Update()
{
  const bool isPaused = unanswered >= mostUnanswered;
  notifier.setEnabled(!hasEnded && !isPaused);
  if (!isPaused)
    patience.stop();
  else if (!patience.isActive())
    patience.start();
}

} // namespace Ostrel
