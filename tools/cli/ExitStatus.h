// The exit statuses every workbench command follows, and their wording for --help and the
// README. A command never invents another status: a new command picks from these.
#pragma once

namespace pctool {

enum Exit : int {
  kOk = 0,        // done; warnings (on stderr) leave the status at 0
  kBadInput = 1,  // an input file is unusable, or the job failed (an output not written, ...)
  kUsage = 2,     // the command line itself is wrong
  kInternal = 3,  // main caught an exception that escaped the command: a fault of the tool
};

// Printed after every command's own --help text.
constexpr const char kExitContract[] =
    "\n"
    "exit status (the same for every command):\n"
    "  0  done; warnings about implausible data go to stderr and keep the status 0\n"
    "  1  an input file is unusable (missing, a folder, malformed, or data no panel can\n"
    "     produce), or the job failed: an output could not be written, a panel's tables never\n"
    "     became ready, a display name is not in the property file, a display's files cannot\n"
    "     be looked at\n"
    "  2  bad usage: unknown option, missing or malformed argument\n"
    "  3  internal error: the command stopped on an exception it did not expect (one line\n"
    "     names the command and the exception; what was written before may be incomplete)\n"
    "Every failure prints one line on stderr naming the file and the fault.\n";

}  // namespace pctool
