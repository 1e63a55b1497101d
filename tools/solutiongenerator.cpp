#include "solutiongenerator.h"

#include <QDir>
#include <QFile>
#include <QList>
#include <QStringList>

#include <algorithm>

namespace {

struct Project
{
    QString name;
    int solution; ///< 0 the root, s > 0 the imported solution s
    QList<int> dependencies;
};

QString numbered(const QString &prefix, int number, int count)
{
    const int width = std::max(3, int(QString::number(std::max(count - 1, 0)).size()));
    return prefix + QStringLiteral("%1").arg(number, width, 10, QLatin1Char('0'));
}

QString subSolutionName(int solution)
{
    return QStringLiteral("sub%1").arg(solution);
}

QString solutionFileName(const SolutionShape &shape, int solution)
{
    if (solution == 0)
        return shape.name + QStringLiteral(".hdp");
    return shape.name + QLatin1Char('_') + subSolutionName(solution) + QStringLiteral(".hdp");
}

bool writeFile(const QString &path, const QByteArray &contents, QString *error)
{
    if (!QDir().mkpath(QFileInfo(path).absolutePath())) {
        *error = QStringLiteral("cannot make the directory of ") + path;
        return false;
    }
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(contents) != contents.size()) {
        *error = QStringLiteral("cannot write ") + path;
        return false;
    }
    return true;
}

// Up to `count` distinct earlier projects, spread over the whole range so that chains are
// both long and wide.
QList<int> dependenciesOf(int project, int count)
{
    QList<int> result;
    for (int k = 0; k < count && project > 0; ++k) {
        const int dependency = project - 1 - (k * k * 13 + k * 5) % project;
        if (!result.contains(dependency))
            result.append(dependency);
    }
    return result;
}

// How project `from` names project `to`: plainly within one solution or when `to` stands in
// the root, else by the root's name for it.
QString dependencyName(const Project &from, const Project &to)
{
    if (to.solution == 0 || to.solution == from.solution)
        return to.name;
    return to.name + QLatin1Char('(') + subSolutionName(to.solution) + QLatin1Char(')');
}

QString sourceName(const SolutionShape &shape, int file)
{
    return numbered(QStringLiteral("f"), file, shape.filesPerProject) + QStringLiteral(".c");
}

QString headerName(const SolutionShape &shape, int header)
{
    return numbered(QStringLiteral("h"), header, shape.headersPerProject) + QStringLiteral(".h");
}

// The headers that C file `file` includes: a run whose start goes round the positions that fit,
// so that the first and last headers are included by fewer files than those in the middle.
QList<int> includedHeaders(const SolutionShape &shape, int file)
{
    const int all = shape.headersPerProject;
    const int count = shape.headersPerSource < 0 ? all : std::min(shape.headersPerSource, all);
    const int start = file % (all - count + 1);
    QList<int> headers;
    for (int header = start; header < start + count; ++header)
        headers.append(header);
    return headers;
}

bool isExecutable(const SolutionShape &shape, int index)
{
    return !shape.librariesOnly && (index % 10 == 9 || index == shape.projects - 1);
}

QList<Project> projectsOf(const SolutionShape &shape)
{
    const int solutionCount = std::max(0, shape.importedSolutions) + 1;
    QList<Project> projects;
    for (int i = 0; i < shape.projects; ++i)
        projects.append({numbered(QStringLiteral("P"), i, shape.projects),
                         int(qint64(i) * solutionCount / std::max(1, shape.projects)),
                         dependenciesOf(i, shape.dependenciesPerProject)});
    return projects;
}

void appendProject(QByteArray &xml, const SolutionShape &shape, const QList<Project> &projects,
                   int index)
{
    const Project &project = projects[index];
    QStringList dependencies;
    for (int dependency : project.dependencies)
        dependencies.append(dependencyName(project, projects[dependency]));
    const bool executable = isExecutable(shape, index);

    QString text = QStringLiteral("  <project Name=\"%1\">\n").arg(project.name);
    text += QStringLiteral("    <configuration Name=\"Common\"");
    if (!dependencies.isEmpty())
        text += QStringLiteral(" project_dependencies=\"%1\"").arg(dependencies.join(';'));
    text += QStringLiteral(" project_directory=\"%1\" project_type=\"%2\"/>\n")
                .arg(project.name,
                     executable ? QStringLiteral("Executable") : QStringLiteral("Library"));
    text += QStringLiteral(
                "    <configuration Name=\"Debug\" c_preprocessor_definitions=\"%1_DEBUG\"/>\n")
                .arg(project.name);

    text += QStringLiteral("    <folder Name=\"Source Files\" filter=\"c\">\n");
    for (int file = 0; file < shape.filesPerProject; ++file) {
        const int folderSize = std::max(1, shape.filesPerFolder);
        if (file % folderSize == 0)
            text += QStringLiteral("      <folder Name=\"Group %1\">\n").arg(file / folderSize);
        const QString name = sourceName(shape, file);
        text += QStringLiteral("        <file Name=\"%1\" file_name=\"src/%1\"").arg(name);
        if (file % 10 == 3)
            text += QStringLiteral(">\n          <configuration Name=\"Common\" "
                                   "c_preprocessor_definitions=\"FILE_%1\"/>\n        </file>\n")
                        .arg(file);
        else
            text += QStringLiteral("/>\n");
        if (file % folderSize == folderSize - 1 || file == shape.filesPerProject - 1)
            text += QStringLiteral("      </folder>\n");
    }
    text += QStringLiteral("    </folder>\n");

    if (shape.headersPerProject > 0) {
        text += QStringLiteral("    <folder Name=\"Header Files\" filter=\"h\">\n");
        for (int header = 0; header < shape.headersPerProject; ++header)
            text += QStringLiteral("      <file Name=\"%1\" file_name=\"include/%1\"/>\n")
                        .arg(headerName(shape, header));
        text += QStringLiteral("    </folder>\n");
    }
    text += QStringLiteral("  </project>\n");
    xml += text.toUtf8();
}

bool writeProjectFiles(const QString &directory, const SolutionShape &shape, const Project &project,
                       QString *error)
{
    const QString projectDirectory = directory + QLatin1Char('/') + project.name;
    for (int header = 0; header < shape.headersPerProject && shape.writeSources; ++header) {
        if (!writeFile(projectDirectory + QStringLiteral("/include/") + headerName(shape, header),
                       QStringLiteral("#define %1_H%2 %2\n").arg(project.name).arg(header).toUtf8(),
                       error))
            return false;
    }
    for (int file = 0; file < shape.filesPerProject; ++file) {
        const QString source = sourceName(shape, file);
        const QList<int> headers = includedHeaders(shape, file);
        if (shape.writeSources) {
            QString text;
            for (int header : headers)
                text += QStringLiteral("#include \"%1\"\n").arg(headerName(shape, header));
            text += QStringLiteral("int %1_f%2(void) { return %2; }\n").arg(project.name).arg(file);
            if (!writeFile(projectDirectory + QStringLiteral("/src/") + source, text.toUtf8(),
                           error))
                return false;
        }
        if (shape.writeDependencyFiles) {
            const QString base = source.left(source.size() - 2);
            QString text = QStringLiteral("Debug/%1.o: src/%2").arg(base, source);
            for (int header : headers)
                text += QStringLiteral(" \\\n include/") + headerName(shape, header);
            text += QLatin1Char('\n');
            if (!writeFile(projectDirectory + QStringLiteral("/Debug/") + base +
                               QStringLiteral(".d"),
                           text.toUtf8(), error))
                return false;
        }
    }
    return true;
}

QByteArray solutionHeader(const QString &name)
{
    return QStringLiteral(
               "<!DOCTYPE Tarnbench_Project_File>\n<solution Name=\"%1\" version=\"1\">\n")
        .arg(name)
        .toUtf8();
}

} // namespace

QString generateSolution(const QString &directory, const SolutionShape &shape, QString *error)
{
    QString ignored;
    if (!error)
        error = &ignored;
    const int solutionCount = std::max(0, shape.importedSolutions) + 1;
    const QList<Project> projects = projectsOf(shape);

    QList<QByteArray> files(solutionCount);
    files[0] = solutionHeader(shape.name);
    // A hidden base configuration that the visible ones inherit, and a batch list.
    files[0] +=
        "  <configuration Name=\"Base\" c_preprocessor_definitions=\"BASE\" hidden=\"Yes\"/>\n"
        "  <configuration Name=\"Common\" batch_build_configurations=\"Debug;Release\" "
        "c_user_include_directories=\"include\"/>\n"
        "  <configuration Name=\"Debug\" c_preprocessor_definitions=\"DEBUG\" "
        "inherited_configurations=\"Base\"/>\n"
        "  <configuration Name=\"Release\" build_debug_information=\"No\" "
        "inherited_configurations=\"Base\"/>\n";
    for (int solution = 1; solution < solutionCount; ++solution)
        files[solution] = solutionHeader(subSolutionName(solution));

    for (int i = 0; i < projects.size(); ++i) {
        appendProject(files[projects[i].solution], shape, projects, i);
        if ((shape.writeSources || shape.writeDependencyFiles) &&
            !writeProjectFiles(directory, shape, projects[i], error))
            return QString();
    }
    for (int solution = 1; solution < solutionCount; ++solution)
        files[0] += QStringLiteral("  <import file_name=\"%1\"/>\n")
                        .arg(solutionFileName(shape, solution))
                        .toUtf8();

    for (int solution = 0; solution < solutionCount; ++solution) {
        files[solution] += "</solution>\n";
        if (!writeFile(directory + QLatin1Char('/') + solutionFileName(shape, solution),
                       files[solution], error))
            return QString();
    }
    return directory + QLatin1Char('/') + solutionFileName(shape, 0);
}

namespace {

// The options tidemake gives cc1 and as for a generated project in "Debug" with the default
// ARM target; the -I and -D options of each project and file follow on each build line.
const char ninjaRules[] =
    "cflags = -fmessage-length=0 -march=armv4t -mthumb-interwork -mlittle-endian -mfpu=vfp "
    "-mfloat-abi=soft -nostdinc -isystem$bench/include\n"
    "targetdefines = -D__ARM_ARCH_4T__ -D__HALDEN_ARM\n"
    "asflags = --traditional-format -march=armv4t -mthumb-interwork -EL -mfpu=vfp "
    "-mfloat-abi=soft\n"
    "\n"
    // The assembly file stays beside the object: removing it would cost Ninja a process per
    // file where tidemake removes it without one.
    "rule cc\n"
    "  command = $tools/cc1 $cflags $includes $targetdefines $defines -MD ${out}.d -MQ $out "
    "-quiet -gdwarf-2 -fno-builtin $in -o ${out}.s && $tools/as $asflags ${out}.s -o $out\n"
    "  depfile = ${out}.d\n"
    "  deps = gcc\n"
    "  description = Compiling $in\n"
    "\n"
    "rule ar\n"
    "  command = $tools/ar -rcs $out $in\n"
    "  description = Archiving $out\n";

QString ninjaLibrary(const Project &project)
{
    return project.name + QStringLiteral("/Ninja/") + project.name + QStringLiteral(".a");
}

// The build lines of one project: each object, then the library. The objects wait for the
// libraries of the projects this one depends on, as tidemake builds those first.
QString ninjaProject(const SolutionShape &shape, const QList<Project> &projects, int index)
{
    const Project &project = projects[index];
    QString orderOnly;
    for (int dependency : project.dependencies)
        orderOnly += QLatin1Char(' ') + ninjaLibrary(projects[dependency]);
    if (!orderOnly.isEmpty())
        orderOnly.prepend(QStringLiteral(" ||"));

    QString text;
    QString objects;
    for (int file = 0; file < shape.filesPerProject; ++file) {
        const QString source = sourceName(shape, file);
        const QString object = project.name + QStringLiteral("/Ninja/") +
                               source.left(source.size() - 2) + QStringLiteral(".o");
        objects += QLatin1Char(' ') + object;
        QString defines = QStringLiteral("-D%1_DEBUG -DDEBUG -DBASE").arg(project.name);
        if (file % 10 == 3)
            defines.prepend(QStringLiteral("-DFILE_%1 ").arg(file));
        text += QStringLiteral("build %1: cc %2/src/%3%4\n  includes = -I%2/include\n"
                               "  defines = %5\n")
                    .arg(object, project.name, source, orderOnly, defines);
    }
    text += QStringLiteral("build %1: ar%2\n").arg(ninjaLibrary(project), objects);
    return text;
}

} // namespace

QString generateNinjaFile(const QString &directory, const SolutionShape &shape,
                          const QString &benchDirectory, QString *error)
{
    QString ignored;
    if (!error)
        error = &ignored;
    if (!shape.librariesOnly) {
        *error = QStringLiteral("build.ninja is written for library projects only");
        return QString();
    }
    // The directory goes into shell commands unquoted.
    for (QChar c : benchDirectory)
        if (!c.isLetterOrNumber() && !QStringLiteral("/._-+").contains(c)) {
            *error = QStringLiteral("the bench directory's path must be plain: ") + benchDirectory;
            return QString();
        }

    const QList<Project> projects = projectsOf(shape);
    QString text =
        QStringLiteral("ninja_required_version = 1.3\nbench = %1\ntools = $bench/gcc/bin\n")
            .arg(benchDirectory);
    text += QLatin1String(ninjaRules);
    QStringList libraries;
    for (int i = 0; i < projects.size(); ++i) {
        text += QLatin1Char('\n') + ninjaProject(shape, projects, i);
        libraries.append(ninjaLibrary(projects[i]));
    }
    text += QStringLiteral("\nbuild all: phony %1\ndefault all\n").arg(libraries.join(' '));

    const QString path = directory + QStringLiteral("/build.ninja");
    return writeFile(path, text.toUtf8(), error) ? path : QString();
}
