// The lot forms of mkdevice and verify: their commands hand over when "--lot" is given.
#pragma once

#include <string>
#include <vector>

namespace pctool {

extern const char kMkdeviceLotHelp[];
extern const char kVerifyLotHelp[];
int runMkdeviceLot(const std::vector<std::string>& args);
int runVerifyLot(const std::vector<std::string>& args);

}  // namespace pctool
