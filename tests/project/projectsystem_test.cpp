#include "project/projecttesting.h"

#include "project/projectpropertyvalue.h"
#include "properties/propertyvaluelist.h"

namespace {

using E = ProjectElement;

TEST_F(ProjectTest, CatalogueAndExtensions)
{
    const QStringList saveNames{"date_created",
                                "date_modified",
                                "platform",
                                "full_path",
                                "relative_path",
                                "(Name)",
                                "file_name",
                                "file_codec",
                                "file_type",
                                "filter",
                                "project_type",
                                "name",
                                "project_directory",
                                "full_project_directory",
                                "project_dependencies",
                                "macros",
                                "batch_build_configurations",
                                "inherited_configurations"};
    for (const QString &saveName : saveNames)
        EXPECT_NE(system.findPropertyClass(saveName), nullptr) << saveName.toStdString();
    EXPECT_EQ(system.projectTypeClass->defaultValue(), "Executable");
    EXPECT_EQ(system.projectTypeClass->enumerates(), StandardProjectSystem::projecttypes());
    EXPECT_FALSE(system.projectTypeClass->perConfiguration());
    EXPECT_EQ(system.fileCodecClass->defaultValue(), "Latin1");
    EXPECT_EQ(system.fileCodecClass->enumerates().size(), 43);
    EXPECT_EQ(system.fileTypeClass->enumerates().size(), 14);
    EXPECT_TRUE(system.projectDirectoryClass->readOnly());
    EXPECT_EQ(system.projectDependenciesClass->type(), PropertyClass::StringList);
    EXPECT_EQ(system.macrosClass->longDescription(),
              "Specifies macro values for this project element using \"name=value\"");

    EXPECT_EQ(system.objectFileExtension(), ".o");
    EXPECT_EQ(system.libraryFileExtension(), ".a");
    EXPECT_EQ(system.executableFileExtension(), ".elf");
    EXPECT_EQ(ARMProjectSystem(".out").executableFileExtension(), ".out");
    EXPECT_EQ(system.platform(nullptr), "ARM");
}

TEST_F(ProjectTest, FileTypesBySettingSuffixAndDocumentType)
{
    E *solution = system.createSolution("S", scratch.path());
    E *project = system.createProject(solution, "P", scratch.path(), "Executable");
    auto typeOf = [&](const QString &path) {
        return system.getFileType(system.addFile(project, path));
    };
    EXPECT_EQ(typeOf(scratch.file("a.c")), "C");
    EXPECT_EQ(typeOf(scratch.file("a.CC")), "C++");
    EXPECT_EQ(typeOf(scratch.file("start.S")), "Assembly");
    EXPECT_EQ(typeOf(scratch.file("x.o")), "Object file");
    EXPECT_EQ(typeOf(scratch.file("x.elf")), "Executable");
    EXPECT_EQ(typeOf(scratch.file("x.txt")), "");
    scratch.write("map.xml", "<!DOCTYPE Board_Memory_Definition_File>\n<Root/>\n");
    EXPECT_EQ(typeOf(scratch.file("map.xml")), "Memory Map");
    scratch.write("other.xml", "<!DOCTYPE Other>\n<Root/>\n");
    EXPECT_EQ(typeOf(scratch.file("other.xml")), "");
    E *script = system.addFile(project, scratch.file("link.c"));
    system.setProperty(script, system.fileTypeClass, "Common", "Linker Script");
    EXPECT_EQ(system.getFileType(script), "Linker Script");
}

TEST_F(ProjectTest, CreationAndChangeKeepTheIndexesCurrent)
{
    E *solution = system.createSolution("S", scratch.path());
    E *project = system.createProject(solution, "App", scratch.file("App"), "Executable");
    E *source = system.createFolder(project, "Source", "c;h");
    E *docs = system.createFolder(project, "Docs", "");
    system.setProperty(docs, system.filterClass, "Common", "TXT;md");
    EXPECT_EQ(system.createFolder(project, "Source", "s"), source);
    EXPECT_EQ(source->getConfigurationElement("Common")->attribute("filter"), "c;h");
    E *bare = system.createFolder(project, "Bare", "");

    EXPECT_EQ(system.addFile(project, scratch.file("App/x.C"))->parent(), source);
    EXPECT_EQ(system.addFile(project, scratch.file("App/y.md"))->parent(), docs);
    EXPECT_EQ(system.addFile(project, scratch.file("App/z.txt"))->parent(), project)
        << "filter items are compared exactly";
    EXPECT_EQ(system.addFile(bare, scratch.file("App/w.c"))->parent(), bare);
    EXPECT_EQ(ProjectSystem::findFile(source, "x.C")->getName(), "x.C");
    EXPECT_EQ(ProjectSystem::findFolder(project, "Docs"), docs);
    EXPECT_EQ(ProjectSystem::numProjects(solution), 1);

    system.renameElement(project, "Main");
    EXPECT_EQ(system.projectNames(), QStringList{"Main"});
    EXPECT_EQ(system.getGlobalProjectName(project), "Main");

    system.setProperty(source, "v", "Debug", "1");
    system.setProperty(project, "v", "Debug", "1");
    system.setProperty(solution, "v", "Debug", "1");
    system.removeConfiguration(project, "Debug");
    EXPECT_EQ(source->getConfigurationElement("Debug"), nullptr);
    EXPECT_EQ(project->getConfigurationElement("Debug"), nullptr);
    EXPECT_NE(solution->getConfigurationElement("Debug"), nullptr) << "only in the subtree";

    std::unique_ptr<E> copy(system.clone(project));
    EXPECT_EQ(ProjectSystem::findFolder(copy.get(), "Source")
                  ->getConfigurationElement("Common")
                  ->attribute("filter"),
              "c;h");
    EXPECT_EQ(ProjectSystem::sourceFiles(copy.get()).size(), 4);

    ProjectPropertyValue type(system.projectTypeClass, "Debug", project);
    EXPECT_TRUE(type.readOnly()) << "not per-configuration: edited in Common only";
    EXPECT_EQ(type.propertyValue(), "Executable");
    ProjectPropertyValue common(system.projectTypeClass, "Common", project);
    EXPECT_FALSE(common.readOnly());
    common.setPropertyValue("Library");
    EXPECT_EQ(ProjectSystem::getProjectType(project), "Library");
    EXPECT_FALSE(common.inherited());
    std::unique_ptr<PropertyValueList> values(system.settingsFor(project, "Debug"));
    EXPECT_EQ(values->size(), 6);

    system.removeElement(project, true);
    EXPECT_TRUE(system.projectNames().isEmpty());
    EXPECT_EQ(ProjectSystem::numProjects(solution), 0);
}

} // namespace
