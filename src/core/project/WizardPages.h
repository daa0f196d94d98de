#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/forms/Form.h"

namespace mailvane {

struct WizardPage {
    Panel* panel;
    Control* first;  ///< gets the keyboard when the user comes to the page
};

/// The pages of a wizard: one panel is shown at a time, Back and Next lead from one to the other.
class WizardPages {
public:
    WizardPages(std::vector<WizardPage> pages, Button& back, Button& next);

    std::function<bool(int page)> mayLeave;  ///< false keeps the user there; for Next only

private:
    void GoOn();
    void Show(int page);
    std::vector<WizardPage> pages_;
    Button& back_;
    Button& next_;
    int current_ = 0;
};

}  // namespace mailvane
