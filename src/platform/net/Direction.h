#pragma once

namespace mailvane {

/// Direction of a line of the conversation: from the server, to the server, or a remark.
enum class Direction : int { Received = 0, Sent = 1, None = 2 };

}  // namespace mailvane
