#include "Options.h"

#include "Output.h"
#include "SafeText.h"
#include "Texts.h"

#include <QFile>

namespace Ostrel
{
namespace
{

constexpr double shortestTimeout = 0.001;
constexpr double longestTimeout = 7 * 24 * 60 * 60;

std::string CheckTimeout(const std::string& text)
{
  bool isNumber = false;
  const double seconds = QByteArray::fromStdString(text).toDouble(&isNumber);
  return isNumber && seconds >= shortestTimeout && seconds <= longestTimeout
             ? std::string()
             : "a timeout must be between 0.001 and 604800 seconds";
}

QString ShowBytes(const QByteArray& bytes)
{
  return QString::fromUtf8(EscapeBytes(bytes));
}

} // namespace

CLI::App* AddVerb(CLI::App& parent, const std::string& name, const std::string& help, Command& command,
                  const Command& action)
{
  CLI::App* verb = parent.add_subcommand(name, help);
  verb->final_callback([&command, action] { command = action; });
  return verb;
}

void AddTimeout(CLI::App& verb, std::optional<std::chrono::milliseconds>& timeout, const std::string& help)
{
  verb.add_option_function<double>(
          "--timeout,-t",
          [&timeout](double seconds)
          { timeout = std::chrono::milliseconds(static_cast<long long>(seconds * 1000)); },
          help)
      ->type_name("SECONDS")
      ->check(CheckTimeout);
}

void AddJson(CLI::App& verb, bool& json)
{
  verb.add_flag("--json,-j", json, "Print JSON, one object per line and nothing else");
}

std::optional<QString> ToText(const std::string& argument)
{
  const QByteArray bytes = QByteArray::fromStdString(argument);
  if (IsUtf8(bytes))
    return DecodeUtf8(bytes);
  PrintError(Texts::tr("not UTF-8: %1").arg(ShowBytes(bytes)));
  return {};
}

std::optional<QString> ToPath(const std::string& argument)
{
  const QByteArray bytes = QByteArray::fromStdString(argument);
  const QString path = QFile::decodeName(bytes);
  if (!path.contains(QChar::ReplacementCharacter) || QFile::encodeName(path) == bytes)
    return path;
  PrintError(Texts::tr("the path is no text in this locale: %1").arg(ShowBytes(bytes)));
  return {};
}

} // namespace Ostrel
