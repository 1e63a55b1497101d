// gensettingsdoc: writes the reference of every setting, docs/settings.md, from the live
// property catalogue, so that the reference says what the program does.
//
// Usage: gensettingsdoc [OUTPUT]   (standard output without OUTPUT)

#include "engine/buildsystem.h"
#include "project/armprojectsystem.h"
#include "project/projectelement.h"
#include "properties/propertyclass.h"
#include "properties/propertyvalue.h"
#include "properties/propertyvaluelist.h"
#include "toolchain/armbuildsystem.h"

#include <QCoreApplication>
#include <QFile>
#include <QMap>
#include <QTextStream>

#include <cstdio>
#include <memory>

namespace {

/// The kinds of element a setting can be offered on, in the order the reference lists them.
enum Place { Solutions, Projects, Folders, Files, StagedFiles, PlaceCount };

const char *const placeNames[PlaceCount] = {
    "Solutions", "Projects of type", "Folders in projects of type",
    "Files of type (outside Staging projects)", "Files in Staging projects"};

/// For each save name, the types of element of each place that offer it.
using Offers = QMap<QString, QList<QStringList>>;

ProjectElement *add(ProjectElement *parent, int type, const QString &name)
{
    auto *element = new ProjectElement(type);
    element->setName(name);
    parent->appendChild(element);
    return element;
}

void record(Offers &offers, ProjectElement *element, Place place, const QString &kind)
{
    const std::unique_ptr<PropertyValueList> values(
        projectSystem->settingsFor(element, ProjectElement::commonConfiguration()));
    for (const PropertyValue *value : std::as_const(*values)) {
        QList<QStringList> &places = offers[value->propertyClass()->saveName()];
        places.resize(PlaceCount);
        if (!places[place].contains(kind))
            places[place].append(kind);
    }
}

/// Asks the project system which settings it offers on a solution, on a project of every
/// type, a folder in each and a file of every type.
Offers findOffers()
{
    Offers offers;
    ProjectElement solution(ProjectElement::Solution);
    solution.setName(QStringLiteral("reference"));
    record(offers, &solution, Solutions, QString());
    const QString common = ProjectElement::commonConfiguration();
    for (const QString &projectType : StandardProjectSystem::projecttypes()) {
        ProjectElement *project = add(&solution, ProjectElement::Project, projectType);
        projectSystem->setProperty(project, QStringLiteral("project_type"), common, projectType);
        record(offers, project, Projects, projectType);
        record(offers, add(project, ProjectElement::Folder, QStringLiteral("folder")), Folders,
               projectType);
        QStringList fileTypes = StandardProjectSystem::filetypes();
        if (projectType == QLatin1String("Staging"))
            fileTypes = QStringList{QString()};
        else if (projectType != QLatin1String("Executable"))
            continue; // outside Staging projects a file's settings don't depend on its project
        for (const QString &fileType : fileTypes) {
            ProjectElement *file = add(project, ProjectElement::File, QStringLiteral("file"));
            if (!fileType.isEmpty())
                projectSystem->setProperty(file, QStringLiteral("file_type"), common, fileType);
            record(offers, file, projectType == QLatin1String("Staging") ? StagedFiles : Files,
                   fileType);
        }
    }
    return offers;
}

/// `text` safe inside Markdown prose: no HTML tags, no line breaks.
QString prose(QString text)
{
    return text.replace(QLatin1Char('<'), QLatin1String("&lt;"))
        .replace(QLatin1Char('\n'), QLatin1Char(' '))
        .trimmed();
}

QString code(const QString &text)
{
    return QLatin1Char('`') + text + QLatin1Char('`');
}

QString typeText(const PropertyClass *propertyClass)
{
    switch (propertyClass->type()) {
    case PropertyClass::StringList:
        return QStringLiteral("list: items separated by `;`, a backslash escapes the next "
                              "character; values from every level are joined");
    case PropertyClass::DirPathList:
        return QStringLiteral("list of directories separated by `;`; the nearest value wins");
    case PropertyClass::Integer:
    case PropertyClass::IntegerHex:
    case PropertyClass::IntegerRange:
        if (propertyClass->minimum() < propertyClass->maximum())
            return QStringLiteral("%1, from %2 to %3")
                .arg(PropertyClass::typeName(propertyClass->type()))
                .arg(propertyClass->minimum())
                .arg(propertyClass->maximum());
        return PropertyClass::typeName(propertyClass->type());
    default:
        return PropertyClass::typeName(propertyClass->type());
    }
}

void writeSetting(QTextStream &out, const PropertyClass *propertyClass,
                  const QList<QStringList> &places)
{
    out << "### " << code(propertyClass->saveName()) << "\n\n";
    out << "**" << prose(propertyClass->shortDescription()) << "**";
    if (!propertyClass->longDescription().isEmpty())
        out << ": " << prose(propertyClass->longDescription());
    out << "\n\n";
    out << "- Type: " << typeText(propertyClass);
    if (!propertyClass->suffix().isEmpty())
        out << ", in " << propertyClass->suffix();
    out << "\n";
    if (propertyClass->type() == PropertyClass::Enumeration ||
        propertyClass->type() == PropertyClass::Boolean) {
        QStringList values;
        for (const QString &value : propertyClass->enumerates())
            values << code(value);
        out << "- Values: " << values.join(QLatin1String(", ")) << "\n";
    }
    auto defaultText = [](const PropertyClass *of) {
        return of->defaultValue().isEmpty() ? QStringLiteral("empty") : code(of->defaultValue());
    };
    // The output file name is one save name with a form for executables and one for
    // libraries; the catalogue keeps one of them under the name.
    const PropertyClass *linkerForm = buildSystem->linkerOutputFileNameProperty;
    const PropertyClass *libraryForm = buildSystem->libraryOutputFileNameProperty;
    if (propertyClass->saveName() == linkerForm->saveName() && linkerForm != libraryForm)
        out << "- Default: " << defaultText(linkerForm) << " for executables, "
            << defaultText(libraryForm) << " for libraries\n";
    else
        out << "- Default: " << defaultText(propertyClass) << "\n";
    if (!propertyClass->perConfiguration())
        out << "- Set in the `Common` configuration only\n";
    if (propertyClass->readOnly())
        out << "- Shown by the program, not set in a file\n";
    bool offered = false;
    for (int place = 0; place < PlaceCount; ++place) {
        const QStringList kinds = places.value(place);
        if (kinds.isEmpty())
            continue;
        if (!offered)
            out << "- Offered on:\n";
        offered = true;
        out << "  - " << placeNames[place];
        if (place != Solutions && place != StagedFiles)
            out << ": " << kinds.join(QLatin1String(", "));
        out << "\n";
    }
    if (!offered)
        out << "- Offered on no element; read wherever it is set\n";
    out << "\n";
}

QString reference()
{
    const Offers offers = findOffers();
    // Every class of both catalogues, grouped as their group names say.
    QMap<QString, QMap<QString, const PropertyClass *>> groups;
    QMap<QString, PropertyClass *> classes = buildSystem->propertyClasses();
    const ProjectSystem *model = projectSystem;
    for (PropertyClass *own :
         {model->dateCreatedClass, model->dateModifiedClass, model->platformClass,
          model->fullPathClass, model->relativePathClass, model->nameClass, model->fileNameClass,
          model->fileCodecClass, model->fileTypeClass, model->filterClass, model->projectTypeClass,
          model->solutionFileNameClass, model->projectDirectoryClass,
          model->fullProjectDirectoryClass, model->projectDependenciesClass, model->macrosClass,
          model->batchBuildConfigurationsClass, model->inheritedConfigurationsClass})
        classes.insert(own->saveName(), own);
    for (const PropertyClass *propertyClass : std::as_const(classes))
        groups[propertyClass->group()].insert(propertyClass->saveName(), propertyClass);

    QString text;
    QTextStream out(&text);
    out << "# Settings reference\n\n"
        << "<!-- Written by tools/gensettingsdoc from the program's own catalogue; don't edit\n"
        << "     it by hand. After a change to a setting run\n"
        << "     build/bin/gensettingsdoc docs/settings.md -->\n\n"
        << "Every setting a solution file can hold, by group. A setting is an attribute of a "
           "`configuration` element, named by its save name (the heading). How a value is "
           "looked up through elements and configurations is told in "
           "[the guide](solution-files.md#how-a-setting-is-resolved). \"Offered on\" says on "
           "which elements the program lists the setting; a value set on an element above "
           "reaches those below it.\n\n";
    out << "| Group | Settings |\n|---|---|\n";
    for (auto group = groups.cbegin(); group != groups.cend(); ++group)
        out << "| " << prose(group.key()) << " | " << group.value().size() << " |\n";
    out << "\n";
    for (auto group = groups.cbegin(); group != groups.cend(); ++group) {
        out << "## " << prose(group.key()) << "\n\n";
        for (const PropertyClass *propertyClass : group.value())
            writeSetting(out, propertyClass, offers.value(propertyClass->saveName()));
    }
    out.flush();
    return text;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    projectSystem = new ARMProjectSystem;
    buildSystem = new ARMBuildSystem(QStringList());
    const QByteArray text = reference().toUtf8();
    if (argc < 2) {
        std::fwrite(text.constData(), 1, size_t(text.size()), stdout);
        return 0;
    }
    QFile file(QString::fromLocal8Bit(argv[1]));
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size()) {
        std::fprintf(stderr, "gensettingsdoc: can't write %s\n", argv[1]);
        return 1;
    }
    return 0;
}
