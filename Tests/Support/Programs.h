#pragma once

#include <QByteArray>
#include <QString>

#include <functional>

/** Waits until @p fact is true, for 20 s at most. @return Whether it has become so. */
bool WaitFor(const std::function<bool()>& fact);

void WriteText(const QString& path, const QByteArray& text);

/** @return The file's content; empty when there is none. */
QByteArray ReadText(const QString& path);

/** Writes an executable shell script; @p text is what follows its first line. */
void WriteProgram(const QString& path, const QByteArray& text);

/**
 * Makes this process root, where it is not, in a user namespace of its own.
 *
 * @return Whether it is; the machine may forbid that.
 */
bool BecomeRoot();

/** Makes this process, where it is root, somebody else, and hands its home and temporary folder over to them.
 */
void BecomeUser();

/**
 * Mounts an empty disk of 64 KiB on @p folder, which is made. This process and its children alone see it.
 *
 * @return Whether it is there; the machine may forbid that.
 */
bool MountSmallDisk(const QString& folder);

/** Fills the disk of @p folder, by a file "filler" there, but for @p freeBytes. */
void FillDisk(const QString& folder, qint64 freeBytes);
