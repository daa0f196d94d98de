#pragma once

#include <functional>
#include <string>

#include "core/Workbench.h"

namespace mailvane {

/// Asks for a text to find, again and again, for the form that shows it.
class frmFind final : public WorkbenchForm {
public:
    explicit frmFind(Workbench& wb);

    TextBox txtFind{*this, "txtFind"};
    CheckBox chkMatchCase{*this, "chkMatchCase"};
    Button cmdFind{*this, "cmdFind", [this] { Find(); }};
    Button cmdCancel{*this, "cmdCancel", [this] { Unload(); }};

    using FindText = std::function<void(const std::string& text, bool matchCase)>;
    /// From here on the texts are for `owner`.
    void ShowFor(const Form& owner, FindText find);
    /// The owner goes: so does this form, unless it is another one's by now.
    void CloseFor(const Form& owner);

private:
    void Find();
    const Form* owner_ = nullptr;
    FindText find_;
};

}  // namespace mailvane
