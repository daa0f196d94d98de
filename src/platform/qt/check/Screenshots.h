#pragma once

#include <string>

namespace mailvane {

class Form;
class QtWindows;

/// Shows the form, draws its window, frame not included, and writes it as a PNG file. A form that
/// was not on the screen is taken off again. False when it has no design or the file cannot be
/// written.
bool SaveScreenshot(QtWindows& windows, Form& form, const std::string& path);

/// Turns all windows dark, as on a dark desktop, or back.
void UseDarkPalette(bool dark);

}  // namespace mailvane
