#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/forms/TextControls.h"

namespace mailvane {

/// A command in menus and tool bars, known by its name. Off while it has neither a handler nor a
/// button that has one.
struct Tool {
    std::string name;
    std::string caption = {};   ///< with the mnemonic's "&"
    std::string tip = {};       ///< shown in the status bar while the mouse is on it
    std::string shortcut = {};  ///< "Ctrl+S"
    std::string icon = {};      ///< name in the desktop's icon theme
    bool enabled = true;
    bool visible = true;
    bool checkable = false;
    bool checked = false;
    std::function<void()> onClick = {};
    Button* button = nullptr;  ///< of the same form: the tool presses it and is on as it is

    bool On() const;
    std::string ShownTip() const;  ///< says why when the tool has no handler
};

/// A menu, tool bar or popup menu. Entries are tool names, "-" for a separator, ">NAME" for the
/// band NAME as a submenu.
struct Band {
    enum class Kind { Menu, ToolBar, Popup, SubMenu };
    Kind kind = Kind::Menu;
    std::string name;
    std::string caption;
    std::vector<std::string> entries;
};

/// The menus and tool bars of a form.
class ActiveBar final : public Control {
public:
    ActiveBar(Form& form, std::string name)
        : Control(form, std::move(name), ControlKind::ActiveBar) {}

    void AddTool(Tool tool);  ///< takes the place of one with the same name
    void AddBand(Band band);
    const std::vector<Tool>& Tools() const { return tools_; }
    const std::vector<Band>& Bands() const { return bands_; }
    const Tool* FindTool(const std::string& name) const;  ///< case ignored; null when there is none

    // Each does nothing when there is no such tool.
    void SetToolEnabled(const std::string& name, bool enabled);
    void SetToolVisible(const std::string& name, bool visible);
    void SetToolChecked(const std::string& name, bool checked);
    void SetToolCaption(const std::string& name, std::string caption);

    /// A click on the tool. NoSuchEntry and Disabled (also a tool not visible) do nothing.
    ControlAnswer Press(const std::string& name);

    std::function<bool()> takesClicks;         ///< false: a click is lost; by default none is
    std::function<void(const Tool*)> onHover;  ///< the mouse came onto a tool; null when it left
    std::function<void(const std::string& band)> onPopup;  ///< the form asks for a popup menu

private:
    template <class Value>
    void Set(const std::string& name, Value Tool::*property, Value value);
    std::vector<Tool> tools_;
    std::vector<Band> bands_;
    std::vector<Subscription> buttons_;
};

}  // namespace mailvane
