#pragma once

namespace platform {

// What the runner says to the launcher (tools/confine):
//
//     confine [WORD]... -- PROGRAM ARGV0 [ARGUMENT]...
//
// The launcher becomes PROGRAM, or waits for it and ends as it ended.

constexpr const char* parentWord = "--parent=";  ///< + number of the process whose end ends the tool
constexpr const char* reportWord = "--report";   ///< reportDescriptor is open
constexpr const char* writeWord = "--write=";    ///< + host path below which the run may change things

// One for each layer, which must then hold: what cannot be had is an error.
constexpr const char* mountsWord = "--mounts";
constexpr const char* processesWord = "--processes";
constexpr const char* landlockWord = "--landlock";
constexpr const char* callsWord = "--calls";

/// Alone, it ends well and does nothing: a program to try the layers with.
constexpr const char* probeWord = "--probe";

/// Its end without a byte means that the tool runs. Otherwise an int comes, the errno of what failed.
constexpr int reportDescriptor = 3;

// Exit statuses of a launcher that did not become the tool; the report says why.
constexpr int notConfinedStatus = 126;  ///< a layer cannot be had, or a folder to write in does not exist
constexpr int notExecutedStatus = 127;  ///< PROGRAM cannot be executed

}  // namespace platform
