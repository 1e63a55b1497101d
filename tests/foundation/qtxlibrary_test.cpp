#include "foundation/qtx.h"
#include "support/testsupport.h"

#include <QFile>
#include <gtest/gtest.h>
#include <link.h>

namespace {

// The file of the zlib the toolkit has loaded, or empty.
QString loadedZlib()
{
    QString found;
    dl_iterate_phdr(
        [](struct dl_phdr_info *info, size_t, void *data) {
            const QString name = QFile::decodeName(info->dlpi_name);
            if (name.contains("/libz.so")) {
                *static_cast<QString *>(data) = name;
                return 1;
            }
            return 0;
        },
        &found);
    return found;
}

} // namespace

TEST(QTxLibraryTest, LoadsTheSharedObjectForADllName)
{
    const QString zlib = loadedZlib();
    if (zlib.isEmpty())
        GTEST_SKIP() << "no zlib loaded in this process";
    ScratchDir scratch;
    ASSERT_TRUE(QFile::copy(zlib, scratch.file("lib.so")));

    void *handle = QTx::loadDLL(scratch.file("lib.dll"));
    ASSERT_NE(handle, nullptr);
    using VersionFunction = const char *(*)();
    auto version = reinterpret_cast<VersionFunction>(QTx::getDLLAddress(handle, "zlibVersion"));
    ASSERT_NE(version, nullptr);
    EXPECT_NE(version()[0], '\0');
    EXPECT_EQ(QTx::getDLLAddress(handle, "no_such_symbol_here"), nullptr);
    EXPECT_TRUE(QTx::unloadDLL(handle));

    testing::internal::CaptureStderr();
    EXPECT_EQ(QTx::loadDLL(scratch.file("missing.dll")), nullptr);
    const std::string error = testing::internal::GetCapturedStderr();
    EXPECT_NE(error.find("missing.so"), std::string::npos);
    EXPECT_EQ(error.back(), '\n');
}
