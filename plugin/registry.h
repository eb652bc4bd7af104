// Registration of every external function with the host, and the one function through which the host runs
// them all.
#pragma once

namespace corvane {

/// Registers the sound functions in the order of their ids. A refusal takes the ones before it back, from
/// the last to the first, and answers false.
bool RegisterSoundFunctions();

/// Registers the image and file functions under ids counted from 51. The host may refuse any of them: it
/// then lacks that function, whose id stays taken. The file functions start with their default folder.
void RegisterImageAndFileFunctions();

/// Takes back every id from one above the last that was handed out down to 1.
void UnregisterAllFunctions();

} // namespace corvane
