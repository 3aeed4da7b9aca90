#pragma once

#include <QProcess>

namespace Tavrik::Platform
{

/**
 * A QProcess that notices when the system refuses it a process.
 *
 * For a QProcess itself, and no class derived from it, Qt 5.15 takes a failed clone() on Linux for a running
 * process with the id -1; to end that one, as its destructor does, is to kill every process that the user
 * may. A derived one is made by fork(), whose failure Qt looks at.
 */
#ifdef __SANITIZE_THREAD__
// Qt learns of a forked process' end by SIGCHLD, which ThreadSanitizer loses now and then: two of 1,500
// starts waited in vain, none of 24,000 without it.
using ChildProcess = QProcess;
#else
class ChildProcess : public QProcess
{
public:
  using QProcess::QProcess;
};
#endif

} // namespace Tavrik::Platform
