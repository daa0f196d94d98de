#pragma once

#include <memory>
#include <string>
#include <typeindex>

#include "core/ApplicationState.h"
#include "core/Shell.h"
#include "core/commands/Commands.h"
#include "core/run/Runs.h"
#include "platform/forms/FormRegistry.h"
#include "platform/forms/WindowSystem.h"
#include "platform/os/Clock.h"
#include "platform/os/Processes.h"

namespace mailvane {

struct Workbench;

inline constexpr const char* ProgramTitle = "Mailvane";
inline constexpr const char* ProgramVersion = "1.50";

/// The machine as the program sees it. Tests put their own parts here.
struct Platform {
    WindowSystem& windows;
    Clock& clock;
    Processes& processes;
    std::string programFolder;  ///< the program's own data, without a separator at its end
    std::string shareFolder;    ///< the installation's read-only files
    std::string registryFile;   ///< the user settings
};

/// The loaded forms, by type and by name.
class Forms : public FormRegistry {
public:
    Forms(Workbench& workbench, WindowSystem& windows)
        : FormRegistry(windows), workbench_(workbench) {}

    template <class F>
    F& Load() {
        return static_cast<F&>(
            LoadAs(typeid(F), [this] { return std::make_unique<F>(workbench_); }));
    }
    /// The form, loaded when it is not.
    template <class F>
    F& Get() {
        return Load<F>();
    }
    /// Null when it is not loaded.
    template <class F>
    F* Find() const {
        return static_cast<F*>(FindAs(typeid(F)));
    }

private:
    Workbench& workbench_;
};

/// One per process; every test makes its own.
struct Workbench {
    explicit Workbench(Platform& thePlatform)
        : platform(thePlatform), forms(*this, thePlatform.windows), runs(*this) {}

    ApplicationState state;
    Platform& platform;
    Forms forms;
    Runs runs;
    Commands commands;
    Shell* shell = nullptr;  ///< not owned; set by the main form
};

/// A form that works on the workbench: what all the program's forms are.
class WorkbenchForm : public Form {
public:
    WorkbenchForm(Workbench& workbench, std::string name, std::string caption,
                  FormStyle style = FormStyle::Dialog)
        : Form(workbench.platform.windows, std::move(name), std::move(caption), style),
          wb_(workbench) {}

protected:
    Workbench& wb_;
};

}  // namespace mailvane
