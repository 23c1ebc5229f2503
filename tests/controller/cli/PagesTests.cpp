// What manual pages, completion and help are made of.

#include <CLI/CLI.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "controller/cli/pages/CommandPages.h"
#include "controller/cli/pages/FooterText.h"
#include "controller/cli/pages/HelpFormatter.h"
#include "controller/cli/pages/Hints.h"
#include "controller/cli/pages/Manual.h"
#include "controller/cli/pages/ManualText.h"

namespace {

using namespace controller::cli;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;

TEST(FooterText, IsParagraphsSectionsAndStatuses) {
  const Footer footer = ReadFooter(
      "One line.\nAnd its second.\n\nAnother: with a colon.\n\n"
      "Examples:\n  vexalink add x \\\n      --at noon\n\n"
      "Exit status: 0 done, or 2 of it, 1 failed, it seems, 10 false.");
  EXPECT_THAT(footer.paragraphs,
              ElementsAre("One line. And its second.", "Another: with a colon."));
  ASSERT_EQ(footer.sections.size(), 1U);
  EXPECT_EQ(footer.sections[0].title, "Examples");
  EXPECT_THAT(footer.sections[0].lines, ElementsAre("vexalink add x \\", "    --at noon"));
  EXPECT_THAT(footer.statuses, ElementsAre(Pair("0", "done, or 2 of it."),
                                           Pair("1", "failed, it seems."), Pair("10", "false.")));
}

TEST(ManualText, LeavesRoffNothingToObey) {
  EXPECT_EQ(RoffText(".TH 'x' a\\b -c ±~^`"),
            "\\&.TH \\(aqx\\(aq a\\eb \\-c \\[u00B1]\\(ti\\(ha\\(ga");
  EXPECT_EQ(RoffLines("One. Two of it? Three."), "One.\nTwo of it?\nThree.\n");
  EXPECT_EQ(RoffLines("so .x is"), "so \\&.x is\n");
  std::istringstream lines(RoffLines(std::string(400, 'a') + ' ' + std::string(60, 'b') +
                                     " c d e f g h i j k l m n o p q r s t u v w x y z"));
  std::string line;
  std::getline(lines, line);
  while (std::getline(lines, line)) EXPECT_LE(line.size(), 78U);
}

TEST(HelpText, IsWrappedBelowItsColumn) {
  EXPECT_EQ(Wrapped("  --at TIME   When it is to be\n\nPlain words that go on\n", 30),
            "  --at TIME   When it is to be\n\nPlain words that go on\n");
  EXPECT_EQ(Wrapped("  -a    one two three four five\n", 20),
            "  -a    one two\n        three four\n        five\n");
  EXPECT_EQ(Wrapped("    aaa bbb ccc ddd\n", 12), "    aaa bbb\n    ccc ddd\n");
  EXPECT_EQ(Wrapped("0123456789012345\n", 10), "0123456789012345\n");
}

CommandPage Example() {
  CLI::App app("an example", "vexalink");
  static std::string text;
  static std::vector<std::string> texts;
  static bool flag = false;
  app.add_flag("--version", flag, "Tell it");
  CLI::App* add = app.add_subcommand("add", "Add: one. Or two");
  add->alias("plus");
  add->add_option("EVENT", texts, "Which")->required();
  add->add_option("-c,--color", text, "Colours: as said. Or not")->type_name("auto|always|N");
  add->add_option("--from", text, "A file")->type_name("FILE")->envname("FROM")->required();
  add->add_option("--hidden", text)->group("");
  CLI::App* token = app.add_subcommand("token", "Tokens");
  token->add_subcommand("list", "List them");
  return ReadPages(app);
}

TEST(CommandPages, SayWhatTheDefinitionsSay) {
  const CommandPage program = Example();
  EXPECT_EQ(program.name, "vexalink");
  EXPECT_THAT(CommandNames(program), ElementsAre("add", "plus", "token"));
  const CommandPage& add = program.commands[0];
  EXPECT_EQ(PathOf(add), "add");
  ASSERT_EQ(add.options.size(), 3U);  // with --help
  EXPECT_THAT(add.options[1].names, ElementsAre("-c", "--color"));
  EXPECT_THAT(add.options[1].Choices(), ElementsAre("auto", "always"));
  EXPECT_EQ(ShortDescription(add.options[1]), "Colours");
  EXPECT_EQ(HintFor(add.options[2]).kind, Hint::Kind::kFiles);
  EXPECT_TRUE(add.options[2].isRequired);
  EXPECT_EQ(add.options[2].environment, "FROM");
  ASSERT_EQ(add.arguments.size(), 1U);
  EXPECT_TRUE(add.arguments[0].isMany);
  EXPECT_EQ(HintFor(add.arguments[0]).kind, Hint::Kind::kEvents);
  EXPECT_EQ(PathOf(program.commands[1].commands[0]), "token list");
  EXPECT_EQ(program.commands[1].commands[0].LastName(), "list");
}

TEST(CommandPages, BecomeManualPages) {
  const CommandPage program = Example();
  EXPECT_EQ(ManualFileName(program.commands[0]), "vexalink-add.1");
  const std::string page = ManualPage(program.commands[0], program);
  EXPECT_THAT(page, HasSubstr(".TP\n\\fB\\-c\\fR, \\fB\\-\\-color\\fR \\fIauto|always|N\\fR\n"));
  EXPECT_THAT(page, HasSubstr("Must be given.\nEnvironment: FROM.\n"));
  EXPECT_THAT(page, HasSubstr("\\fIEVENT\\fR...\n"));
  EXPECT_THAT(page, testing::Not(HasSubstr("hidden")));
  EXPECT_THAT(ManualPage(program.commands[1], program),
              HasSubstr(".TP\n\\fBlist\\fR\nList them.\n"));
}

}  // namespace
