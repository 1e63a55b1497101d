// Measures setting resolution on a wide solution: the cost per look-up must follow the depth
// of the element, not the number of its siblings or of the projects.

#include "project/armprojectsystem.h"
#include "project/projectelement.h"
#include "properties/propertyclass.h"

#include <QElapsedTimer>
#include <QList>

#include <cstdio>

namespace {

using E = ProjectElement;

E *add(ProjectElement *parent, int type, const QString &name)
{
    auto *element = new E(type);
    element->storeAttribute(QStringLiteral("Name"), name);
    parent->appendChild(element);
    return element;
}

/// Runs `lookUps` look-ups over `files` and prints the time of one.
template <typename LookUp> void measure(const char *what, const QList<E *> &files, LookUp lookUp)
{
    const int rounds = 20;
    QElapsedTimer timer;
    timer.start();
    qsizetype total = 0;
    for (int round = 0; round < rounds; ++round) {
        for (E *file : files)
            total += lookUp(file).size();
    }
    const double ns = double(timer.nsecsElapsed()) / double(rounds * files.size());
    std::printf("%-44s %8.0f ns per look-up (%lld chars)\n", what, ns, (long long)total);
}

} // namespace

int main()
{
    ARMProjectSystem system;
    projectSystem = &system;
    PropertyClass single(QStringLiteral("c_x"), PropertyClass::String, QStringLiteral("G"),
                         QStringLiteral("X"), QString(), QStringLiteral("default"));
    PropertyClass list(QStringLiteral("c_l"), PropertyClass::StringList, QStringLiteral("G"),
                       QStringLiteral("L"), QString());

    for (int projects : {10, 100}) {
        E solution(E::Solution);
        system.setProperty(&solution, QStringLiteral("inherited_configurations"),
                           QStringLiteral("Debug"), QStringLiteral("Target;Base"));
        system.setProperty(&solution, QStringLiteral("c_l"), QStringLiteral("Common"),
                           QStringLiteral("s"));
        QList<E *> files;
        for (int p = 0; p < projects; ++p) {
            E *project = add(&solution, E::Project, QStringLiteral("P%1").arg(p));
            system.setProperty(project, QStringLiteral("c_l"), QStringLiteral("Base"),
                               QStringLiteral("b"));
            for (int f = 0; f < 10; ++f) {
                E *folder = add(project, E::Folder, QStringLiteral("F%1").arg(f));
                for (int i = 0; i < 100; ++i)
                    files.append(add(folder, E::File, QStringLiteral("f%1.c").arg(i)));
            }
        }
        std::printf("%d projects, %lld files:\n", projects, (long long)files.size());
        measure("  single value, default (whole walk)", files,
                [&](E *file) { return system.settingFor(file, &single, QStringLiteral("Debug")); });
        measure("  list value, three finds", files,
                [&](E *file) { return system.settingFor(file, &list, QStringLiteral("Debug")); });
    }
    projectSystem = nullptr;
    return 0;
}
