#include "BackgroundWriter.h"

#include "Descriptors.h"

#include <QTimer>

#include <cerrno>
#include <condition_variable>
#include <csignal>
#include <cstdlib>
#include <deque>
#include <fcntl.h>
#include <mutex>
#include <thread>
#include <unistd.h>

namespace Ostrel
{

using namespace std::chrono_literals;

namespace
{

constexpr long long mostWaiting = 32LL * 1024 * 1024; // bytes; several of the longest usual messages
constexpr std::chrono::milliseconds longestDrain = 2s;

// Signals belong to the main thread, whose reads and writes they have to interrupt.
template<typename Body>
void StartThread(Body body)
{
  sigset_t all;
  sigset_t former;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &former);
  std::thread(std::move(body)).detach();
  pthread_sigmask(SIG_SETMASK, &former, nullptr);
}

} // namespace

// Standard output ------------------------------------------------------------------------------------------

struct BackgroundWriter::Queue
{
  Queue(int file, Describe describe, Fail fail)
      : file(file), describe(std::move(describe)), failure(std::make_unique<QTimer>())
  {
    failure->setSingleShot(true);
    failure->callOnTimeout([this, fail = std::move(fail)] { fail(error); });
  }

  const int file;
  const Describe describe;
  std::mutex mutex;
  std::condition_variable changed;
  std::deque<QByteArray> lines; // the first is being written
  long long size = 0;           // of all lines, in bytes
  long long dropped = 0;
  int error = 0;
  bool isOver = false;
  std::unique_ptr<QTimer> failure; // reports the error from the event loop
};

BackgroundWriter::BackgroundWriter(int file, Describe describe, Fail fail)
    : queue(std::make_shared<Queue>(file, std::move(describe), std::move(fail)))
{
  StartThread([queue = queue] { Run(queue); });
}

BackgroundWriter::~BackgroundWriter()
{
  const std::lock_guard<std::mutex> lock(queue->mutex);
  queue->isOver = true;
  queue->failure.reset();
  queue->changed.notify_all();
}

void BackgroundWriter::Write(const QByteArray& line)
{
  const std::lock_guard<std::mutex> lock(queue->mutex);
  if (queue->error != 0)
    return;
  if (queue->dropped > 0 || (!queue->lines.empty() && queue->size + line.size() > mostWaiting))
  {
    ++queue->dropped;
    return;
  }
  queue->lines.push_back(line);
  queue->size += line.size();
  queue->changed.notify_all();
}

int BackgroundWriter::Flush(std::chrono::milliseconds limit)
{
  std::unique_lock<std::mutex> lock(queue->mutex);
  const bool isDone =
      queue->changed.wait_for(lock, limit, [this] { return queue->error != 0 || queue->lines.empty(); });
  return isDone ? queue->error : ETIMEDOUT;
}

// The line that is being written stays in the queue, so that Flush() waits for it.
void BackgroundWriter::Run(const std::shared_ptr<Queue>& queue)
{
  std::unique_lock<std::mutex> lock(queue->mutex);
  for (;;)
  {
    queue->changed.wait(lock, [&] { return queue->isOver || !queue->lines.empty(); });
    if (queue->isOver)
      return;
    const QByteArray line = queue->lines.front();
    lock.unlock();
    const int error = WriteAll(queue->file, line);
    lock.lock();
    queue->lines.pop_front();
    queue->size -= line.size();
    if (queue->lines.empty() && queue->dropped > 0)
    {
      const QByteArray gap = queue->describe(queue->dropped);
      queue->lines.push_back(gap);
      queue->size += gap.size();
      queue->dropped = 0;
    }
    queue->error = error;
    queue->changed.notify_all();
    if (error == 0)
      continue;
    if (queue->failure)
      QMetaObject::invokeMethod(queue->failure.get(), "start", Qt::QueuedConnection);
    return;
  }
}

// Standard error -------------------------------------------------------------------------------------------

namespace
{

struct Copying
{
  Copying(int from, int to) : from(from), to(to) {}

  ~Copying()
  {
    close(from);
    close(to);
  }

  Copying(const Copying&) = delete;
  Copying& operator=(const Copying&) = delete;

  const int from; // reading end of the pipe
  const int to;   // what standard error was before
  std::mutex mutex;
  std::condition_variable ended;
  bool hasEnded = false;
};

std::shared_ptr<Copying> copying; // null while standard error is not a pipe of this process

void CopyToEnd(Copying* copying)
{
  char bytes[4096];
  for (ssize_t count = 0; (count = read(copying->from, bytes, sizeof bytes)) > 0;)
    if (WriteAll(copying->to, QByteArray::fromRawData(bytes, static_cast<int>(count))) != 0)
      break;
  const std::lock_guard<std::mutex> lock(copying->mutex);
  copying->hasEnded = true;
  copying->ended.notify_all();
}

} // namespace

BackgroundErrors::BackgroundErrors()
{
  int ends[2];
  if (pipe(ends) != 0)
    return;
  for (const int end : ends)
    fcntl(end, F_SETFD, FD_CLOEXEC);
  const int former = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  const auto started = std::make_shared<Copying>(ends[0], former);
  if (former >= 0 && fcntl(ends[1], F_SETFL, O_NONBLOCK) == 0 && dup2(ends[1], STDERR_FILENO) >= 0)
  {
    copying = started;
    StartThread([started] { CopyToEnd(started.get()); });
  }
  close(ends[1]);
}

BackgroundErrors::~BackgroundErrors()
{
  Drain();
}

bool BackgroundErrors::IsActive()
{
  return copying != nullptr;
}

void BackgroundErrors::EndProcess(int code)
{
  Drain();
  std::_Exit(code);
}

// With the last writing end gone, the copying thread meets the end of the pipe.
void BackgroundErrors::Drain()
{
  const std::shared_ptr<Copying> ending = std::move(copying);
  if (!ending)
    return;
  dup2(ending->to, STDERR_FILENO);
  std::unique_lock<std::mutex> lock(ending->mutex);
  ending->ended.wait_for(lock, longestDrain, [&ending] { return ending->hasEnded; });
}

} // namespace Ostrel
