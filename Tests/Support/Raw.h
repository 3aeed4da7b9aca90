#pragma once

#include "Support/Spin.h"
#include "Support/Wire.h"

#include <QByteArray>
#include <QLocalServer>
#include <QLocalSocket>
#include <QString>

#include <memory>
#include <vector>

/** A name to meet under; removes the socket file that a killed server has left. Outlives all who meet. */
class Meeting
{
public:
  explicit Meeting(const QString& context) : context(context) {}
  ~Meeting();

  Meeting(const Meeting&) = delete;
  Meeting& operator=(const Meeting&) = delete;

  const QString context;
};

/** One end of a connection, spoken by hand. What comes is kept as bytes and as packets. */
class Link
{
public:
  explicit Link(std::unique_ptr<QLocalSocket> taken);
  virtual ~Link();

  Link(const Link&) = delete;
  Link& operator=(const Link&) = delete;

  void Write(const QByteArray& bytes);
  void Close() { socket->close(); }
  void StopReading();
  void ResumeReading();
  bool IsConnected() const { return socket->state() == QLocalSocket::ConnectedState; }
  bool IsClosed(int limit = 20000);

  std::vector<Wire::Received> Of(const QByteArray& command) const;
  /** Waits until so many packets of @p command have come in all. */
  bool Got(const QByteArray& command, int count, int limit = 20000);
  /** Waits for a RESULT of that id, and gives its word. */
  QByteArray Result(qint64 id, int limit = 20000);
  /** The names of the latest STATUS, joined by commas. */
  QByteArray Members() const;
  bool Sees(const QByteArray& members, int limit = 20000);

  std::unique_ptr<QLocalSocket> socket;
  QByteArray bytes;
  std::vector<Wire::Received> packets;

private:
  void Read();

  QByteArray stream;
};

/** Connects to the server of @p context. */
class RawClient : public Link
{
public:
  explicit RawClient(const QString& context);

  /** Introduces itself; whether it is a member then. */
  bool Join(const QByteArray& name);
  void Say(qint64 id, const QByteArray& recipient, const QByteArray& data);

  const QByteArray context;
};

/** Listens where the server of @p context would. */
class RawServer
{
public:
  explicit RawServer(const QString& context);

  RawServer(const RawServer&) = delete;
  RawServer& operator=(const RawServer&) = delete;

  /** The next who connects; empty when nobody does in time. */
  std::unique_ptr<Link> Next(int limit = 20000);

  QLocalServer server;
};
