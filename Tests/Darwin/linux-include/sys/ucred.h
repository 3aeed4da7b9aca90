#pragma once

// What the Darwin sources ask about a socket's peer, for building them elsewhere. The calls that this system
// has as well go by another name, so that nobody but the tested source meets the doubles.

#include <csignal>
#include <sys/socket.h>
#include <sys/types.h>

#define SOL_LOCAL 0
#define LOCAL_PEERPID 0x002

extern "C" int getpeereid(int socket, uid_t* user, gid_t* group);
extern "C" int DarwinKill(pid_t process, int signal);
extern "C" int DarwinGetSocketOption(int socket, int level, int name, void* value, socklen_t* size);

#define kill DarwinKill
#define getsockopt DarwinGetSocketOption
