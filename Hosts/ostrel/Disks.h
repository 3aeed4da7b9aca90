#pragma once

#include <Common/DiskList.h>

#include <QStandardPaths>

namespace Ostrel
{

/** @return Whether there is the tool from which the library learns the disks. */
inline bool HasDiskTool()
{
  return !QStandardPaths::findExecutable(QStringLiteral("diskutil")).isEmpty();
}

} // namespace Ostrel
