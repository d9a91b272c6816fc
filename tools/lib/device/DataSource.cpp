#include "tools/lib/device/DataSource.h"

#include "cache/Lut3DCacheManager.h"
#include "frontend/TablePlan.h"
#include "tools/lib/tables/TableSource.h"

namespace pctool {

std::string DataSource::word() const {
  switch (kind) {
    case Kind::Local: return "local";
    case Kind::Golden: return "golden";
    case Kind::MatchedGolden: return "golden although the identity matched";
    case Kind::Unknown: break;
  }
  return "unknown";
}

std::string DataSource::statement() const { return why.empty() ? word() : word() + " (" + why + ")"; }

DataSource describeDataSource(int trailer, const TableJob* job, uint32_t panel, const std::string& displayName) {
  DataSource d;
  d.trailer = trailer;
  switch (trailer) {
    case 0: d.kind = DataSource::Kind::Local; break;
    case 1: d.kind = DataSource::Kind::Golden; break;
    case 2: d.kind = DataSource::Kind::MatchedGolden; break;
    default: break;
  }
  if (d.kind == DataSource::Kind::Unknown) {
    d.why = trailer < 0 ? "no table cache" : "the cache names source " + std::to_string(trailer);
    return d;
  }
  namespace fe = postblend::fe;
  const fe::OdfOrigin origin = d.kind == DataSource::Kind::Local ? fe::OdfOrigin::Local : fe::OdfOrigin::Golden;
  for (int s = 0; s < fe::kOdfSets; ++s) d.odfPaths.push_back(fe::opticalDataPath(origin, panel, displayName, s));
  if (job == nullptr) {
    d.why = "the cache trailer says so; why is in the plugin's log, which was not given";
    return d;
  }
  std::string why = job->identityText();
  if (d.kind == DataSource::Kind::MatchedGolden && !job->odfFaults.empty()) {
    why += "; local data unusable: " + job->odfFaults.front();
    if (job->odfFaults.size() > 1) why += " and " + std::to_string(job->odfFaults.size() - 1) + " more";
  }
  if (job->fromCache) why += "; tables loaded from the cache";
  d.why = why;
  return d;
}

bool readCacheSource(const std::string& dir, uint32_t panel, uint32_t& source, std::string& error) {
  CacheContents c;
  if (!readCacheFile(dir + postblend::Lut3DCacheManager::cachePath(panel == 0 ? 0 : 1), c, error)) return false;
  if (!c.checkSumOk()) {
    error = "checksum mismatch";
    return false;
  }
  source = c.source;
  return true;
}

}  // namespace pctool
