#include "enginefixture.h"

TEST(BuildCatalogue, ALaterClassOfASaveNameReplacesTheEarlier)
{
    {
        ARMBuildSystem system{QStringList()};
        EXPECT_EQ(standardBuildSystem, &system);
        // The link and the archive each keep their output file name class; the catalogue
        // holds the one made last, the library's.
        EXPECT_NE(system.linkerOutputFileNameProperty, system.libraryOutputFileNameProperty);
        EXPECT_EQ(system.findPropertyClass("build_output_file_name"),
                  system.libraryOutputFileNameProperty);
        EXPECT_EQ(system.findPropertyClass("linker_keep_symbols"),
                  system.linkerKeepSymbolsProperty);
    }
    // The generic layer is published for the build system's lifetime only.
    EXPECT_EQ(standardBuildSystem, nullptr);
}
