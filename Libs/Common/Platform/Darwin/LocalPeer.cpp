#include <Common/Platform/LocalPeer.h>

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

bool ReadProcess(pid_t pid, kinfo_proc* info)
{
  int name[] = {CTL_KERN, KERN_PROC, KERN_PROC_PID, pid};
  size_t size = sizeof(*info);
  return sysctl(name, 4, info, &size, nullptr, 0) == 0 && size == sizeof(*info);
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
  if (peer.process.pid > 0 && ReadProcess(peer.process.pid, &info))
    peer.process.startTime = StartTime(info);
  return peer;
}

bool IsAlive(const ProcessIdentity& process)
{
  kinfo_proc info = {};
  return process.pid > 0 && ReadProcess(process.pid, &info) && info.kp_proc.p_stat != SZOMB &&
         StartTime(info) == process.startTime;
}

} // namespace Tavrik::Platform
