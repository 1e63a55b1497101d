#include "frontend/buildrequest.h"

#include "frontend/tidemakeargparse.h"

void runBuildRequest(TidemakeArgParse &options)
{
    // Loading the solution and running the build come with the build engine.
    (void)options;
}
