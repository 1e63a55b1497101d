#include "targets/fuzzentries.h"

#include "foundation/hexception.h"
#include "loadfile/intelhexloadfile.h"
#include "support/testsupport.h"

#include <QFile>

#include <gtest/gtest.h>

TEST(LoadFileFuzzRegressionTest, InputsTheFuzzerFoundAreReadSafely)
{
    EXPECT_GT(runFuzzRegressions("loadfile"), 0);
}

TEST(LoadFileFuzzRegressionTest, SparseRecordsAreNotMadeIntoAHugeImage)
{
    // Two bytes 255 MB apart: far beyond any flash, and a few records must not cost that much.
    ScratchDir dir;
    const QString path =
        dir.write("far.hex", ":0100000001FE\n:020000040FF0FB\n:0100000002FD\n:00000001FF\n");
    IntelHexLoadFile file(QFile::encodeName(path).constData());
    EXPECT_THROW(file.makeContiguous(0xFF), HException);
}
