#include "Support/Programs.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QThread>

#include <algorithm>
#include <fcntl.h>
#include <fstream>
#include <sys/stat.h>
#include <unistd.h>
#ifdef __linux__
#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#endif

bool WaitFor(const std::function<bool()>& fact)
{
  const int longestWait = 20000; // ms
  const unsigned long step = 2;  // ms
  QElapsedTimer timer;
  for (timer.start(); timer.elapsed() < longestWait; QThread::msleep(step))
    if (fact())
      return true;
  return fact();
}

void WriteText(const QString& path, const QByteArray& text)
{
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << qPrintable(path);
  ASSERT_EQ(text.size(), file.write(text));
}

QByteArray ReadText(const QString& path)
{
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void WriteProgram(const QString& path, const QByteArray& text)
{
  WriteText(path, "#!/bin/sh\n" + text);
  ASSERT_EQ(0, chmod(QFile::encodeName(path).constData(), 0755)) << qPrintable(path);
}

bool BecomeRoot()
{
  if (geteuid() == 0)
    return true;
#ifdef __linux__
  const uid_t user = geteuid();
  const gid_t group = getegid();
  if (unshare(CLONE_NEWUSER) != 0)
    return false;
  std::ofstream("/proc/self/setgroups") << "deny";
  std::ofstream("/proc/self/uid_map") << "0 " << user << " 1";
  std::ofstream("/proc/self/gid_map") << "0 " << group << " 1";
#endif
  return geteuid() == 0;
}

void BecomeUser()
{
  if (geteuid() != 0)
    return;
  const uid_t nobody = 65534;
  ASSERT_EQ(0, chown(QFile::encodeName(QDir::homePath()).constData(), nobody, nobody));
  QDirIterator entries(QDir::homePath(), QDir::AllEntries | QDir::NoDotAndDotDot,
                       QDirIterator::Subdirectories);
  while (entries.hasNext())
    ASSERT_EQ(0, lchown(QFile::encodeName(entries.next()).constData(), nobody, nobody));
  ASSERT_EQ(0, setgid(nobody));
  ASSERT_EQ(0, setuid(nobody));
#ifdef __linux__
  // A process that has changed its user may not look into itself otherwise.
  ASSERT_EQ(0, prctl(PR_SET_DUMPABLE, 1));
#endif
}

bool MountSmallDisk(const QString& folder)
{
  QDir().mkpath(folder);
#ifdef __linux__
  return BecomeRoot() && unshare(CLONE_NEWNS) == 0 &&
         mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
         mount("tmpfs", QFile::encodeName(folder).constData(), "tmpfs", 0, "size=64k,mode=0755") == 0;
#else
  return false;
#endif
}

void FillDisk(const QString& folder, qint64 freeBytes)
{
  const int file =
      open(QFile::encodeName(folder + "/filler").constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
  ASSERT_GE(file, 0);
  off_t size = lseek(file, 0, SEEK_END);
  for (ssize_t count = 1; count > 0; size += std::max<ssize_t>(count, 0))
    count = write(file, "filler.", 1);
  EXPECT_EQ(0, ftruncate(file, std::max<off_t>(0, size - freeBytes)));
  close(file);
}
