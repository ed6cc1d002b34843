#include "words.h"

#include <gtest/gtest.h>

namespace {

using List = std::vector<std::string>;
using saish::words;

std::string complaint(std::string_view line) {
  try {
    words(line);
  } catch (const saish::BadInput& bad) {
    return bad.what();
  }
  return "";
}

TEST(Words, AreSeparatedByBlanksTabsAndCarriageReturns) {
  EXPECT_EQ(words("sai_vlan_create 0 10"), (List{"sai_vlan_create", "0", "10"}));
  EXPECT_EQ(words(" \tshow \t vlan  "), (List{"show", "vlan"}));
  EXPECT_EQ(words("show vlan\r"), (List{"show", "vlan"}));
}

TEST(Words, ABlankLineHasNone) {
  EXPECT_EQ(words(""), List{});
  EXPECT_EQ(words(" \t \r"), List{});
}

TEST(Words, ACommentBeginsWhereAWordBeginsWithTheSign) {
  EXPECT_EQ(words("# all of it \"and this"), List{});
  EXPECT_EQ(words("  #indented"), List{});
  EXPECT_EQ(words("show vlan # the table"), (List{"show", "vlan"}));
  EXPECT_EQ(words("show vlan#1"), (List{"show", "vlan#1"}));
  EXPECT_EQ(words("sai_err \"#1\""), (List{"sai_err", "#1"}));
}

TEST(Words, AQuotedTextIsOneWord) {
  EXPECT_EQ(words("sai_err \"two words\" x"), (List{"sai_err", "two words", "x"}));
  EXPECT_EQ(words("\"\""), List{""});
  EXPECT_EQ(words("x \"\" y"), (List{"x", "", "y"}));
}

TEST(Words, QuotedAndUnquotedPartsThatTouchAreOneWord) {
  EXPECT_EQ(words("a\"b c\"d"), List{"ab cd"});
  EXPECT_EQ(words("\"a\"\"b\""), List{"ab"});
  EXPECT_EQ(words("a\"#b\""), List{"a#b"});
}

TEST(Words, ABackslashQuotesOnlyInsideQuotes) {
  EXPECT_EQ(words(R"("say \"no\"")"), List{R"(say "no")"});
  EXPECT_EQ(words(R"("a\\b")"), List{R"(a\b)"});
  EXPECT_EQ(words(R"("a\\")"), List{R"(a\)"});
  EXPECT_EQ(words(R"(a\b c\\)"), (List{R"(a\b)", R"(c\\)"}));
}

TEST(Words, ARecordIsOneWord) {
  EXPECT_EQ(words("x {a=1, b={c=2, d=[3, 4]} } y"), (List{"x", "{a=1, b={c=2, d=[3, 4]} }", "y"}));
  EXPECT_EQ(words("{} {a=#1}#"), (List{"{}", "{a=#1}#"}));
  EXPECT_EQ(words("a{b c}"), (List{"a{b", "c}"}));
  EXPECT_EQ(words("\"{a\" b}"), (List{"{a", "b}"}));
}

TEST(Words, ABraceThatIsNotClosedIsBadInput) {
  EXPECT_EQ(complaint("x {a=1, b={c=2}"), "a record has no closing brace: {a=1, b={c=2}");
  EXPECT_EQ(complaint("{"), "a record has no closing brace: {");
}

TEST(Words, AQuoteThatIsNotClosedIsBadInput) {
  EXPECT_EQ(complaint("sai_err \"two words"), "a quoted text has no closing quote: \"two words");
  EXPECT_EQ(complaint("sai_err \""), "a quoted text has no closing quote: \"");
  EXPECT_EQ(complaint(R"(sai_err "a\")"), R"(a quoted text has no closing quote: "a")");
  EXPECT_EQ(complaint(R"(sai_err "a\)"), R"(a quoted text has no closing quote: "a\)");
  EXPECT_EQ(complaint("\"a\" b\""), "a quoted text has no closing quote: \"");
}

}  // namespace
