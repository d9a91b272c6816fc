// printf into a std::string, for the numbers in the workbench's messages and pages.
#pragma once

#include <string>

namespace pctool {

std::string printfString(const char* format, ...) __attribute__((format(printf, 1, 2)));

// `v` with the fewest decimals (at least `least`) that read back as `v`: a limit as it was given.
std::string exactFigure(double v, int least = 0);
// `v` with the fewest decimals (at least `least`) at which the printed figure lies on the same
// side of `limit` (at most, or above) as `v`: 1.302 against 1.3 reads "1.302", not "1.30".
std::string decidingFigure(double v, double limit, int least = 2);

}  // namespace pctool
