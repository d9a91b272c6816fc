// printf into a std::string, for the numbers in the workbench's messages and pages.
#pragma once

#include <string>

namespace pctool {

std::string printfString(const char* format, ...) __attribute__((format(printf, 1, 2)));

}  // namespace pctool
