#pragma once

/// What a build does to an element. 4 and 9 have no name: 4 is built like a compile, 9 has
/// no output and stops the platform build with no work.
enum BuildAction {
    ActionNone = 0,         ///< nothing to do
    ActionExcluded = 1,     ///< a file excluded from the build
    ActionCompileC = 2,     ///< compile a C file
    ActionCompileCpp = 3,   ///< compile a C++ file
    ActionCompileForth = 5, ///< compile a Forth file
    ActionCompileBasic = 6, ///< compile a Basic file
    ActionAssemble = 7,     ///< assemble a file
    ActionExternal = 8,     ///< a ready-made file or an externally built project
    ActionLink = 10,        ///< link an executable
    ActionArchive = 11,     ///< make a library
    ActionStage = 12,       ///< stage a file of a staging project
    ActionCombine = 13      ///< run the combine command of a combining project
};
