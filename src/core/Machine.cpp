#include "core/Machine.h"

#include "platform/os/Processes.h"

namespace mailvane {

int FreeResourcesPercent() {
    return 0;
}

std::string GetLocalIpAddress() {
    return LocalIpAddress();
}

}  // namespace mailvane
