#pragma once

#include <Common/Export.h>
#include <Common/IOUtils.h>

#include <QByteArray>
#include <QList>
#include <QString>

#include <memory>

/**
 * @file
 * A message bus for the processes of one user.
 *
 * Every participant holds a Context. All contexts of one user with the same context name meet on one local
 * socket in the temporary directory; the first of them serves the others, and when it goes the rest elect
 * another. Participants send each other messages by name, get a delivery result for each, and learn who
 * joins and who leaves.
 */
namespace Tavrik::Bazaar
{

/** What became of a message. */
enum Error
{
  NoError = 0,         ///< The serving process wrote the message to the recipient's socket.
  ErrorUnknown = 1,    ///< A word that no participant of this version sends.
  ErrorNotSent = 2,    ///< The connection to the serving process was gone when the message was written.
  ErrorNotWritten = 3, ///< The serving process could not write the message to the recipient.
  ErrorNoRecipient = 4 ///< Nobody of the recipient's name is connected.
};

/**
 * What a process of the bus puts up with. Each limit is off at 0, which is the default, and at any negative
 * value; what is exactly at a limit passes.
 *
 * A breach logs a WARNING line. Of the breaches of one limit within 10 s only the first does, and the next
 * line tells how many were left out.
 */
struct Limits
{
  /**
   * Milliseconds in which somebody who connects to a server of this process has to introduce himself; then
   * the connection is closed. While this or #packetSize is set, the server waits for nobody at its door:
   * without them, somebody who connects and says nothing stops the server for 30 s, and one who begins to
   * speak for as long as he likes.
   */
  long long admissionTime = 0;

  /**
   * Milliseconds in which a server has to answer a participant's introduction with the list of members; then
   * the participant closes the connection and begins anew after at most 0.2 s, from the second time on after
   * about 1 s, so that a constructor returns without a member. Messages said until then are "NOT SENT".
   */
  long long replyTime = 0;

  /**
   * Bytes of the largest packet, from its signature to the end of its body. The connection over which a
   * larger one begins to come is closed as soon as its length is known, and Qt reads no more than about this
   * much ahead of the bus (at least 4 KiB), twice. A message too large to say is "NOT SENT", one too large to
   * forward "NOT WRITTEN", and a name that would make the list of members too large is refused. Nothing is
   * written to whoever has hung up, since that would lose what he has said and is not read yet: messages to
   * him are "NOT SENT" or "NOT WRITTEN" even before his departure is known. All participants of one bus
   * should have the same.
   */
  long long packetSize = 0;

  /** Messages that wait in a participant to be written; Context::Say refuses further ones. */
  long long queuedMessages = 0;

  /**
   * Bytes of the packets that wait in a participant, those among them that its connection has not taken yet;
   * Context::Say refuses what would go beyond.
   */
  long long queuedBytes = 0;

  /**
   * Bytes that wait in a server for one client to read, besides what the system holds for it. A message that
   * would go beyond is "NOT WRITTEN"; lists of members and results are written all the same, and who has
   * twice as much waiting is disconnected. While this or #packetSize is set, the server does not wait for a
   * list to be written, which otherwise stops it for up to 30 s for a client that does not read. At least
   * #packetSize, or the largest messages never pass.
   */
  long long unwrittenBytes = 0;

  /**
   * Connections to a server of this process, the participant's own among them, admitted or not; further ones
   * are closed at once.
   */
  long long clients = 0;

  /**
   * Bytes a second that a server reads from one client: after a packet of so many bytes it leaves the client
   * alone for a second, after one of half as many for half a second. What the client sends meanwhile waits
   * with it once the system's buffers are full. The server's own participant is not held back, and what was
   * sent by one who leaves is read at once.
   */
  long long clientRate = 0;
};

/**
 * Sets the limits of every Context that is constructed from now on in this process; a Context keeps those
 * that it found. Any thread.
 */
TAVRIK_COMMON_EXPORT void SetLimits(const Limits& limits);

/** @return The limits as they were set, negative ones as 0. Any thread. */
TAVRIK_COMMON_EXPORT Limits GetLimits();

/** @return The word of @p error as it travels on the wire; "UNKNOWN" for any value without one. */
TAVRIK_COMMON_EXPORT QString GetErrorString(Error error);

/**
 * What a participant wants to hear. A Context holds its listeners by weak reference and keeps one alive for
 * the length of a call only.
 *
 * All calls run on the thread that owns the Context, from its event processing, one listener after the other
 * in the order of registration. A call may do anything: say messages, add listeners, wait for members, run
 * the event loop, create and destroy contexts, this one included; only throw it may not. While it blocks,
 * this participant's bus stands still.
 */
class TAVRIK_COMMON_EXPORT Listener
{
public:
  virtual ~Listener();

  /** A message for this participant has come. @p sender is the name of the client that said it. */
  virtual void OnMessage(const QString& sender, const QByteArray& data) = 0;

  /**
   * The fate of a message that this participant said is known.
   *
   * @param messageId What Context::Say returned.
   * @param result    What became of the message.
   * @param note      A text beside the result; the bus itself leaves it empty.
   */
  virtual void OnResult(long long messageId, Error result, const QString& note) = 0;

  /** @p name has joined; Context::HasMember is already true for it. */
  virtual void OnMemberJoined(const QString& name) = 0;

  /** @p name has left; Context::HasMember is already false for it. */
  virtual void OnMemberLeft(const QString& name) = 0;
};

/** Flags of a Context; any other bits are ignored. */
enum Flag
{
  /**
   * Never serve. Such a participant looks for a server when it is constructed and once when its connection
   * breaks, and gives up for good when there is none.
   */
  NoServer = 1,
  /** Write a message to the serving process only once its recipient is a member. */
  HoldUntilMember = 2
};

/**
 * One participant of a bus.
 *
 * A Context belongs to the thread that created it, which must run a Qt event loop and is the only one that
 * may call it. Nothing throws; a failed start shows in the log and in that no member ever appears.
 *
 * A Context belongs to the process that created it, too. In a process forked from that one, its destructor
 * only frees memory. A program that becomes a daemon creates its contexts afterwards, or loses its connection
 * for about a second.
 */
class TAVRIK_COMMON_EXPORT Context
{
public:
  /**
   * Joins the bus, or opens it when there is none.
   *
   * Blocks while it connects (3 s for the election of another process to end, 3 s for a server to accept,
   * 30 s for the participant's own), then until the server has answered, however long that takes, running
   * the event loop meanwhile. A server that has the client name among its members already never answers.
   * Limits::replyTime, when set, ends that wait.
   * When the process holds the pair of names already, the log says so and the participant never joins.
   *
   * @param contextName Which bus.
   * @param clientName  Who this participant is on that bus.
   * @param listener    The first listener; may be empty. Not owned.
   * @param flags       Any of Flag.
   */
  Context(const QString& contextName, const QString& clientName, const std::shared_ptr<Listener>& listener,
          int flags);

  /**
   * Leaves the bus. What was said is written out first, or dropped where its recipient is no member, running
   * the event loop meanwhile; at most 30 s without a connection and 3 s without progress.
   */
  ~Context();

  Context(const Context&) = delete;
  Context& operator=(const Context&) = delete;

  /** Adds a listener, behind those that are there; an empty one is ignored. Not owned. */
  void Listen(const std::shared_ptr<Listener>& listener);

  /**
   * Queues a message and returns at once; it is written no earlier than 300 ms after the connection.
   *
   * @param recipient The client name of the participant it is for.
   * @param data      Any bytes.
   * @return The id under which Listener::OnResult tells its fate; 1 for the first, and so on. -1, and no
   * result follows, when a limit of the queue refuses it (Limits).
   */
  long long Say(const QString& recipient, const QByteArray& data);

  /** @return Whether @p name is a member, this participant itself included. */
  bool HasMember(const QString& name) const;

  /** @return The names of all members, in ascending order of their UTF-8 bytes. */
  QList<QString> Members() const;

  /**
   * Runs the event loop, without sleeping, until @p name is a member.
   *
   * @param name    A client name.
   * @param timeout Milliseconds; 0 or less tests once.
   * @return Whether @p name is a member. From within a listener's call no new member can appear.
   */
  bool WaitMember(const QString& name, long long timeout);

  class TAVRIK_COMMON_NO_EXPORT Impl; ///< The participant itself.

private:
  std::shared_ptr<Impl> impl;
};

} // namespace Tavrik::Bazaar
