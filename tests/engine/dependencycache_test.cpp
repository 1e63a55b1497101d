#include "engine/dependencycache.h"
#include "support/fakedisk.h"
#include "support/testsupport.h"

#include <gtest/gtest.h>

namespace {

const QString cacheFile = QStringLiteral("/p/Debug/.tidemake-dependencies");
const QStringList mainList{"/p/src/main.c", "/p/include/a.h", "/p/include/b.h"};
const QStringList utilList{"/p/src/util c.c", "/p/include/a.h"};

/// A cache of two objects of /p/Debug saved to `disk`, their dependency files at time 10.
QByteArray savedCache(FakeDisk &disk)
{
    disk.touch("/p/Debug/main.d", 10);
    disk.touch("/p/Debug/util.d", 10);
    DependencyCache cache;
    cache.setDisk(&disk);
    cache.insert("/p/Debug/main.o", mainList);
    cache.insert("/p/Debug/util.o", utilList);
    cache.save();
    return disk.contents.value(cacheFile);
}

} // namespace

TEST(DependencyCache, ListsOutliveTheRunUntilTheirDependencyFileChanges)
{
    FakeDisk disk;
    savedCache(disk);
    ASSERT_TRUE(disk.files.contains(cacheFile));

    DependencyCache cache;
    cache.setDisk(&disk);
    EXPECT_EQ(cache.value("/p/Debug/main.o"), mainList);
    EXPECT_EQ(cache.value("/p/Debug/util.o"), utilList);
    EXPECT_EQ(cache.value("/p/Debug/other.o"), QStringList());

    // Putting back what is there changes nothing, so nothing is written.
    disk.erase(cacheFile);
    cache.insert("/p/Debug/main.o", cache.value("/p/Debug/main.o"));
    cache.save();
    EXPECT_FALSE(disk.files.contains(cacheFile));

    disk.touch("/p/Debug/main.d", 11);
    disk.erase("/p/Debug/util.d");
    EXPECT_EQ(cache.value("/p/Debug/main.o"), QStringList()) << "a rewritten dependency file";
    EXPECT_EQ(cache.value("/p/Debug/util.o"), QStringList()) << "a removed dependency file";

    // A removed entry stays removed in the next run.
    cache.remove("/p/Debug/util.o");
    cache.save();
    disk.touch("/p/Debug/util.d", 10);
    DependencyCache next;
    next.setDisk(&disk);
    EXPECT_EQ(next.value("/p/Debug/util.o"), QStringList());
    EXPECT_EQ(next.value("/p/Debug/main.o"), QStringList());
}

TEST(DependencyCache, ADamagedFileIsIgnoredAndWrittenAfresh)
{
    FakeDisk source;
    const QByteArray good = savedCache(source);
    DependencyCache probe;
    ASSERT_TRUE(probe.parse("/p/Debug", good));

    QList<QByteArray> damaged = {QByteArray(), QByteArray(4096, '\xff'), good + 'x',
                                 QByteArray(good).replace("dependencies 1", "dependencies 2")};
    // Every cut, and every byte of the numbers turned to 0xff: counts and indices beyond the
    // file must be refused, never followed.
    for (qsizetype size = 0; size < good.size(); ++size)
        damaged << good.left(size);
    for (qsizetype at = 24; at < good.size(); ++at) {
        QByteArray bytes = good;
        bytes[at] = '\xff';
        damaged << bytes;
    }
    for (const QByteArray &bytes : damaged) {
        DependencyCache cache;
        if (cache.parse("/p/Debug", bytes))
            continue; // a changed byte inside a name is still a cache, of another name
        FakeDisk disk;
        disk.touch("/p/Debug/main.d", 10);
        disk.touch(cacheFile, 1, bytes);
        cache.setDisk(&disk);
        ASSERT_EQ(cache.value("/p/Debug/main.o"), QStringList()) << bytes.toHex().toStdString();
        cache.insert("/p/Debug/main.o", mainList);
        cache.save();
        DependencyCache again;
        again.setDisk(&disk);
        ASSERT_EQ(again.value("/p/Debug/main.o"), mainList);
    }
}

TEST(DependencyCache, AQuietDirectorySparesTheDependencyFilesButNotWhatChanged)
{
    FakeDisk disk;
    savedCache(disk);
    const QDateTime old = QDateTime::fromMSecsSinceEpoch(5, Qt::UTC);
    auto nextRun = [&disk] {
        auto cache = std::make_unique<DependencyCache>();
        cache->setDisk(&disk);
        return cache;
    };

    auto cache = nextRun();
    disk.stats = 0;
    EXPECT_EQ(cache->value("/p/Debug/main.o", old), mainList);
    EXPECT_EQ(cache->value("/p/Debug/util.o", old), utilList);
    EXPECT_EQ(disk.stats, 0) << "nothing changed: no dependency file is looked at";

    // A compile outside the build rewrites a dependency file in place and makes its object
    // newer than the cache file.
    disk.touch("/p/Debug/main.d", 500);
    cache = nextRun();
    EXPECT_EQ(cache->value("/p/Debug/main.o", QDateTime::fromMSecsSinceEpoch(500, Qt::UTC)),
              QStringList());
    EXPECT_EQ(cache->value("/p/Debug/util.o", old), utilList);

    // A removed dependency file changes the directory: every entry is looked at again.
    disk.erase("/p/Debug/util.d");
    cache = nextRun();
    EXPECT_EQ(cache->value("/p/Debug/util.o", old), QStringList());
    EXPECT_EQ(cache->value("/p/Debug/main.o", old), QStringList());

    // Once a run found every entry current, the file is written again and the next run is
    // spared the look once more.
    disk.touch("/p/Debug/util.d", 10);
    disk.touch("/p/Debug/main.d", 10);
    disk.touch("/p/Debug/new.o", 10); // the directory changes under the cache
    cache = nextRun();
    EXPECT_EQ(cache->value("/p/Debug/main.o", old), mainList);
    EXPECT_EQ(cache->value("/p/Debug/util.o", old), utilList);
    cache->save();
    cache = nextRun();
    disk.stats = 0;
    EXPECT_EQ(cache->value("/p/Debug/main.o", old), mainList);
    EXPECT_EQ(disk.stats, 0);
}
