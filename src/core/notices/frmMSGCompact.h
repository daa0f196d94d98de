#pragma once

#include "core/notices/NoticeForm.h"

namespace mailvane {

inline constexpr const char* MessagesCompactedText = "Successfully compacted message folders.";

/// Warns before a compaction on command. The answer is left in `CompactConfirmed`; a user who does
/// not want to see this again has said yes.
class frmMSGCompact final : public NoticeForm {
public:
    explicit frmMSGCompact(Workbench& wb);

    Label lblText{*this, "lblText",
                  "Compacting writes the whole file anew and can take a while. Nothing else can be "
                  "done with it meanwhile."};
    CheckBox Check1{*this, "Check1"};
    Button cmdStart{*this, "cmdStart", [this] { Answer(true); }};
    Button cmdCancel{*this, "cmdCancel", [this] { Answer(false); }};

protected:
    void OnLoad() override;
    void Skip() override { Answer(true); }

private:
    void Answer(bool confirmed);
};

/// True when the user wants the compaction.
bool ConfirmCompaction(Workbench& wb);

}  // namespace mailvane
