#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/forms/ActiveBar.h"
#include "platform/forms/ChoiceControls.h"
#include "platform/forms/Control.h"
#include "platform/forms/Grid.h"
#include "platform/forms/OtherControls.h"
#include "platform/forms/TextControls.h"

namespace mailvane {

class FormRegistry;
class WindowSystem;

enum class FormStyle {
    Main,    ///< the program's window, parent of the child windows
    Child,   ///< a window inside the main one
    Dialog,  ///< a window of its own above the main one
    Splash   ///< no frame
};
enum class WindowState { Normal = 0, Minimized = 1, Maximized = 2 };

/// Place and size in twips, as settings store them; 15 to a pixel. A negative width means: not
/// chosen, the window takes its own.
struct FormRect {
    double left = -1;
    double top = -1;
    double width = -1;
    double height = -1;

    friend bool operator==(const FormRect&, const FormRect&) = default;
};

/// A form: its controls are members of the class derived from it, in the order that counts; its
/// window is somebody else's business. Made and destroyed by FormRegistry.
class Form {
public:
    Form(WindowSystem& windows, std::string name, std::string caption,
         FormStyle style = FormStyle::Dialog);
    virtual ~Form();
    Form(const Form&) = delete;
    Form& operator=(const Form&) = delete;

    const std::string& Name() const { return name_; }
    FormStyle Style() const { return style_; }
    WindowSystem& Windows() const { return windows_; }

    const std::string& Caption() const { return caption_; }
    void SetCaption(std::string caption);
    const FormRect& Rect() const { return rect_; }
    void SetRect(const FormRect& rect);
    WindowState State() const { return state_; }
    void SetState(WindowState state);
    /// The window system says that the user has moved, sized or maximised the window.
    void PlacedByUser(const FormRect& rect, WindowState state);

    bool Visible() const { return visible_; }
    void Show();       ///< non-modal
    void ShowModal();  ///< returns when the form is hidden or unloaded
    void Hide();
    void BringToFront();
    /// Asks OnQueryUnload, then leaves the registry at once; the object lives until the program is
    /// idle. False when the form refused.
    bool Unload();
    bool IsLoaded() const { return registry_ != nullptr; }
    /// Unloaded, and alive only until the program is idle: it is never shown again.
    bool HasGone() const { return gone_; }

    const std::vector<Control*>& Controls() const { return controls_; }
    Control* FindControl(const std::string& name) const;  ///< case ignored; null when there is none

    /// The control box was pressed. Unloads the form unless the form does something else.
    virtual void OnCloseBox();

protected:
    virtual void OnLoad() {}
    virtual void OnActivate() {}                   ///< shown, or brought forward
    virtual bool OnQueryUnload() { return true; }  ///< false keeps the form
    virtual void OnUnload() {}

private:
    friend class Control;
    friend class FormRegistry;
    WindowSystem& windows_;
    FormRegistry* registry_ = nullptr;
    std::string name_;
    std::string caption_;
    FormStyle style_;
    FormRect rect_;
    WindowState state_ = WindowState::Normal;
    bool visible_ = false;
    bool unloading_ = false;
    bool gone_ = false;
    std::vector<Control*> controls_;
};

}  // namespace mailvane
