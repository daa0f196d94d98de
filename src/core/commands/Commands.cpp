#include "core/commands/Commands.h"

#include <algorithm>

#include "platform/forms/Form.h"
#include "platform/os/TextCase.h"

namespace mailvane {

void Commands::Register(Tool command) {
    const auto same = std::find_if(commands_.begin(), commands_.end(), [&](const Tool& one) {
        return SameName(one.name, command.name);
    });
    if (same == commands_.end())
        commands_.push_back(command);
    else
        *same = command;
    registered.Tell(command);
}

const Tool* Commands::Find(const std::string& name) const {
    const auto found = std::find_if(commands_.begin(), commands_.end(),
                                    [&](const Tool& one) { return SameName(one.name, name); });
    return found == commands_.end() ? nullptr : &*found;
}

void ShowView(Form& view) {
    if (!view.IsLoaded()) return;
    view.Show();
    view.BringToFront();
}

}  // namespace mailvane
