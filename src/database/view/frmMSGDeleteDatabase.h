#pragma once

#include <cstddef>

#include "core/Workbench.h"

namespace mailvane {

/// Asks before records are deleted; leaves the answer in DialogAnswer.
class frmMSGDeleteDatabase final : public WorkbenchForm {
public:
    explicit frmMSGDeleteDatabase(Workbench& wb);

    Label lblText{*this, "lblText"};
    CheckBox Check1{*this, "Check1"};
    Button cmdYes{*this, "cmdYes", [this] { Answer(true); }};
    Button cmdNo{*this, "cmdNo", [this] { Answer(false); }};

    void AskFor(std::size_t count);

    void OnCloseBox() override { Answer(false); }

private:
    void Answer(bool yes);
};

/// True when so many records are to be deleted; not asked when the user has said so once for all.
bool AskToDelete(Workbench& wb, std::size_t count);

}  // namespace mailvane
