#pragma once

#include <cstddef>

#include "core/notices/NoticeForm.h"

namespace mailvane {

/// Asks before records are deleted.
class frmMSGDeleteDatabase final : public NoticeQuestion {
public:
    explicit frmMSGDeleteDatabase(Workbench& wb);

    void AskFor(std::size_t count);
};

/// True when so many records are to be deleted; not asked when the user has said so once for all.
bool AskToDelete(Workbench& wb, std::size_t count);

}  // namespace mailvane
