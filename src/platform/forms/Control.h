#pragma once

#include <string>

#include "platform/forms/Event.h"

namespace mailvane {

class Form;

enum class ControlKind {
    TextBox,
    RichTextBox,
    HtmlView,
    Label,
    Button,
    CheckBox,
    OptionButton,
    ComboBox,
    ListBox,
    ListBoks,
    Slider,
    DatePicker,
    ProgressBar,
    Grid,
    Chart,
    Tabs,
    Panel,
    Timer,
    StatusBar,
    ActiveBar
};

/// What observers are told has changed.
enum class Property {
    Enabled,
    Visible,
    Tip,
    Text,
    Value,
    Range,
    Items,
    ListIndex,
    TextSelection,
    Columns,
    Rows,
    CurrentCell,
    RowSelection,
    Redraw,
    Tools
};

/// What a script or a user may do with a control, and why not.
enum class ControlAnswer { Done, Disabled, Impossible, NoSuchEntry };

/// Why a button or a tool without a handler is off.
inline constexpr const char* LaterTip = "Comes with a later version.";
/// The tip of such a one: its own, and why it is off.
std::string WithLaterTip(const std::string& tip);

/// One control of a form, without its widget. Setting a property to what it is tells nobody.
class Control {
public:
    /// Registers with the form; the order of declaration is the order that documents are written
    /// in.
    Control(Form& form, std::string name, ControlKind kind);
    virtual ~Control() = default;
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;

    Form& Owner() const { return form_; }
    const std::string& Name() const { return name_; }
    ControlKind Kind() const { return kind_; }

    virtual bool Enabled() const { return enabled_; }
    void SetEnabled(bool enabled);
    bool Visible() const { return visible_; }
    void SetVisible(bool visible);
    virtual std::string Tip() const { return tip_; }
    void SetTip(std::string tip);
    void Focus();  ///< gives it the keyboard, when its form is on the screen

    // For scripts: the text or value as text, the number of entries (-1 where it has none), and the
    // same as a user typing or choosing VALUE and leaving the control. SetByUser fails on a
    // disabled control and runs the control's events.
    virtual std::string ShownText() const { return {}; }
    virtual int EntryCount() const { return -1; }
    ControlAnswer SetByUser(const std::string& value);

    Event<Property> changed;        ///< after each change of a property
    std::function<void()> onLeave;  ///< the user has left the control

protected:
    virtual ControlAnswer DoSetByUser(const std::string& value);
    void Changed(Property property) { changed.Tell(property); }

private:
    Form& form_;
    std::string name_;
    ControlKind kind_;
    bool enabled_ = true;
    bool visible_ = true;
    std::string tip_;
};

}  // namespace mailvane
