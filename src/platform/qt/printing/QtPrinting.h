#pragma once

#include <functional>
#include <string>

#include "platform/forms/Printing.h"
#include "platform/qt/QtPrompts.h"

namespace mailvane {

/// What a print needs of the program around it.
struct PrintDesk {
    DialogLoop loop;
    QWidget* parent = nullptr;
    /// Where the pages go on a machine without a printer; "" when the user cancels.
    std::function<std::string()> askPdfFile;
};

PrintOutcome PrintTableWith(const PrintDesk& desk, const PrintJob& job);

}  // namespace mailvane
