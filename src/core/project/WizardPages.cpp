#include "core/project/WizardPages.h"

namespace mailvane {

WizardPages::WizardPages(std::vector<WizardPage> pages, Button& back, Button& next)
    : pages_(std::move(pages)), back_(back), next_(next) {
    back_.onClick = [this] { Show(current_ - 1); };
    next_.onClick = [this] { GoOn(); };
    Show(0);
}

void WizardPages::GoOn() {
    if (!mayLeave || mayLeave(current_)) Show(current_ + 1);
}

void WizardPages::Show(int page) {
    const int last = static_cast<int>(pages_.size()) - 1;
    current_ = page;
    for (int i = 0; i <= last; ++i)
        pages_[static_cast<std::size_t>(i)].panel->SetVisible(i == page);
    back_.SetEnabled(page > 0);
    next_.SetEnabled(page < last);
    // Also because the button that was pressed may be disabled now.
    pages_[static_cast<std::size_t>(page)].first->Focus();
}

}  // namespace mailvane
