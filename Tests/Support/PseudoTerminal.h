#pragma once

#include <QByteArray>
#include <QStringList>

#include <functional>
#include <sys/types.h>

/** A program on a terminal of its own, both ends of it in the test's hands. Ends with this. */
class PseudoTerminal
{
public:
  PseudoTerminal(int columns, const QString& program, const QStringList& arguments);
  ~PseudoTerminal();

  PseudoTerminal(const PseudoTerminal&) = delete;
  PseudoTerminal& operator=(const PseudoTerminal&) = delete;

  /** As from the keyboard. */
  void Type(const QByteArray& keys);

  /** @return Whether the screen has shown @p text; gives up after some time. */
  bool WaitForText(const QByteArray& text);

  /** @return The exit code; -1 when it did not end by itself. */
  int Finish();

  /** All that has been written to the screen so far, with line feeds alone between the lines. */
  QByteArray Screen() const;

private:
  bool Read();

  pid_t pid = -1;
  int file = -1;
  QByteArray written;
};
