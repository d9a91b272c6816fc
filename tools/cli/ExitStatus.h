// The exit statuses every workbench command follows, and their wording for --help and the
// README. A command never invents another status: a new command picks from these three.
#pragma once

namespace pctool {

enum Exit : int {
  kOk = 0,        // done; warnings (on stderr) leave the status at 0
  kBadInput = 1,  // an input file is unusable, or the job failed (an output not written, ...)
  kUsage = 2,     // the command line itself is wrong
};

// Printed after every command's own --help text.
constexpr const char kExitContract[] =
    "\n"
    "exit status (the same for every command):\n"
    "  0  done; warnings about implausible data go to stderr and keep the status 0\n"
    "  1  an input file is unusable (missing, a folder, malformed, or data no panel can\n"
    "     produce), or the job failed: an output could not be written, a panel's tables never\n"
    "     became ready, a display name is not in the property file\n"
    "  2  bad usage: unknown option, missing or malformed argument\n"
    "Every failure prints one line on stderr naming the file and the fault.\n";

}  // namespace pctool
