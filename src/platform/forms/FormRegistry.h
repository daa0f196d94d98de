#pragma once

#include <functional>
#include <memory>
#include <string>
#include <typeindex>
#include <vector>

#include "platform/forms/Event.h"
#include "platform/forms/Form.h"

namespace mailvane {

/// The loaded forms, at most one of a type. Owns them.
class FormRegistry {
public:
    explicit FormRegistry(WindowSystem& windows);
    ~FormRegistry();
    FormRegistry(const FormRegistry&) = delete;
    FormRegistry& operator=(const FormRegistry&) = delete;

    /// The loaded form of that type, made by `make` and loaded when there is none.
    Form& LoadAs(std::type_index type, const std::function<std::unique_ptr<Form>()>& make);
    Form* FindAs(std::type_index type) const;         ///< null when not loaded
    Form* FindByName(const std::string& name) const;  ///< case ignored; null when not loaded
    bool IsFormLoaded(const std::string& name) const { return FindByName(name) != nullptr; }
    std::vector<Form*> All() const;  ///< in the order of loading

    /// True when the form has gone; false when it refused.
    bool Unload(Form& form);
    /// In the order of loading, without asking.
    void UnloadAllExcept(const std::vector<std::string>& names);
    /// Destroys the forms that have been unloaded; called by itself when the program is idle
    /// and no modal form is open, where no form's code is running.
    void DestroyUnloaded();

    /// A form has been made and is about to load: the moment to attach handlers to its buttons.
    Event<Form&> created;
    Event<Form&> unloading;

private:
    struct Entry {
        std::type_index type;
        std::unique_ptr<Form> form;
    };
    void Remove(Form& form);
    WindowSystem& windows_;
    std::vector<Entry> entries_;
    std::vector<std::unique_ptr<Form>> unloaded_;
    Subscription idle_;
};

}  // namespace mailvane
