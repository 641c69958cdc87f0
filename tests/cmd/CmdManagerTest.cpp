#include "support/Capture.h"
#include "support/Thrown.h"

#include <lumivane/cmd/CmdManager.h>

#include <initializer_list>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Cmd::CmdManager;

// parseArgs as a `main` calls it, with a program name before the options.
void parse(std::initializer_list<std::string> options) {
  std::vector<std::string> texts = {"-if=program"};
  texts.insert(texts.end(), options);
  std::vector<char*> argv;
  argv.reserve(texts.size());
  for (std::string& text : texts) argv.push_back(text.data());
  CmdManager::parseArgs(static_cast<int>(argv.size()), argv.data());
}

// The settings are the process's own: each test starts from the first values.
class CommandLine : public ::testing::Test {
 protected:
  CommandLine() { reset(); }
  ~CommandLine() override { reset(); }

 private:
  static void reset() {
    CmdManager::inputFile.clear();
    CmdManager::outputFile.clear();
    CmdManager::show = false;
    CmdManager::minSegmentsNumber = 6;
    CmdManager::maxSegmentsLength = 0.0;
    CmdManager::projectionType = 1;
  }
};

// What the settings were when the program had been loaded, before any test.
struct Settings {
  std::string inputFile = CmdManager::inputFile;
  std::string outputFile = CmdManager::outputFile;
  bool show = CmdManager::show;
  int minSegmentsNumber = CmdManager::minSegmentsNumber;
  double maxSegmentsLength = CmdManager::maxSegmentsLength;
  int projectionType = CmdManager::projectionType;
};
const Settings AtLoad;

void expectFirstValues(const Settings& settings) {
  EXPECT_EQ("", settings.inputFile);
  EXPECT_EQ("", settings.outputFile);
  EXPECT_FALSE(settings.show);
  EXPECT_EQ(6, settings.minSegmentsNumber);
  EXPECT_EQ(0.0, settings.maxSegmentsLength);
  EXPECT_EQ(1, settings.projectionType);
}

TEST_F(CommandLine, SettingsStartAtTheirFirstValues) { expectFirstValues(AtLoad); }

TEST_F(CommandLine, NoArgumentsChangeNothing) {
  CmdManager::parseArgs(0, nullptr);
  CmdManager::parseArgs(-1, nullptr);
  parse({});
  expectFirstValues(Settings());
}

TEST_F(CommandLine, ProgramNameIsNotLookedAt) {
  parse({"-of=shot.json"});
  EXPECT_EQ("", CmdManager::inputFile);
}

TEST_F(CommandLine, FileNamesAreTakenAsTheyStand) {
  parse({"-if=a scene.json", "-of= shot%d.json"});
  EXPECT_EQ("a scene.json", CmdManager::inputFile);
  EXPECT_EQ(" shot%d.json", CmdManager::outputFile);
}

TEST_F(CommandLine, OnlyTheFirstEqualsSignSplits) {
  parse({"-if=a=b.json"});
  EXPECT_EQ("a=b.json", CmdManager::inputFile);
}

TEST_F(CommandLine, EmptyValueEmptiesTheFileName) {
  parse({"-if=scene.json", "-if="});
  EXPECT_EQ("", CmdManager::inputFile);
}

TEST_F(CommandLine, LaterOptionOverridesAnEarlierOne) {
  parse({"-if=a", "-sn=3", "-if=b", "-sn=4"});
  EXPECT_EQ("b", CmdManager::inputFile);
  EXPECT_EQ(4, CmdManager::minSegmentsNumber);
}

// Wanted: the failed search for `=` wraps to the start of the argument.
TEST_F(CommandLine, OptionWithoutEqualsSignIsItsOwnValue) {
  parse({"-if", "-of"});
  EXPECT_EQ("-if", CmdManager::inputFile);
  EXPECT_EQ("-of", CmdManager::outputFile);
}

TEST_F(CommandLine, ShowIsTurnedOnByExactlyOneOnly) {
  for (const char* option :
       {"-show=true", "-show=0", "-show=2", "-show", "-show=", "-show=1 ", "-show=01"}) {
    parse({option});
    EXPECT_FALSE(CmdManager::show) << option;
  }
  parse({"-show=1"});
  EXPECT_TRUE(CmdManager::show);
}

TEST_F(CommandLine, NoOptionTurnsShowOff) {
  parse({"-show=1", "-show=0"});
  EXPECT_TRUE(CmdManager::show);
}

TEST_F(CommandLine, ProjectionTypeIsTwoForExactlyTwo) {
  parse({"-pt=2"});
  EXPECT_EQ(2, CmdManager::projectionType);
}

TEST_F(CommandLine, ProjectionTypeIsOneForAnythingElse) {
  for (const char* option : {"-pt=1", "-pt=3", "-pt=22", "-pt=", "-pt", "-pt= 2"}) {
    CmdManager::projectionType = 2;
    parse({option});
    EXPECT_EQ(1, CmdManager::projectionType) << option;
  }
}

TEST_F(CommandLine, SegmentsNumberIsTakenIfAboveZero) {
  parse({"-sn=1"});
  EXPECT_EQ(1, CmdManager::minSegmentsNumber);
  parse({"-sn=0", "-sn=-3"});
  EXPECT_EQ(1, CmdManager::minSegmentsNumber);
}

TEST_F(CommandLine, SegmentsNumberEndsAtTheFirstCharacterThatDoesNotFit) {
  parse({"-sn=12abc"});
  EXPECT_EQ(12, CmdManager::minSegmentsNumber);
  parse({"-sn= \t+7.9"});
  EXPECT_EQ(7, CmdManager::minSegmentsNumber);
  parse({"-sn=0x10"});  // base 10: this is 0
  EXPECT_EQ(7, CmdManager::minSegmentsNumber);
}

TEST_F(CommandLine, SegmentsNumberThatIsNoNumberThrows) {
  for (const char* option : {"-sn=abc", "-sn=", "-sn", "-sn=-"})
    EXPECT_EQ("invalid stoi argument", thrownText<std::invalid_argument>([&] { parse({option}); }))
        << option;
  EXPECT_EQ(6, CmdManager::minSegmentsNumber);
}

TEST_F(CommandLine, SegmentsNumberBeyondIntThrows) {
  for (const char* option : {"-sn=2147483648", "-sn=-2147483649", "-sn=99999999999999999999"})
    EXPECT_EQ("stoi argument out of range", thrownText<std::out_of_range>([&] { parse({option}); }))
        << option;
  EXPECT_EQ(6, CmdManager::minSegmentsNumber);
  parse({"-sn=2147483647"});
  EXPECT_EQ(2147483647, CmdManager::minSegmentsNumber);
}

TEST_F(CommandLine, SegmentsLengthIsTakenAboveZeroUpToOne) {
  parse({"-sl=1"});
  EXPECT_EQ(1.0, CmdManager::maxSegmentsLength);
  parse({"-sl=0.25m"});
  EXPECT_EQ(0.25, CmdManager::maxSegmentsLength);
  for (const char* option : {"-sl=1.0001", "-sl=0", "-sl=-0.5", "-sl=-0"}) {
    parse({option});
    EXPECT_EQ(0.25, CmdManager::maxSegmentsLength) << option;
  }
}

TEST_F(CommandLine, SegmentsLengthThatIsNotFiniteIsIgnored) {
  parse({"-sl=nan", "-sl=inf", "-sl=-inf"});
  EXPECT_EQ(0.0, CmdManager::maxSegmentsLength);
}

TEST_F(CommandLine, SegmentsLengthThatIsNoNumberThrows) {
  for (const char* option : {"-sl=abc", "-sl=", "-sl"})
    EXPECT_EQ("invalid stod argument", thrownText<std::invalid_argument>([&] { parse({option}); }))
        << option;
}

TEST_F(CommandLine, SegmentsLengthBeyondDoubleThrows) {
  for (const char* option : {"-sl=1e999", "-sl=-1e999", "-sl=1e-999"})
    EXPECT_EQ("stod argument out of range", thrownText<std::out_of_range>([&] { parse({option}); }))
        << option;
  EXPECT_EQ(0.0, CmdManager::maxSegmentsLength);
}

TEST_F(CommandLine, OptionsBeforeABadOneStayInForce) {
  EXPECT_THROW(parse({"-if=a", "-sn=x", "-of=b"}), std::invalid_argument);
  EXPECT_EQ("a", CmdManager::inputFile);
  EXPECT_EQ("", CmdManager::outputFile);
}

TEST_F(CommandLine, UnknownNamesAreIgnoredInSilence) {
  const std::string printed = capturedStdout([] {
    parse({"-IF=x", "if=x", "--if=x", "-iff=x", "", "=x", "-Show=1"});
  });
  EXPECT_EQ("", printed);
  expectFirstValues(Settings());
}

TEST_F(CommandLine, ParsingPrintsNothing) {
  EXPECT_EQ("", capturedStdout([] { parse({"-if=a", "-show=1", "-sn=0", "-sl=7"}); }));
}

TEST_F(CommandLine, ManagerHasNoStateOfItsOwn) {
  CmdManager a;
  CmdManager b;
  CmdManager::inputFile = "kept";
  b = a;
  EXPECT_EQ("kept", CmdManager::inputFile);
}

}  // namespace
}  // namespace Lumivane::Test
