// One page for a verified table: the CIEDE2000 of each reference colour and grey level, as
// predicted from the panel's optical data and, when the panel was measured with the table
// applied, as measured - so an engineer sees at a glance where model and panel part.
#pragma once

#include <string>

#include "tools/lib/verify/Verify.h"

namespace pctool {

// False when built without cairo.
bool verifyPageSupported();
// `r` must carry a prediction. False with a reason when the page cannot be written.
bool drawVerifyPage(const std::string& path, const VerifyResult& r, std::string& error);

}  // namespace pctool
