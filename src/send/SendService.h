#pragma once

#include <memory>

#include "core/Workbench.h"

namespace mailvane {

/// Attaches the send run, the SMTP logon and the internal mail server to frmSettings whenever that
/// form is made. One per workbench; lives as long.
class SendService {
public:
    explicit SendService(Workbench& wb);
    ~SendService();

private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace mailvane
