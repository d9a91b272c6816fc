// The colorimeter side of `odf`: the patch set as a CGATS .ti1, and an .odf from a .ti3.
#pragma once

#include <string>

namespace pctool {

// `odf patches --ti1 OUT`; an exit status.
int writeOdfPatchesTi1(const std::string& out);
// `odf write OUT --ti3 FILE`; nothing is written when the readings are unusable.
int writeOdfFromTi3(const std::string& out, const std::string& ti3);

}  // namespace pctool
