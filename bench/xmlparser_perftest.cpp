// Parses a generated solution-shaped file of about 20 MB and prints the best time.

#include "xml/xmldocument.h"

#include <QTemporaryDir>

#include <chrono>
#include <cstdio>
#include <string>

namespace {

std::string makeSolution(size_t targetBytes)
{
    std::string xml = "<!DOCTYPE hdp>\n<solution name=\"bench\" version=\"2\">\n";
    char line[512];
    for (int project = 0; xml.size() < targetBytes; ++project) {
        std::snprintf(
            line, sizeof line,
            "  <project Name=\"project%d\">\n"
            "    <configuration Name=\"Common\" arm_architecture=\"v7M\" "
            "arm_core_type=\"Cortex-M4\" arm_fpu_type=\"FPv4-SP-D16\" "
            "c_preprocessor_definitions=\"USE_HAL;STM32F4&amp;X\" "
            "linker_memory_map_file=\"$(TargetsDir)/STM32/STM32F407VG_MemoryMap.xml\"/>\n",
            project);
        xml += line;
        for (int folder = 0; folder < 8; ++folder) {
            std::snprintf(line, sizeof line,
                          "    <folder Name=\"Folder %d\" file_name=\"\" filter=\"c;cpp;h;s\">\n",
                          folder);
            xml += line;
            for (int file = 0; file < 20; ++file) {
                std::snprintf(
                    line, sizeof line,
                    "      <file file_name=\"src/folder%d/module_%d.c\">\n"
                    "        <configuration Name=\"Debug\" build_exclude_from_build=\"No\" "
                    "c_additional_options=\"-Wall -Wextra\" gcc_optimization_level=\"None\"/>\n"
                    "        <configuration Name=\"Release\" build_exclude_from_build=\"No\" "
                    "gcc_optimization_level=\"Level 2\" "
                    "c_user_include_directories=\"inc;../common/inc\"/>\n"
                    "      </file>\n",
                    folder, file);
                xml += line;
            }
            xml += "    </folder>\n";
        }
        xml += "  </project>\n";
    }
    xml += "</solution>\n";
    return xml;
}

} // namespace

int main()
{
    QTemporaryDir dir;
    const std::string fileName = dir.filePath("bench.hdp").toStdString();
    const std::string xml = makeSolution(20u << 20);
    FILE *file = std::fopen(fileName.c_str(), "wb");
    if (!file || std::fwrite(xml.data(), 1, xml.size(), file) != xml.size()) {
        std::fprintf(stderr, "can't write %s\n", fileName.c_str());
        return 1;
    }
    std::fclose(file);

    double best = 1e9;
    for (int run = 0; run < 5; ++run) {
        const auto start = std::chrono::steady_clock::now();
        XMLDocument document;
        if (!document.load(fileName.c_str()) || !document.root) {
            std::fprintf(stderr, "parse failed: %s\n", document.error);
            return 1;
        }
        const double ms =
            std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
                .count();
        best = ms < best ? ms : best;
    }
    std::printf("parsed %.1f MB in %.1f ms (best of 5, load and parse, teardown excluded)\n",
                xml.size() / 1048576.0, best);
    return 0;
}
