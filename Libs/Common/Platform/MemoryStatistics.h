#pragma once

#include <QtGlobal>

struct vm_statistics64;

/** @file Seam: how much memory the machine has, and how much of it is free. */
namespace Tavrik::Platform
{

/** @param size Becomes bytes. */
bool GetPhysicalMemorySize(qint64* size);

bool GetMemoryStatistics(vm_statistics64* statistics);

} // namespace Tavrik::Platform
