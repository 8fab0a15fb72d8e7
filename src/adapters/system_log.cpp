#include "adapters/system_log.h"

#include <syslog.h>

namespace lumenquest::adapters {

void SystemLog::write(const std::string& message) {
  syslog(LOG_USER | LOG_NOTICE, "lumenquest: %s", message.c_str());
}

}  // namespace lumenquest::adapters
