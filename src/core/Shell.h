#pragma once

#include <string>

#include "core/run/Runs.h"
#include "platform/forms/Form.h"

namespace mailvane {

/// What the compaction of the recipients takes away: the views on them, the merge view among them.
inline constexpr Holds RecipientViews = Holds::Recipients | Holds::Message;

/// What lower parts ask of the main window.
class Shell {
public:
    virtual ~Shell() = default;

    /// Carries out the command of a tool of the main window. Disabled and NoSuchEntry do nothing.
    virtual ControlAnswer ExecuteCommand(const std::string& toolName,
                                         const std::string& toolCaption) = 0;
    virtual Form& MainForm() = 0;
    virtual void SetPanel(const std::string& text) = 0;  ///< panel 1 of the status bar
    virtual std::string Panel() const = 0;
    virtual void SetRecordPanel(const std::string& text) = 0;  ///< panel 2
    virtual ProgressBar& Progress() = 0;                       ///< `Progress1`
    virtual Button& ShowProgressButton() = 0;                  ///< `cmdProgress`
    virtual Button& HideProgressButton() = 0;                  ///< `cmdNoProgress`
    virtual Button& SaveButton() = 0;                          ///< `cmdSave`
    /// What `cmdCompactMessages` and `cmdCompactDatabase` do. False when it failed, or a run that
    /// has to end first is under way, which has been told.
    virtual bool CompactMessageStore() = 0;
    virtual bool CompactRecipients() = 0;
    virtual void AddRecentFile(const std::string& path) = 0;
};

}  // namespace mailvane
