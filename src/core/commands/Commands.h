#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "core/commands/ToolTable.h"
#include "platform/forms/Event.h"

namespace mailvane {

struct Workbench;
class Form;

/// The commands of the main window. The folder that carries a command out registers it here; the
/// main window only lays it out. One that is registered without work is off and says why.
class Commands {
public:
    /// Takes the place of a command with the same name.
    void Register(Tool command);
    template <std::size_t count>
    void Register(Workbench& wb, const ToolRow<Workbench> (&rows)[count]) {
        for (const ToolRow<Workbench>& row : rows)
            Register(row.For(wb));
    }

    const std::vector<Tool>& All() const { return commands_; }
    const Tool* Find(const std::string& name) const;  ///< case ignored; null when there is none

    Event<const Tool&> registered;

private:
    std::vector<Tool> commands_;
};

/// Shows a view and brings it forward. One that found nothing to show has said so when it was
/// loaded, and has gone.
void ShowView(Form& view);

}  // namespace mailvane
