#include "foundation/path.h"
#include "foundation/qtx.h"

#include <cstdio>
#include <dlfcn.h>

namespace QTx {

void *loadDLL(const QString &name)
{
    QString file = name;
    if (file.endsWith(QLatin1String(".dll")))
        file.replace(file.indexOf(QLatin1String(".dll")), 4, QLatin1String(".so"));
    void *handle = ::dlopen(Path::toOsBytes(file).constData(), RTLD_LAZY);
    if (!handle) {
        const char *error = ::dlerror();
        fprintf(stderr, "%s\n", error ? error : "cannot load library");
    }
    return handle;
}

void *getDLLAddress(void *handle, const QString &name)
{
    return ::dlsym(handle, name.toLatin1().constData());
}

bool unloadDLL(void *handle)
{
    return handle && ::dlclose(handle) == 0;
}

} // namespace QTx
