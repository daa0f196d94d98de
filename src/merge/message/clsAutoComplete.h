#pragma once

#include <string>

#include "platform/forms/TextControls.h"

namespace mailvane {

/// Offers the rest of a known text while the user types the begin of it into a text box. The offer
/// is selected, so that the next key replaces it.
class clsAutoComplete {
public:
    clsAutoComplete() = default;
    clsAutoComplete(const clsAutoComplete&) = delete;
    clsAutoComplete& operator=(const clsAutoComplete&) = delete;

    TextBox* CompleteTextbox() const { return textBox_; }
    /// Takes the box's onKeyUp. The box must not outlive this object.
    void SetCompleteTextbox(TextBox& textBox);

    std::string SearchList;
    std::string Delimeter;  ///< behind each text of SearchList

private:
    void KeyReleased(int keyCode);
    bool Matches(const std::string& entry, const std::string& text) const;
    void Offer(const std::string& entry, const std::string& text);
    TextBox* textBox_ = nullptr;
};

}  // namespace mailvane
