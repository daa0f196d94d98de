#pragma once

#include <cstdint>

#include "core/notices/NoticeForm.h"

namespace mailvane {

/// Caption of frmMSGSndRecvError, by which it is closed for an absent user.
inline constexpr const char* ErrorLogCaption = "Error log file";

/// Asks whether the error log of a run is to be shown.
class frmMSGSndRecvError final : public NoticeQuestion {
public:
    explicit frmMSGSndRecvError(Workbench& wb);

    /// Says that so many messages may have been accepted by the server all the same.
    void NoteDoubtful(std::int64_t count);
};

/// True when the user wants to see the log; not asked, and false, when he has said so once for all.
/// `doubtful` messages had their answer lost.
bool AskToShowErrorLog(Workbench& wb, std::int64_t doubtful);

}  // namespace mailvane
