#pragma once

/// What the program answers to its caller.
enum ExitCode : int {
    exitDone = 0,
    exitBadData = 1,     ///< the document is damaged, or holds what cannot be evaluated
    exitWrongUse = 2,    ///< arguments that make no sense, or name a channel that is not there
    exitInputOutput = 3, ///< something could not be read or written
    exitInterrupted = 130,
};
