#include "PlixShellScanner.h"

#include <gtest/gtest.h>

#include <string>

namespace {
// The context in which the shell reads the first "%v" of command.
PlixShellContext contextOfV(const std::string& command)
{
    return PlixShellScanner::contextAt(command, command.find("%v"));
}

using Context = PlixShellContext;
} // namespace

TEST(PlixShellScanner, UnquotedPlaceholderIsBare)
{
    EXPECT_EQ(contextOfV("echo %v"), Context::Bare);
    EXPECT_EQ(contextOfV("%v"), Context::Bare);
    EXPECT_EQ(contextOfV("echo a%v;echo"), Context::Bare);
}

TEST(PlixShellScanner, PlaceholderInsideDoubleQuotesIsDoubleQuoted)
{
    EXPECT_EQ(contextOfV("echo \"%v\""), Context::DoubleQuoted);
    EXPECT_EQ(contextOfV("echo \"a b %v c\""), Context::DoubleQuoted);
    EXPECT_EQ(contextOfV("echo \"it's %v\""), Context::DoubleQuoted);
    EXPECT_EQ(contextOfV("echo \"$'%v'\""), Context::DoubleQuoted);
}

TEST(PlixShellScanner, PlaceholderInsideSingleQuotesIsSingleQuoted)
{
    EXPECT_EQ(contextOfV("echo '%v'"), Context::SingleQuoted);
    EXPECT_EQ(contextOfV("echo 'say \"%v'"), Context::SingleQuoted);
    EXPECT_EQ(contextOfV("echo '\\%v'"), Context::SingleQuoted);
    EXPECT_EQ(contextOfV("echo '$(%v)'"), Context::SingleQuoted);
}

TEST(PlixShellScanner, ClosedQuotesLeaveTheRestBare)
{
    EXPECT_EQ(contextOfV("echo \"a\" %v"), Context::Bare);
    EXPECT_EQ(contextOfV("echo 'a' %v"), Context::Bare);
    EXPECT_EQ(contextOfV("echo \"'\" %v"), Context::Bare);
    EXPECT_EQ(contextOfV("echo '\"' %v"), Context::Bare);
    EXPECT_EQ(contextOfV("echo '' \"\" %v"), Context::Bare);
}

TEST(PlixShellScanner, SubstitutionInsideDoubleQuotesStartsBare)
{
    EXPECT_EQ(contextOfV("echo \"$(printf %v)\""), Context::Bare);
    EXPECT_EQ(contextOfV("echo \"$(printf '%v')\""), Context::SingleQuoted);
    EXPECT_EQ(contextOfV("echo \"x $(date) %v\""), Context::DoubleQuoted);
    EXPECT_EQ(contextOfV("echo \"$( (true) ) %v\""), Context::DoubleQuoted);
}

TEST(PlixShellScanner, DoubleQuotesInsideSubstitutionAreDoubleQuoted)
{
    EXPECT_EQ(contextOfV("echo $(printf \"%v\")"), Context::DoubleQuoted);
    EXPECT_EQ(contextOfV("echo \"$(printf \"%v\")\""), Context::DoubleQuoted);
    EXPECT_EQ(contextOfV("echo \"$(printf \"$(printf %v)\")\""), Context::Bare);
    EXPECT_EQ(contextOfV("echo $(printf \"a\") %v"), Context::Bare);
}

TEST(PlixShellScanner, EscapedQuotesNeitherOpenNorClose)
{
    EXPECT_EQ(contextOfV("echo \\\" %v"), Context::Bare);
    EXPECT_EQ(contextOfV("echo \\' %v"), Context::Bare);
    EXPECT_EQ(contextOfV("echo \"\\\" %v\""), Context::DoubleQuoted);
    EXPECT_EQ(contextOfV("echo \\$(x %v"), Context::Bare);
}

TEST(PlixShellScanner, PlaceholderAfterABackslashIsRefused)
{
    EXPECT_EQ(contextOfV("echo \\%v"), Context::AfterBackslash);
    EXPECT_EQ(contextOfV("echo \"\\%v\""), Context::AfterBackslash);
    EXPECT_EQ(contextOfV("echo $(echo \\%v)"), Context::AfterBackslash);
    EXPECT_EQ(contextOfV("echo \\\\%v"), Context::Bare);
}

TEST(PlixShellScanner, PlaceholderInsideBackquotesIsRefused)
{
    EXPECT_EQ(contextOfV("echo `printf %v`"), Context::Backquoted);
    EXPECT_EQ(contextOfV("echo \"`printf %v`\""), Context::Backquoted);
    EXPECT_EQ(contextOfV("echo `echo \\` %v`"), Context::Backquoted);
}

TEST(PlixShellScanner, BackquotesEndAtTheFirstUnescapedBackquote)
{
    EXPECT_EQ(contextOfV("echo `date` %v"), Context::Bare);
    EXPECT_EQ(contextOfV("echo \"`date` %v\""), Context::DoubleQuoted);
    EXPECT_EQ(contextOfV("echo `echo \\`` %v"), Context::Bare);
}

TEST(PlixShellScanner, EverythingBehindAHereDocumentOperatorIsRefused)
{
    EXPECT_EQ(contextOfV("cat <<EOF\n%v\nEOF"), Context::HereDocument);
    EXPECT_EQ(contextOfV("cat <<-EOF\n\t%v\nEOF"), Context::HereDocument);
    EXPECT_EQ(contextOfV("cat <<'EOF'\n%v\nEOF"), Context::HereDocument);
    EXPECT_EQ(contextOfV("cat <<%v"), Context::HereDocument);
    EXPECT_EQ(contextOfV("cat <<EOF\nx\nEOF\necho %v"), Context::HereDocument);
    EXPECT_EQ(contextOfV("echo $(cat <<EOF\n%v\nEOF\n)"), Context::HereDocument);
}

TEST(PlixShellScanner, QuotedHereDocumentOperatorIsText)
{
    EXPECT_EQ(contextOfV("echo \"<<\" %v"), Context::Bare);
    EXPECT_EQ(contextOfV("echo '<<' %v"), Context::Bare);
    EXPECT_EQ(contextOfV("echo < in %v"), Context::Bare);
}

TEST(PlixShellScanner, PlaceholderInACommentIsRefusedUntilTheLineEnds)
{
    EXPECT_EQ(contextOfV("true # %v"), Context::Comment);
    EXPECT_EQ(contextOfV("true;#%v"), Context::Comment);
    EXPECT_EQ(contextOfV("true # ' \"\necho %v"), Context::Bare);
    EXPECT_EQ(contextOfV("echo a#%v"), Context::Bare);
    EXPECT_EQ(contextOfV("echo \"#\" %v"), Context::Bare);
    EXPECT_EQ(contextOfV("echo $(true # )\necho %v)"), Context::Bare);
}

TEST(PlixShellScanner, PlaceholderThatWouldExtendAParameterIsRefused)
{
    EXPECT_EQ(contextOfV("echo $%v"), Context::ParameterName);
    EXPECT_EQ(contextOfV("echo $HOME%v"), Context::ParameterName);
    EXPECT_EQ(contextOfV("echo \"$HOME%v\""), Context::ParameterName);
    EXPECT_EQ(contextOfV("echo ${HOME}%v"), Context::Bare);
    EXPECT_EQ(contextOfV("echo \"${HOME}/%v\""), Context::DoubleQuoted);
    EXPECT_EQ(contextOfV("echo $1%v"), Context::Bare);
    EXPECT_EQ(contextOfV("echo $$%v"), Context::Bare);
    EXPECT_EQ(contextOfV("echo $HOME/%v"), Context::Bare);
}

TEST(PlixShellScanner, PlaceholderInATildePrefixIsRefused)
{
    EXPECT_EQ(contextOfV("echo ~%v"), Context::TildePrefix);
    EXPECT_EQ(contextOfV("echo ~user%v"), Context::TildePrefix);
    EXPECT_EQ(contextOfV("a=~%v"), Context::TildePrefix);
    EXPECT_EQ(contextOfV("echo ~/%v"), Context::Bare);
    EXPECT_EQ(contextOfV("echo a~%v"), Context::Bare);
    EXPECT_EQ(contextOfV("echo \"~%v\""), Context::DoubleQuoted);
}

TEST(PlixShellScanner, EverythingBehindAConstructItDoesNotFollowIsRefused)
{
    EXPECT_EQ(contextOfV("echo ${x:-%v}"), Context::Unfollowed);
    EXPECT_EQ(contextOfV("echo \"${x#'}'}\" %v"), Context::Unfollowed);
    EXPECT_EQ(contextOfV("echo $((1 + %v))"), Context::Unfollowed);
    EXPECT_EQ(contextOfV("(( %v ))"), Context::Unfollowed);
    EXPECT_EQ(contextOfV("echo $'\\'' %v"), Context::Unfollowed);
    EXPECT_EQ(contextOfV("echo \"$(case a in a) echo;; esac)\" %v"), Context::Unfollowed);
    EXPECT_EQ(contextOfV("echo $[%v]"), Context::Unfollowed);
    EXPECT_EQ(contextOfV("[[ %v -eq 1 ]]"), Context::Unfollowed);
}

TEST(PlixShellScanner, CaseOutsideASubstitutionIsFollowed)
{
    EXPECT_EQ(contextOfV("case x in x) echo %v;; esac"), Context::Bare);
    EXPECT_EQ(contextOfV("echo \"case\" $(echo case) %v"), Context::Unfollowed);
    EXPECT_EQ(contextOfV("echo $(echo \"case\") %v"), Context::Bare);
}

TEST(PlixShellScanner, WordWithAnUnquotedBraceIsRefusedUnquotedAndSingleQuoted)
{
    EXPECT_EQ(contextOfV("echo {%v}"), Context::Brace);
    EXPECT_EQ(contextOfV("echo a{b,'%v'}"), Context::Brace);
    EXPECT_EQ(contextOfV("echo {\"%v\"}"), Context::DoubleQuoted);
    EXPECT_EQ(contextOfV("{ echo %v; }"), Context::Bare);
    EXPECT_EQ(contextOfV("echo ${HOME} %v"), Context::Bare);
    EXPECT_EQ(contextOfV("echo \\{%v"), Context::Bare);
}

TEST(PlixShellScanner, OnlyUnquotedDoubleAndSingleQuotedAreWritable)
{
    EXPECT_TRUE(PlixShellScanner::writable(Context::Bare));
    EXPECT_TRUE(PlixShellScanner::writable(Context::DoubleQuoted));
    EXPECT_TRUE(PlixShellScanner::writable(Context::SingleQuoted));
    for (Context refused :
         {Context::AfterBackslash, Context::Backquoted, Context::HereDocument, Context::Comment,
          Context::ParameterName, Context::TildePrefix, Context::Brace, Context::Unfollowed}) {
        EXPECT_FALSE(PlixShellScanner::writable(refused));
    }
}

TEST(PlixShellScanner, RefusedContextsAreDescribedForTheLog)
{
    EXPECT_STREQ(PlixShellScanner::describe(Context::AfterBackslash), "after a backslash");
    EXPECT_STREQ(PlixShellScanner::describe(Context::Backquoted), "inside backquotes");
    EXPECT_STREQ(PlixShellScanner::describe(Context::HereDocument), "in a here-document");
    EXPECT_STREQ(PlixShellScanner::describe(Context::Comment), "in a comment");
}
