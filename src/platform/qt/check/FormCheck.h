#pragma once

#include <string>
#include <vector>

namespace mailvane {

class Form;

/// What is wrong between a form and its design, one complaint an entry, each beginning with the
/// form's name: controls without a widget or with one of the wrong kind, input widgets that are no
/// controls, inputs without a label or a name for screen readers, mnemonics that occur twice, and
/// a tab order that does not hold each input once. The main form, made without a design, and a form
/// that has none are not checked here. Needs a living QtWindows.
std::vector<std::string> CheckForm(const Form& form);
/// False for a form that never comes to the screen.
bool HasDesign(const Form& form);

}  // namespace mailvane
