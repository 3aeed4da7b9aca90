// The completion scripts that the program prints, asked by the real shells.

#include <gmock/gmock.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;

namespace
{

using Words = std::vector<std::string>;

QByteArray Ask(const QString& program, const QStringList& arguments,
               const QString& folder = QDir::currentPath())
{
  QProcess process;
  process.setWorkingDirectory(folder);
  process.setStandardInputFile(QProcess::nullDevice());
  process.start(program, arguments);
  EXPECT_TRUE(process.waitForFinished(60000));
  EXPECT_EQ(0, process.exitCode());
  EXPECT_EQ("", process.readAllStandardError());
  return process.readAllStandardOutput();
}

// What each shell does when the tabulator key is pressed behind the words "$@" (fish: one line).
const char* const askBash = "source ./script; COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1)); _ostrel; "
                            "printf '%s\\n' \"${COMPREPLY[@]}\"";
const char* const askZsh = "_files() { print -l -- *(N) }; compadd() { shift; print -l -- \"$@\" }\n"
                           "_describe() { local list=${@[-1]}; print -l -- ${${(P)list}%%:*} }\n"
                           "words=(\"$@\"); CURRENT=$#; set --; source ./script";
const char* const askFish = "source ./script; complete -C \"$argv\"";

class CompletionsTest : public testing::TestWithParam<const char*>
{
protected:
  void SetUp() override
  {
    if (QStandardPaths::findExecutable(shell).isEmpty())
      GTEST_SKIP() << "there is no " << GetParam() << " here";
    const QByteArray script = Ask(QStringLiteral(OSTREL), {QStringLiteral("--completions"), shell});
    ASSERT_FALSE(script.isEmpty());
    QFile file(folder.filePath(QStringLiteral("script")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(script);
    QDir(folder.path()).mkdir(QStringLiteral("bin"));
    ASSERT_TRUE(QFile::link(QStringLiteral(OSTREL), folder.filePath(QStringLiteral("bin/ostrel"))));
    qputenv("PATH", folder.filePath(QStringLiteral("bin")).toUtf8() + ':' + path);
  }

  void TearDown() override { qputenv("PATH", path); }

  // The candidates for the last of the words that begin with it, as all shells narrow them down by
  // themselves.
  Words Complete(const QStringList& words)
  {
    QStringList arguments;
    if (shell == QLatin1String("bash"))
      arguments << "--norc"
                << "--noprofile"
                << "-c" << askBash << "bash" << words;
    else if (shell == QLatin1String("zsh"))
      arguments << "-f"
                << "-c" << askZsh << "zsh" << words;
    else
      arguments << "--no-config"
                << "-c" << askFish << words.join(QLatin1Char(' '));
    Words found;
    for (const QByteArray& line : Ask(shell, arguments, folder.path()).split('\n'))
    {
      const QByteArray word = line.split('\t').first();
      if (!word.isEmpty() && word.startsWith(words.last().toUtf8()))
        found.push_back(word.toStdString());
    }
    return found;
  }

  const QByteArray path = qgetenv("PATH");
  const QString shell = QString::fromLatin1(GetParam());
  QTemporaryDir folder;
};

TEST_P(CompletionsTest, OffersTheVerbs)
{
  EXPECT_THAT(Complete({"ostrel", ""}), Contains("bus"));
  EXPECT_THAT(Complete({"ostrel", "bus", "d"}), ElementsAre("doctor"));
  EXPECT_THAT(Complete({"ostrel", "--verbose", "bus", "l"}), ElementsAre("listen"));
}

TEST_P(CompletionsTest, OffersTheOptionsOfTheVerb)
{
  EXPECT_THAT(Complete({"ostrel", "bus", "send", "--f"}), ElementsAre("--file"));
  EXPECT_THAT(Complete({"ostrel", "bus", "listen", "--f"}), IsEmpty());
}

TEST_P(CompletionsTest, OffersTheOptionsThatBelongToAGroup)
{
  EXPECT_THAT(Complete({"ostrel", "firewall", "edit", "--"}),
              IsSupersetOf({"--add", "--remove", "--block", "--unblock", "--set", "--dry-run", "--timeout"}));
  EXPECT_THAT(Complete({"ostrel", "firewall", "edit", "--add", "scr"}), ElementsAre("script"));
}

TEST_P(CompletionsTest, DoesNotOfferWhatOnlyPackagesUse)
{
  EXPECT_THAT(Complete({"ostrel", "--"}), Not(Contains("--completions")));
}

TEST_P(CompletionsTest, OffersFilesWhereAFileIsWanted)
{
  EXPECT_THAT(Complete({"ostrel", "bus", "send", "--file", "scr"}), ElementsAre("script"));
}

TEST_P(CompletionsTest, OffersWhoIsOnTheBus)
{
  QProcess member;
  member.start(QStringLiteral(OSTREL), {"bus", "listen", "--json", "--name", "gardener"});
  QByteArray events;
  while (!events.contains("ready") && member.waitForReadyRead(30000))
    events += member.readAllStandardOutput();
  ASSERT_TRUE(events.contains("ready"));

  EXPECT_THAT(Complete({"ostrel", "bus", "send", "gar"}), ElementsAre("gardener"));

  member.terminate();
  EXPECT_TRUE(member.waitForFinished());
}

INSTANTIATE_TEST_SUITE_P(In, CompletionsTest, testing::Values("bash", "zsh", "fish"),
                         [](const auto& shell) { return std::string(shell.param); });

} // namespace
