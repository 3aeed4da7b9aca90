#pragma once

#include <sys/types.h>

/** @file Seam: who is at the other end of a local socket, and does that process still live. */
namespace Tavrik::Platform
{

/** A process that cannot be mistaken for a later one with the same id. */
struct ProcessIdentity
{
  pid_t pid = 0;           ///< 0 when the system could not tell.
  long long startTime = 0; ///< In units of the system's own; 0 when it could not tell.
};

/** The process at the other end of a connected local socket. */
struct LocalPeer
{
  bool isKnown = false; ///< Whether the system told anything at all.
  uid_t userId = 0;
  ProcessIdentity process;
};

/** @param socket A connected local socket's descriptor. */
LocalPeer GetLocalPeer(int socket);

/** @return Whether the process lives; one that has ended and waits for its parent does not. */
bool IsAlive(const ProcessIdentity& process);

} // namespace Tavrik::Platform
