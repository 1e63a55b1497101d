#include "foundation/qtx.h"

#include <gtest/gtest.h>

TEST(QTxTimeTest, FriendlyDateAndTicks)
{
    EXPECT_EQ(QTx::friendlyDate(QDateTime(QDate(2024, 3, 7), QTime(9, 5))), "07/03/2024 09:05");
    EXPECT_EQ(QTx::friendlyDate(QDateTime()), "(not available)");
    EXPECT_EQ(QTx::friendlyDate(QDateTime(QDate(2024, 2, 30), QTime(1, 0))), "(not available)");

    const unsigned int before = QTx::ticks();
    QTx::sleep(20);
    const unsigned int elapsed = QTx::ticks() - before;
    EXPECT_GE(elapsed, 19u);
    EXPECT_LT(elapsed, 5000u);
}
