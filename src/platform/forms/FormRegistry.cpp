#include "platform/forms/FormRegistry.h"

#include <algorithm>

#include "platform/forms/WindowSystem.h"
#include "platform/os/TextCase.h"

namespace mailvane {

FormRegistry::FormRegistry(WindowSystem& windows) : windows_(windows) {
    idle_ = windows.idle.Observe([this] {
        if (windows_.ModalDepth() == 0) DestroyUnloaded();
    });
}

FormRegistry::~FormRegistry() {
    DestroyUnloaded();
    while (!entries_.empty()) {
        const Entry last = std::move(entries_.back());
        entries_.pop_back();
        windows_.FormGone(*last.form);
    }
}

Form& FormRegistry::LoadAs(std::type_index type,
                           const std::function<std::unique_ptr<Form>()>& make) {
    if (Form* loaded = FindAs(type)) return *loaded;
    entries_.push_back({type, make()});
    Form& form = *entries_.back().form;
    form.registry_ = this;
    created.Tell(form);
    form.OnLoad();
    return form;
}

Form* FormRegistry::FindAs(std::type_index type) const {
    for (const Entry& entry : entries_)
        if (entry.type == type) return entry.form.get();
    return nullptr;
}

Form* FormRegistry::FindByName(const std::string& name) const {
    for (const Entry& entry : entries_)
        if (SameName(entry.form->Name(), name)) return entry.form.get();
    return nullptr;
}

std::vector<Form*> FormRegistry::All() const {
    std::vector<Form*> forms;
    for (const Entry& entry : entries_)
        forms.push_back(entry.form.get());
    return forms;
}

bool FormRegistry::Unload(Form& form) {
    if (form.registry_ != this || form.unloading_) return true;
    if (!form.OnQueryUnload()) return false;
    Remove(form);
    return true;
}

void FormRegistry::UnloadAllExcept(const std::vector<std::string>& names) {
    for (Form* form : All()) {
        const bool stays = std::any_of(names.begin(), names.end(), [&](const std::string& name) {
            return SameName(name, form->Name());
        });
        if (!stays) Remove(*form);
    }
}

void FormRegistry::Remove(Form& form) {
    if (form.registry_ != this || form.unloading_) return;
    form.unloading_ = true;
    form.Hide();
    form.OnUnload();
    unloading.Tell(form);
    for (Control* control : form.Controls())
        if (control->Kind() == ControlKind::Timer) static_cast<Timer*>(control)->Stop();
    // What OnUnload has shown again is not left on the screen.
    form.visible_ = false;
    form.gone_ = true;
    form.registry_ = nullptr;
    windows_.FormGone(form);
    const auto entry = std::find_if(entries_.begin(), entries_.end(),
                                    [&](const Entry& e) { return e.form.get() == &form; });
    unloaded_.push_back(std::move(entry->form));
    entries_.erase(entry);
}

void FormRegistry::DestroyUnloaded() {
    const auto going = std::move(unloaded_);
    unloaded_.clear();
}

}  // namespace mailvane
