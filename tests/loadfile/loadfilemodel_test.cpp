#include "loadfiletesting.h"

#include "loadfile/loadfilefactory.h"
#include "loadfile/standardloadfilesection.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

std::unique_ptr<StandardLoadFileSection> section(unsigned int address, const char *bytes)
{
    return std::make_unique<StandardLoadFileSection>(
        "", address, std::strlen(bytes), reinterpret_cast<const unsigned char *>(bytes));
}

/// A load file whose sections a test places by hand.
class HandMadeLoadFile : public LoadFileInterface
{
public:
    bool hasLoadAddress() const override { return true; }
    void setLoadAddress(unsigned long) override {}
    bool createLoadFileSections() override { return true; }
    void add(unsigned int address, const char *bytes) { sections.add(section(address, bytes)); }
};

} // namespace

TEST(LoadFileSectionsTest, FindSumsAndClear)
{
    LoadFileSections sections;
    sections.add(section(0x100, "abcd"));
    sections.add(section(0x102, "efghijkl"));
    sections.add(section(0xFFFFFFF8, "01234567"));
    sections.addee(section(0, "xy"));
    EXPECT_EQ(sections.find(0x102, 2), sections.list()[0].get());
    EXPECT_EQ(sections.find(0x103, 4), sections.list()[1].get()) << "the first that holds all";
    EXPECT_EQ(sections.find(0xFFFFFFF8, 9), nullptr) << "past the top of memory";
    EXPECT_EQ(sections.length(), 20u);
    sections.clear();
    EXPECT_TRUE(sections.list().empty());
    EXPECT_EQ(sections.eelength(), 2u) << "clear leaves the second list";
}

TEST(LoadFileSectionsTest, EqualityComparesPlaceAndBytes)
{
    EXPECT_TRUE(*section(4, "ab") == *section(4, "ab"));
    EXPECT_FALSE(*section(4, "ab") == *section(4, "ac") || *section(4, "ab") == *section(5, "ab"));
    const StandardLoadFileSection empty1("", 4, 2, nullptr), empty2("x", 4, 2, nullptr);
    EXPECT_TRUE(empty1 == empty2 && empty1 != *section(4, "ab"));
}

TEST(MakeContiguousTest, FillsGapsAndLaterSectionsWin)
{
    HandMadeLoadFile file;
    file.add(0x200, "BBBB");
    file.add(0x100, "AAAA");
    file.add(0x102, "cc");
    file.makeContiguous(0xFF);
    const std::string image =
        "100:" + QByteArray("AAcc" + QByteArray(0xFC, '\xFF') + "BBBB").toHex().toStdString();
    EXPECT_EQ(contents(file), image);
    EXPECT_EQ(file.loadFileSections()->list()[0]->name(), "Contiguous section");

    // Its own image is the source now, which must live until the copy is made.
    file.makeContiguous(0);
    EXPECT_EQ(contents(file), image);
    file.invalidateLoadFileSections();
    EXPECT_EQ(contents(file), "");

    // The end of a section at the top of memory doesn't wrap to 0.
    HandMadeLoadFile top;
    top.add(0xFFFFFFF0, "0123456789abcdef");
    top.makeContiguous(0);
    EXPECT_EQ(contents(top), "fffffff0:" + QByteArray("0123456789abcdef").toHex().toStdString());
}

TEST(LoadFileFactoryTest, DetectsByExactCaseSuffixOnly)
{
    const std::pair<const char *, const char *> cases[] = {
        {"x.hex", "ihex"}, {"X.HEX", "ihex"}, {"a.Hex", nullptr}, {"x.lst", "hex"},
        {".srec", "srec"}, {"b.S19", "srec"}, {".bin", "bin"},    {"bin", nullptr},
    };
    for (const auto &[name, type] : cases)
        EXPECT_STREQ(LoadFileFactory::instance()->detect(name), type) << name;
}
