#include "platform/forms/Form.h"

#include <algorithm>

#include "platform/forms/FormRegistry.h"
#include "platform/forms/WindowSystem.h"
#include "platform/os/TextCase.h"

namespace mailvane {

Form::Form(WindowSystem& windows, std::string name, std::string caption, FormStyle style)
    : windows_(windows), name_(std::move(name)), caption_(std::move(caption)), style_(style) {}

Form::~Form() = default;

void Form::SetCaption(std::string caption) {
    if (caption == caption_) return;
    caption_ = std::move(caption);
    if (!gone_) windows_.FormChanged(*this);
}

void Form::SetRect(const FormRect& rect) {
    if (rect == rect_) return;
    rect_ = rect;
    if (!gone_) windows_.FormChanged(*this);
}

void Form::SetState(WindowState state) {
    if (state == state_) return;
    state_ = state;
    if (!gone_) windows_.FormChanged(*this);
}

void Form::PlacedByUser(const FormRect& rect, WindowState state) {
    rect_ = rect;
    state_ = state;
}

void Form::Show() {
    if (gone_) return;
    if (visible_) {
        BringToFront();
        return;
    }
    visible_ = true;
    windows_.ShowForm(*this);
    OnActivate();
}

void Form::ShowModal() {
    windows_.RunModal(*this);
}

void Form::Hide() {
    if (!visible_) return;
    visible_ = false;
    windows_.HideForm(*this);
}

void Form::BringToFront() {
    if (!visible_) return;
    windows_.BringToFront(*this);
    OnActivate();
}

bool Form::Unload() {
    return !registry_ || registry_->Unload(*this);
}

Control* Form::FindControl(const std::string& name) const {
    const auto found =
        std::find_if(controls_.begin(), controls_.end(),
                     [&](const Control* control) { return SameName(control->Name(), name); });
    return found == controls_.end() ? nullptr : *found;
}

void Form::OnCloseBox() {
    Unload();
}

}  // namespace mailvane
