#pragma once

class TidemakeArgParse;

/// Carries out the build that the checked command line asks for.
void runBuildRequest(TidemakeArgParse &options);
