#include "targets/fuzzentries.h"

#include "foundation/hexception.h"
#include "macros/macrosystem.h"
#include "project/armprojectsystem.h"
#include "project/projectelement.h"
#include "project/solutionloaderror.h"
#include "properties/propertyvaluelist.h"

#include <memory>

namespace {

/// Loads `path` with a project system of its own installed as the global one, then resolves
/// every setting of every element in the first configuration offered, and the build order.
void loadAndWalk(const QString &path)
{
    auto system = std::make_unique<ARMProjectSystem>();
    ProjectSystem *const previous = projectSystem;
    projectSystem = system.get();
    try {
        ProjectElement *root = system->loadSolution(path, nullptr);
        const QString configuration = system->configurations(root, 4).value(0);
        for (ProjectElement *element = root; element;
             element = ProjectElement::nextInWalk(element, root)) {
            std::unique_ptr<PropertyValueList> settings(
                system->settingsFor(element, configuration));
        }
        system->buildOrder(root, configuration);
        system->closeSolution();
    } catch (const SolutionLoadError &) {
        // A file the loader refuses is told to the user as such.
    } catch (const HException &) {
    }
    projectSystem = previous;
}

} // namespace

int fuzzSolution(const uint8_t *data, size_t size)
{
    const QByteArray input(reinterpret_cast<const char *>(data), qsizetype(size));
    if (!staysInScratch(input, "import"))
        return 0;
    loadAndWalk(writeScratchFile(QStringLiteral("solution/solution.hdp"), data, size));
    return 0;
}

int fuzzProjectTemplates(const uint8_t *data, size_t size)
{
    const QByteArray input(reinterpret_cast<const char *>(data), qsizetype(size));
    if (!staysInScratch(input, "include"))
        return 0;
    static const QByteArray solution = R"x(<!DOCTYPE Tarnbench_Project_File>
<solution Name="templated" version="1">
  <project Name="mathlib" template_name="Library">
    <configuration Name="Common" project_directory="mathlib"/>
    <file Name="crc32.c" file_name="crc32.c"/>
  </project>
  <project Name="app" template_name="Executable">
    <configuration Name="Common" project_dependencies="mathlib"/>
    <file Name="main.c" file_name="main.c"/>
  </project>
</solution>
)x";
    const QString kit = fuzzScratchDir() + QStringLiteral("/kit");
    writeScratchFile(QStringLiteral("kit/targets/project_templates.xml"), data, size);
    const QString path = writeScratchFile(QStringLiteral("kit/templated.hdp"),
                                          reinterpret_cast<const uint8_t *>(solution.constData()),
                                          size_t(solution.size()));
    const QString previousBenchDir = macroSystem.systemMacro(QStringLiteral("BenchDir"));
    macroSystem.setSystemMacro(QStringLiteral("BenchDir"), kit);
    loadAndWalk(path);
    macroSystem.setSystemMacro(QStringLiteral("BenchDir"), previousBenchDir);
    return 0;
}
