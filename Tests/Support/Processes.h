#pragma once

#include "Support/Peer.h"

#include <QString>

#include <functional>
#include <sys/types.h>
#include <vector>

/** @return The wait status of a child of this process when it has ended; -1 when there is no such child. */
int WaitForEnd(pid_t child);

/** A process that is forked to do one thing by system calls alone; killed when this goes. */
class Forked
{
public:
  explicit Forked(const std::function<void()>& work);
  ~Forked();

  Forked(const Forked&) = delete;
  Forked& operator=(const Forked&) = delete;

  void Kill();

  pid_t pid = -1;
};

/** Bytes of address space at its largest ("VmPeak") or of memory in use ("VmRSS"). */
long long MemoryOf(qint64 pid, const QByteArray& field);

/** Milliseconds of processor time used so far. */
long long ProcessorTimeOf(qint64 pid);

/** How many sockets listen, in any process, under the name of @p context. */
int CountServers(const QString& context);

/** The one of @p peers that listens for @p context; null when none does. */
Peer* FindServer(const std::vector<Peer*>& peers, const QString& context);
