#pragma once

#include <QByteArray>
#include <QString>

#include <memory>

/** The other ends of a bus, spoken to without Qt, so that they can act while Qt waits. Nothing here blocks.
 */
namespace Bus
{

/** One end of a connection. */
class Peer
{
public:
  explicit Peer(int descriptor) : descriptor(descriptor) {}
  ~Peer() { Close(); }

  Peer(const Peer&) = delete;
  Peer& operator=(const Peer&) = delete;

  /** A peer connected to @p path; not connected when nobody listens. */
  static std::unique_ptr<Peer> Connect(const QString& path);

  bool IsOpen() const { return descriptor >= 0; }
  /** What the system does not take at once is lost. */
  void Send(const QByteArray& bytes);
  /** What has come. */
  QByteArray Receive();
  void EndSending();
  void Close();

private:
  int descriptor;
};

/** Listens as a server does. */
class Door
{
public:
  explicit Door(const QString& path);
  /** Nobody listens any more, and the file is gone, if it was this one's. */
  ~Door();

  Door(const Door&) = delete;
  Door& operator=(const Door&) = delete;

  bool IsOpen() const { return descriptor >= 0; }
  /** Whoever has come; null when nobody has. */
  std::unique_ptr<Peer> Accept();

private:
  int descriptor;
  QByteArray path;
};

/** Sets up what Qt needs, once: an application, its own event loop, a private folder for the sockets. */
void SetUp();

/** A context name that no other process of this kind uses. */
QString ContextName();

} // namespace Bus
