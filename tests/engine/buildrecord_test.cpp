#include "engine/buildrecord.h"
#include "support/fakedisk.h"
#include "support/testsupport.h"

#include <gtest/gtest.h>

TEST(BuildRecord, RoundTripKeepsEveryCharacter)
{
    FakeDisk disk;
    BuildRecord record;
    record.load(disk, "/p/Debug/r", "app", "Debug\tx");
    EXPECT_FALSE(record.present());
    const BuildSignature signature{{"c_preprocessor_definitions=A;B\\;C", "empty="},
                                   {"input=tab\there", "control=line\nend\\"}};
    record.set("Debug/main.o", signature);
    record.set("Debug/util.o", {signature.settings, {"input=util.c"}});
    record.set("Debug/app.elf", {});
    ASSERT_TRUE(record.save(disk));

    BuildRecord again;
    again.load(disk, "/p/Debug/r", "app", "Debug\tx");
    EXPECT_TRUE(again.present());
    ASSERT_TRUE(again.find("Debug/main.o"));
    EXPECT_EQ(*again.find("Debug/main.o"), signature);
    ASSERT_TRUE(again.find("Debug/app.elf"));
    EXPECT_EQ(disk.contents.value("/p/Debug/r").count("c_preprocessor_definitions"), 1)
        << "a settings list shared by outputs is written once";
    EXPECT_FALSE(again.changed());
    again.set("Debug/main.o", signature);
    EXPECT_FALSE(again.changed()) << "setting what is there changes nothing";
    EXPECT_EQ(again.serialize(), disk.contents.value("/p/Debug/r"));
}

TEST(BuildRecord, DamagedOrForeignRecordsArePresentButEmpty)
{
    BuildRecord good;
    good.load(*std::make_unique<FakeDisk>(), "r", "app", "Debug");
    good.set("a.o", {{"x=1"}, {}});
    const QByteArray text = good.serialize();
    const QByteArray damaged[] = {
        "",
        text.left(text.size() - 1),                       // cut off
        QByteArray(text).replace("Debug", "Release"),     // another configuration
        QByteArray(text).replace("app", "lib"),           // another project
        QByteArray(text).replace("record 1", "record 2"), // another version
        QByteArray(4096, '\0') + '\n',
        QByteArray(text).replace("o\ta.o\t0", "o\ta.o\t7"), // a settings list that isn't there
        QByteArray(text).replace("o\ta.o\t0", "o\ta.o\t-1"),
    };
    for (const QByteArray &bytes : damaged) {
        FakeDisk disk;
        disk.touch("r", 1, bytes);
        BuildRecord record;
        record.load(disk, "r", "app", "Debug");
        EXPECT_TRUE(record.present()) << bytes.left(30).toStdString();
        EXPECT_EQ(record.find("a.o"), nullptr) << bytes.left(30).toStdString();
    }
    FakeDisk disk;
    disk.writable = false;
    EXPECT_FALSE(good.save(disk));
}

TEST(BuildRecord, FirstDifferenceNamesTheKey)
{
    EXPECT_TRUE(BuildRecord::firstDifference({"a=1", "b=2"}, {"a=1", "b=2"}).isNull());
    EXPECT_EQ(BuildRecord::firstDifference({"a=1", "b=2"}, {"a=1", "b=3"}), "b");
    EXPECT_EQ(BuildRecord::firstDifference({"a=1"}, {"a=1", "input=x"}), "*");
    EXPECT_NE(buildRecordPath("d", "app", "Debug"), buildRecordPath("d", "app", "Release"));
    EXPECT_NE(buildRecordPath("d", "a", "pp Debug"), buildRecordPath("d", "a p", "p Debug"));
}
