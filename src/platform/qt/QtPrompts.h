#pragma once

#include <functional>
#include <optional>
#include <string>

#include "platform/forms/Prompts.h"

class QDialog;
class QWidget;

namespace mailvane {

/// Shows the dialog and returns when it is closed.
using DialogLoop = std::function<void(QDialog&)>;

BoxAnswer AskMessageBoxWith(const DialogLoop& loop, QWidget* parent, const BoxRequest& request);
std::optional<std::string> AskInputWith(const DialogLoop& loop, QWidget* parent,
                                        const InputRequest& request);
std::optional<std::string> AskFileWith(const DialogLoop& loop, QWidget* parent,
                                       const FileRequest& request);

}  // namespace mailvane
