#pragma once

#include <QString>
#include <QStringList>

/**
 * @file
 * Copies of built files in the test's home, for a test that becomes another user: the build tree may lie in a
 * folder that is closed to other users.
 */

/** The shared library that the programs of the build tree need. */
extern const char* const commonLibrary;

/**
 * Copies @p files so that every user can read and run them. HostProcess and FakeFirewall use the copies from
 * then on, and so does the loader of shared libraries in processes that are started later.
 */
void CopyForOthers(const QStringList& files);

/** @return The copy that CopyForOthers() made of @p file; @p file itself when there is none. */
QString FindCopy(const QString& file);
