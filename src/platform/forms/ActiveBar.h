#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/forms/Control.h"

namespace mailvane {

/// A command in menus and tool bars, known by its name.
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

    friend bool operator==(const Tool&, const Tool&) = default;
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
    ActiveBar(Form& form, std::string name, std::function<void(const Tool&)> onTool = {});

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
    void SetToolTip(const std::string& name, std::string tip);

    /// A click on the tool: runs onTool. NoSuchEntry and Disabled (also a tool not visible) do
    /// nothing.
    ControlAnswer Press(const std::string& name);

    std::function<void(const Tool&)> onTool;
    std::function<void(const Tool*)> onHover;  ///< the mouse came onto a tool; null when it left
    std::function<void(const std::string& band)> onPopup;  ///< the form asks for a popup menu

private:
    void ChangeTool(const std::string& name, const std::function<void(Tool&)>& change);
    std::vector<Tool> tools_;
    std::vector<Band> bands_;
};

}  // namespace mailvane
