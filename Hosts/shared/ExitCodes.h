#pragma once

/**
 * @file
 * What the exit code of ostrel and ostrel-scheduler says. The numbers are an interface: scripts test them and
 * the manual lists them, so a number that has been given out keeps its meaning.
 *
 * | code    | meaning                                                                  |
 * | ------- | ------------------------------------------------------------------------ |
 * | 0       | done                                                                     |
 * | 1       | failed for a reason that has no number of its own; stderr tells           |
 * | 2       | the command line is wrong                                                |
 * | 3       | the time given with --timeout ran out                                    |
 * | 10      | nothing to do                                                            |
 * | 11      | a safety rule forbids it                                                 |
 * | 12      | the system forbids it to this user                                       |
 * | 13      | the administrator's authorisation was not given                          |
 * | 14      | a tool of the system is missing                                          |
 * | 20      | no bus: nobody serves it, or its server has gone and no other may be made |
 * | 21      | the name is taken                                                        |
 * | 22      | could not join in time: the name is taken or the server does not answer   |
 * | 23      | the message came to nobody: NO RECIPIENT                                 |
 * | 24      | the message was not sent: NOT SENT                                       |
 * | 25      | the server could not write the message to the recipient: NOT WRITTEN      |
 * | 26      | the server answered with a word that is not known: UNKNOWN               |
 * | 27      | bus doctor: a server that has gone left its socket behind                |
 * | 28      | a folder is in the place of the socket; bus doctor: or a file or a link  |
 * | 29      | the socket is another user's                                             |
 * | 30      | the socket's name is too long for a socket's address                     |
 * | 31      | bus doctor: the bus is served in another temporary folder                |
 * | 32      | bus doctor: the socket of a living server has been removed               |
 * | 33      | the temporary folder is missing or cannot be used                        |
 * | 34      | bus doctor: whoever listens is no bus                                    |
 * | 128 + N | ended by signal N: 129 hang-up, 130 Ctrl-C, 143 terminated               |
 * | 141     | whoever read the output has closed it                                    |
 */
namespace Ostrel
{

enum ExitCode
{
  Done = 0,
  Failed = 1,
  WrongUsage = 2,
  TimedOut = 3,

  NothingToDo = 10,
  Refused = 11,
  NotPermitted = 12,
  NotAuthorised = 13,
  ToolMissing = 14,

  NoBus = 20,
  NameTaken = 21,
  NotJoined = 22,
  NoRecipient = 23,
  NotSent = 24,
  NotWritten = 25,
  UnknownResult = 26,

  StaleSocket = 27,
  SocketBlocked = 28,
  ForeignSocket = 29,
  SocketNameTooLong = 30,
  OtherFolder = 31,
  SocketRemoved = 32,
  FolderUnusable = 33,
  NotABus = 34,

  EndedBySignal = 128,
  OutputClosed = 141
};

} // namespace Ostrel
