#pragma once

namespace mailvane {

/// How the connection is secured (the values of the settings form).
enum class Security : int { Automatic = 0, RequireStartTls = 1, ImplicitTls = 2, None = 3 };

}  // namespace mailvane
