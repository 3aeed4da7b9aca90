#include <Common/Platform/LocalPeer.h>

#include <cerrno>
#include <csignal>
#include <sys/socket.h>
#include <sys/sysctl.h>
#include <sys/types.h>
#include <sys/ucred.h>
#include <sys/un.h>
#include <unistd.h>

namespace Tavrik::Platform
{

namespace
{

enum class Answer
{
  Found,
  NoSuchProcess,
  Refused // a sandbox hides the processes around it
};

Answer ReadProcess(pid_t pid, kinfo_proc* info)
{
  int name[] = {CTL_KERN, KERN_PROC, KERN_PROC_PID, pid};
  size_t size = sizeof(*info);
  if (sysctl(name, 4, info, &size, nullptr, 0) != 0)
    return Answer::Refused;
  return size == sizeof(*info) ? Answer::Found : Answer::NoSuchProcess;
}

long long StartTime(const kinfo_proc& info)
{
  const timeval& started = info.kp_proc.p_starttime;
  return started.tv_sec * 1000000LL + started.tv_usec;
}

} // namespace

LocalPeer GetLocalPeer(int socket)
{
  LocalPeer peer;
  gid_t group = 0;
  if (getpeereid(socket, &peer.userId, &group) != 0)
    return peer;
  peer.isKnown = true;

  socklen_t size = sizeof(peer.process.pid);
  if (getsockopt(socket, SOL_LOCAL, LOCAL_PEERPID, &peer.process.pid, &size) != 0)
    peer.process.pid = 0;
  kinfo_proc info = {};
  if (peer.process.pid > 0 && ReadProcess(peer.process.pid, &info) == Answer::Found)
    peer.process.startTime = StartTime(info);
  return peer;
}

bool IsAlive(const ProcessIdentity& process)
{
  if (process.pid <= 0)
    return false;
  kinfo_proc info = {};
  switch (ReadProcess(process.pid, &info))
  {
  case Answer::Found:
    return info.kp_proc.p_stat != SZOMB && (process.startTime == 0 || StartTime(info) == process.startTime);
  case Answer::NoSuchProcess:
    return false;
  case Answer::Refused:
    break;
  }
  return kill(process.pid, 0) == 0 || errno != ESRCH;
}

} // namespace Tavrik::Platform
