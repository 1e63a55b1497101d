#include "foundation/qtx.h"

#include <gtest/gtest.h>

TEST(QTxSearchTest, LiteralExpressionsMatchTheirText)
{
    const QString special = "a.b*(c)[d]{e}^$+?|,:\\";
    EXPECT_EQ(QTx::literalRegularExpressionString("a.b"), "a\\.b");
    const QRegularExpression re = QTx::constructSearchRegularExpression(special, true, false);
    ASSERT_TRUE(re.isValid());
    QString match;
    EXPECT_EQ(QTx::search(re, "xx" + special, 0, true, false, match), 2);
    EXPECT_EQ(match, special);

    const QRegularExpression any = QTx::constructSearchRegularExpression("A.C", false, true);
    EXPECT_EQ(QTx::search(any, "zzabc", 0, true, false, match), 2);
    EXPECT_EQ(match, "abc");
}

TEST(QTxSearchTest, SearchesBothWaysForWholeWords)
{
    const QRegularExpression word = QTx::constructSearchRegularExpression("cat", true, false);
    const QString text = "concat cat_x cat, cat";
    QString match;
    EXPECT_EQ(QTx::search(word, text, 0, true, false, match), 3);
    EXPECT_EQ(QTx::search(word, text, 0, true, true, match), 13);
    EXPECT_EQ(QTx::search(word, text, 14, true, true, match), 18);
    EXPECT_EQ(QTx::search(word, text, 19, true, true, match), -1);
    EXPECT_EQ(QTx::search(word, text, int(text.size()), false, true, match), 18);
    EXPECT_EQ(QTx::search(word, text, 17, false, true, match), 13);
    EXPECT_EQ(QTx::search(word, text, 12, false, false, match), 7);
    EXPECT_EQ(QTx::search(word, text, 2, false, false, match), -1);
    EXPECT_EQ(QTx::search(word, text, -1, true, false, match), -1);

    // Empty matches never count.
    const QRegularExpression optional = QTx::constructSearchRegularExpression("x*", true, true);
    EXPECT_EQ(QTx::search(optional, "abxx", 0, true, false, match), 2);
    EXPECT_EQ(match, "xx");
    EXPECT_EQ(QTx::search(optional, "abc", 0, true, false, match), -1);
}

TEST(QTxSearchTest, ExpandsCapturesOfTheLastMatch)
{
    const QRegularExpression re =
        QTx::constructSearchRegularExpression("(\\w+)=(\\d+)", true, true);
    QString match;
    QRegularExpressionMatch last;
    ASSERT_EQ(QTx::search(re, "set width=42;", 0, true, false, match, &last), 4);
    QString replacement = "\\2 for \\1 (\\0)";
    QTx::expandSearchResults(last, replacement);
    EXPECT_EQ(replacement, "42 for width (width=42)");
}
