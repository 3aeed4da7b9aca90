#pragma once

#include <Common/Bazaar.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

/** A listener that writes down what it hears, each call as one text. */
class Recorder : public Tavrik::Bazaar::Listener
{
public:
  void OnMessage(const QString& sender, const QByteArray& data) override
  {
    Note("message " + sender.toStdString() + " " + data.toStdString());
  }

  void OnResult(long long messageId, Tavrik::Bazaar::Error result, const QString& note) override
  {
    Note("result " + std::to_string(messageId) + " " + Tavrik::Bazaar::GetErrorString(result).toStdString() +
         note.toStdString());
  }

  void OnMemberJoined(const QString& name) override { Note("joined " + name.toStdString()); }
  void OnMemberLeft(const QString& name) override { Note("left " + name.toStdString()); }

  int Count(const std::string& text) const
  {
    int count = 0;
    for (const std::string& event : events)
      count += event == text ? 1 : 0;
    return count;
  }

  bool Has(const std::string& text) const { return Count(text) > 0; }

  /** Events whose text begins so. */
  std::vector<std::string> Of(const std::string& beginning) const
  {
    std::vector<std::string> found;
    for (const std::string& event : events)
      if (event.compare(0, beginning.size(), beginning) == 0)
        found.push_back(event);
    return found;
  }

  std::vector<std::string> events;
  std::function<void(const std::string&)> onEvent;

private:
  void Note(std::string event)
  {
    events.push_back(event);
    // A copy: the call may destroy this listener, or replace what it calls.
    const auto call = onEvent;
    if (call)
      call(event);
  }
};
