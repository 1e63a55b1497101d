#include "frontend/builderhost.h"

namespace {
BuilderHost *registeredHost = nullptr;
}

BuilderHost::~BuilderHost() = default;

BuilderHost *builderHost()
{
    return registeredHost;
}

void setBuilderHost(BuilderHost *host)
{
    registeredHost = host;
}
