#include "SizeCommand.h"

#include "ExitCodes.h"
#include "Options.h"
#include "Output.h"
#include "SafeText.h"
#include "Texts.h"
#include "Values.h"

#include <Common/FormatText.h>

namespace Ostrel
{

using namespace Tavrik::Cleaner;

namespace
{

struct Arguments
{
  bool json = false;
  bool isFrequency = false;
  int precision = 1;
  std::vector<std::string> texts;
};

constexpr int mostDigits = 20;
constexpr long long gigahertz = 1000000000;

QString GetKey(const Arguments& arguments)
{
  return arguments.isFrequency ? QStringLiteral("hertz") : QStringLiteral("bytes");
}

QString DescribeForms(const Arguments& arguments)
{
  return arguments.isFrequency
             ? Texts::tr("a frequency is written like \"800 MHz\" or \"2.4 GHz\"")
             : Texts::tr("a size is written like \"12 bytes\", \"1.5 KB\", \"20 MB\" or \"2 GB\"");
}

int RunParse(const Arguments& arguments)
{
  Output output(arguments.json ? Format::Json : Format::Human);
  int code = Done;
  for (const std::string& argument : arguments.texts)
  {
    const std::optional<QString> text = ToText(argument);
    if (!text)
      return WrongUsage;
    const std::optional<long long> number = arguments.isFrequency ? ParseHertz(*text) : ParseBytes(*text);
    if (!number)
    {
      PrintError(Texts::tr("cannot read %1: %2").arg(ShowName(*text), DescribeForms(arguments)));
      code = WrongUsage;
    }
    if (number || output.IsJson())
      output.Print(QByteArray::number(number.value_or(0)),
                   {{QStringLiteral("text"), *text}, {GetKey(arguments), number ? *number : QJsonValue()}});
  }
  return output.Combine(code);
}

QString ToDisplay(const Arguments& arguments, long long number)
{
  if (!arguments.isFrequency)
    return FormatSize(number, arguments.precision);
  const bool isLow = number > -gigahertz && number < gigahertz;
  return isLow ? FormatFrequencyMHz(number) : FormatFrequencyGHz(number, arguments.precision);
}

int RunFormat(const Arguments& arguments)
{
  Output output(arguments.json ? Format::Json : Format::Human);
  int code = Done;
  for (const std::string& argument : arguments.texts)
  {
    const QByteArray digits = QByteArray::fromStdString(argument);
    bool isNumber = false;
    const long long number = digits.toLongLong(&isNumber);
    if (!isNumber)
    {
      PrintError(Texts::tr("not a whole number of 64 bits: %1").arg(QString::fromUtf8(EscapeBytes(digits))));
      code = WrongUsage;
      continue;
    }
    const QString text = ToDisplay(arguments, number);
    output.Print(text.toUtf8(), {{GetKey(arguments), number}, {QStringLiteral("text"), text}});
  }
  return output.Combine(code);
}

void AddFrequency(CLI::App& verb, Arguments& arguments)
{
  verb.add_flag("--frequency,-f", arguments.isFrequency,
                "Clock frequencies in hertz instead of sizes in bytes");
}

} // namespace

void AddSizeCommand(CLI::App& app, Command& command)
{
  CLI::App* size = app.add_subcommand("size", "Turn sizes and frequencies into text and back");
  size->require_subcommand(1);
  const auto arguments = std::make_shared<Arguments>();
  CLI::App* parse = AddVerb(*size, "parse", "Print the bytes that texts such as \"2 GB\" stand for", command,
                            [arguments](Signals&) { return RunParse(*arguments); });
  parse->add_option("TEXT", arguments->texts, "A number, a blank and bytes, kB, MB, GB or TB, or bytes alone")
      ->required()
      ->type_name("");
  AddFrequency(*parse, *arguments);
  AddJson(*parse, arguments->json);
  parse->footer("A text that cannot be read ends with code 2; the others are printed all the same.");

  CLI::App* format = AddVerb(*size, "format", "Print numbers of bytes as texts", command,
                             [arguments](Signals&) { return RunFormat(*arguments); });
  format->add_option("BYTES", arguments->texts, "Whole numbers")->required()->type_name("");
  format->add_option("--precision,-p", arguments->precision, "Digits after the point (default: 1)")
      ->check(CLI::Range(0, mostDigits))
      ->type_name("DIGITS");
  AddFrequency(*format, *arguments);
  AddJson(*format, arguments->json);
}

} // namespace Ostrel
