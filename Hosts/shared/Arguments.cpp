#include "Arguments.h"

#include "SafeText.h"

#include <CLI/CLI.hpp>

#include <QStringList>

namespace Ostrel
{
namespace
{

constexpr SecondsRange timeoutRange = {"a timeout", 0.001, 7 * 24 * 60 * 60};

// What is empty cannot be told from what is not given.
QString ParseUtf8(const std::string& text, const std::string& what, const std::string& type)
{
  const QByteArray bytes = QByteArray::fromStdString(text);
  if (bytes.isEmpty())
    throw CLI::ValidationError(type, what + " must not be empty");
  if (!IsUtf8(bytes))
    throw CLI::ValidationError(type, what + " must be UTF-8");
  return DecodeUtf8(bytes);
}

std::string CheckSeconds(const std::string& text, const SecondsRange& range)
{
  bool isNumber = false;
  const double seconds = QByteArray::fromStdString(text).toDouble(&isNumber);
  if (isNumber && seconds >= range.shortest && seconds <= range.longest)
    return {};
  return QStringLiteral("%1 must be between %2 and %3 seconds")
      .arg(QLatin1String(range.what), QString::number(range.shortest), QString::number(range.longest, 'f', 0))
      .toStdString();
}

} // namespace

CLI::Option* AddName(CLI::App& app, const std::string& option, QString& name, const std::string& help)
{
  return app
      .add_option_function<std::string>(
          option, [&name](const std::string& text) { name = ParseUtf8(text, "a name", "NAME"); }, help)
      ->allow_extra_args(false)
      ->type_name("NAME");
}

CLI::Option* AddPath(CLI::App& app, const std::string& option, std::function<void(const QString&)> take,
                     const std::string& help)
{
  return app
      .add_option_function<std::vector<std::string>>(
          option,
          [take = std::move(take)](const std::vector<std::string>& texts)
          {
            for (const std::string& text : texts)
              take(ParseUtf8(text, "a path", "PATH"));
          },
          help)
      ->allow_extra_args(false)
      ->type_name("PATH");
}

CLI::Option* AddSeconds(CLI::App& app, const std::string& option, SecondsRange range,
                        std::function<void(std::chrono::milliseconds)> take, const std::string& help)
{
  const auto takeSeconds = [take = std::move(take)](double seconds)
  { take(std::chrono::milliseconds(static_cast<long long>(seconds * 1000))); };
  return app.add_option_function<double>(option, takeSeconds, help)
      ->type_name("SECONDS")
      ->check([range](const std::string& text) { return CheckSeconds(text, range); });
}

CLI::Option* AddTimeout(CLI::App& app, std::optional<std::chrono::milliseconds>& timeout,
                        const std::string& help)
{
  return AddSeconds(
      app, "--timeout,-t", timeoutRange, [&timeout](std::chrono::milliseconds time) { timeout = time; },
      help);
}

} // namespace Ostrel
