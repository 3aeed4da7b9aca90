#pragma once

#include <QString>

/** @file How far something has come, for people, on standard error. */
namespace Ostrel
{

/** A bar on a terminal, a line for each new percentage anywhere else. Goes with what it has drawn. */
class Progress
{
public:
  /** @param what What is in progress; safe to show. */
  explicit Progress(const QString& what);
  ~Progress();

  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /** @param fraction 0 to 1; the nearest of them for anything else. */
  void Show(double fraction);

  /** Takes the bar away, so that something else can be printed. */
  void Clear();

private:
  void DrawBar(int percentage);

  QString what;
  bool isCapable;
  bool isDrawn = false;
  int shown = -1; // percent
};

/**
 * Asks @p question, which must be safe to show, on standard error and reads the answer from standard input.
 *
 * @return Whether the answer is yes, in English or in the user's language; no where nobody can be asked
 * because one of the two is no terminal.
 */
bool Confirm(const QString& question);

} // namespace Ostrel
