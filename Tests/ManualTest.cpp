// The manual pages beside the programs: what one of them says, the other says too.

#include <gmock/gmock.h>

#include <QFile>
#include <QMap>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QStringList>

using testing::IsEmpty;

namespace
{

struct Program
{
  const char* name;
  const char* path;
};

void PrintTo(const Program& program, std::ostream* out)
{
  *out << program.name;
}

QString Ask(const char* program, const QStringList& arguments)
{
  QProcess process;
  process.start(QString::fromLocal8Bit(program), arguments);
  EXPECT_TRUE(process.waitForFinished(60000));
  EXPECT_EQ(0, process.exitCode());
  return QString::fromUtf8(process.readAllStandardOutput());
}

QString Read(const QString& path)
{
  QFile file(path);
  EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
  return QString::fromUtf8(file.readAll());
}

/** What @p pattern captures first at each of its places in @p text. */
QStringList FindAll(const QString& text, const char* pattern)
{
  QStringList found;
  auto matches =
      QRegularExpression(QString::fromLatin1(pattern), QRegularExpression::MultilineOption).globalMatch(text);
  while (matches.hasNext())
    found << matches.next().captured(1);
  return found;
}

std::vector<std::string> Sorted(const QStringList& words)
{
  const QSet<QString> distinct(words.begin(), words.end());
  std::vector<std::string> sorted;
  for (const QString& word : distinct)
    sorted.push_back(word.toStdString());
  std::sort(sorted.begin(), sorted.end());
  return sorted;
}

/** One option of one verb, as the program tells it to whoever completes its command line. */
struct Option
{
  QString place;
  QString name; // the first long one, without dashes
  QString description;
};

class ManualTest : public testing::TestWithParam<Program>
{
protected:
  QList<Option> GetOptions() const
  {
    QList<Option> options;
    const QRegularExpression line(
        QStringLiteral("^complete -c \\S+ -n \"\\S+ '([^']*)'\" -l (\\S+).* -d '(.*)'$"));
    for (const QString& text : Ask(GetParam().path, {"--completions", "fish"}).split('\n'))
    {
      const auto match = line.match(text);
      if (match.hasMatch())
        options.append({match.captured(1), match.captured(2), match.captured(3).replace("\\'", "'")});
    }
    EXPECT_FALSE(options.isEmpty());
    return options;
  }

  // Without the marks of code, and without the options of another program.
  const QString manual = Read(QStringLiteral(TAVRIK_MANUALS "/") + GetParam().name + QStringLiteral(".md"))
                             .remove(QRegularExpression(QStringLiteral("`systemctl[^`]*`")))
                             .remove(QLatin1Char('`'));
};

TEST_P(ManualTest, NamesEveryOption)
{
  QStringList missing;
  for (const Option& option : GetOptions())
    if (!manual.contains("--" + option.name))
      missing << option.place + " --" + option.name;
  EXPECT_THAT(Sorted(missing), IsEmpty());
}

TEST_P(ManualTest, NamesNoOptionThatIsNotThere)
{
  QSet<QString> known;
  for (const Option& option : GetOptions())
    known.insert(option.name);
  QStringList unknown;
  for (const QString& name : FindAll(manual, "(?<![-\\w])--([a-z][a-z-]+)"))
    if (!known.contains(name))
      unknown << name;
  EXPECT_THAT(Sorted(unknown), IsEmpty());
}

TEST_P(ManualTest, NamesEveryVerb)
{
  QStringList missing;
  for (const QString& verb :
       FindAll(Ask(GetParam().path, {"--completions", "fish"}), "^complete .*'\" -a ([a-z-]+) -d "))
    if (!QRegularExpression(QStringLiteral("\\b%1\\b").arg(verb)).match(manual).hasMatch())
      missing << verb;
  EXPECT_THAT(Sorted(missing), IsEmpty());
}

TEST_P(ManualTest, TellsEveryDefaultThatTheHelpTells)
{
  const QRegularExpression pattern(QStringLiteral("\\(default: ([^;)]+)"));
  QStringList missing;
  for (const Option& option : GetOptions())
  {
    const auto match = pattern.match(option.description);
    if (!match.hasMatch())
      continue;
    // Where a table names the option, its rows are what counts.
    const QStringList lines = manual.split('\n').filter("--" + option.name);
    const QStringList rows = lines.filter(QRegularExpression(QStringLiteral("^\\|")));
    const QStringList said = (rows.isEmpty() ? lines : rows).filter(match.captured(1));
    if (said.isEmpty())
      missing << option.place + " --" + option.name + ": " + match.captured(1);
  }
  EXPECT_THAT(Sorted(missing), IsEmpty());
}

TEST_P(ManualTest, ListsNoExitCodeThatIsNotInTheTableOfAll)
{
  const std::vector<std::string> all =
      Sorted(FindAll(Read(QStringLiteral(TAVRIK_EXIT_CODES)), "^ \\* \\| (\\d+) +\\|"));
  const QString section = manual.mid(manual.indexOf(QLatin1String("## Exit codes")));
  QStringList strange;
  for (const QString& code : FindAll(section, "^\\| (\\d+)\\b[^|]*\\|"))
    if (code.toInt() < 128 && std::find(all.begin(), all.end(), code.toStdString()) == all.end())
      strange << code;
  EXPECT_THAT(Sorted(strange), IsEmpty());
  EXPECT_FALSE(FindAll(section, "^\\| (\\d+)\\b[^|]*\\|").isEmpty());
}

INSTANTIATE_TEST_SUITE_P(Of, ManualTest,
                         testing::Values(Program{"ostrel", OSTREL},
                                         Program{"ostrel-scheduler", OSTREL_SCHEDULER}),
                         [](const auto& program)
                         {
                           std::string name = program.param.name;
                           name.erase(std::remove(name.begin(), name.end(), '-'), name.end());
                           return name;
                         });

TEST(ExitCodes, OfTheHeadersTableAreThoseOfItsEnumeration)
{
  const QString header = Read(QStringLiteral(TAVRIK_EXIT_CODES));
  QStringList values = FindAll(header, "^  [A-Z]\\w+ = (\\d+),?$");
  values.removeOne(QStringLiteral("128")); // stands for all signals
  EXPECT_EQ(Sorted(values), Sorted(FindAll(header, "^ \\* \\| (\\d+) +\\|")));
}

TEST(ExitCodes, OfTheManualAreThoseOfTheTable)
{
  const QString manual = Read(QStringLiteral(TAVRIK_MANUALS "/ostrel.md"));
  QStringList codes =
      FindAll(manual.mid(manual.indexOf(QLatin1String("## Exit codes"))), "^\\| (\\d+)\\b[^|]*\\|");
  codes.removeOne(QStringLiteral("129")); // a row for all signals
  EXPECT_EQ(Sorted(codes), Sorted(FindAll(Read(QStringLiteral(TAVRIK_EXIT_CODES)), "^ \\* \\| (\\d+) +\\|")));
}

TEST(ExitCodes, OfTheHelpAreThoseOfTheTable)
{
  QStringList codes = FindAll(Ask(OSTREL, {"--help"}), "^ +(\\d+)(?: to \\d+)?  ");
  codes << FindAll(Ask(OSTREL, {"bus", "doctor", "--help"}), "^  (\\d+) +");
  codes.removeOne(QStringLiteral("129"));
  EXPECT_EQ(Sorted(codes), Sorted(FindAll(Read(QStringLiteral(TAVRIK_EXIT_CODES)), "^ \\* \\| (\\d+) +\\|")));
}

} // namespace
