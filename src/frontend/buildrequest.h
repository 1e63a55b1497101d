#pragma once

class TidemakeArgParse;

/// Carries out the build that the checked command line asks for. Returns false when a step
/// of the build failed or an error was reported; an interrupt is main's to tell.
bool runBuildRequest(TidemakeArgParse &options);
