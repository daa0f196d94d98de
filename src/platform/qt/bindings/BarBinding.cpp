#include "platform/qt/bindings/BarBinding.h"

#include <QAction>
#include <QCursor>
#include <QEvent>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QToolBar>
#include <QVBoxLayout>
#include <algorithm>

#include "platform/os/TextCase.h"
#include "platform/qt/Icons.h"
#include "platform/qt/QtText.h"

namespace mailvane {

BarBinding::BarBinding(ActiveBar& bar, QMainWindow& window)
    : bar_(bar), window_(&window), root_(window), menus_(window.menuBar()) {
    Start();
}

BarBinding::BarBinding(ActiveBar& bar, QWidget& place, QWidget& root)
    : bar_(bar), place_(&place), root_(root), menus_(new QMenuBar(&place)) {
    auto* column = new QVBoxLayout(&place);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    menus_->setNativeMenuBar(false);
    column->addWidget(menus_);
    Start();
}

BarBinding::~BarBinding() = default;

void BarBinding::Start() {
    Rebuild();
    subscription_ = bar_.changed.Observe([this](Property) {
        if (actions_.size() == bar_.Tools().size() && bandCount_ == bar_.Bands().size()) {
            Follow();
        } else {
            Rebuild();
        }
    });
}

void BarBinding::Rebuild() {
    menus_->clear();
    // An action or a bar may be the one whose click leads here.
    for (const auto& popup : popups_)
        popup.second->deleteLater();
    for (QToolBar* toolBar : toolBars_) {
        toolBar->hide();
        toolBar->deleteLater();
    }
    for (QAction* action : actions_)
        action->deleteLater();
    popups_.clear();
    toolBars_.clear();
    actions_.clear();
    MakeActions();
    MakeBands();
    Follow();
}

void BarBinding::MakeActions() {
    for (const Tool& tool : bar_.Tools()) {
        auto* action = new QAction(&root_);
        action->setIcon(ThemeIcon(tool.icon));
        action->setCheckable(tool.checkable);
        action->setMenuRole(QAction::NoRole);
        connect(action, &QAction::triggered, this, [this, name = tool.name] {
            const QPointer<BarBinding> self(this);
            bar_.Press(name);
            if (self) Follow();
        });
        connect(action, &QAction::hovered, this,
                [this, name = tool.name] { RunHandler(bar_.onHover, bar_.FindTool(name)); });
        root_.addAction(action);
        actions_.push_back(action);
    }
}

void BarBinding::MakeBands() {
    bandCount_ = bar_.Bands().size();
    for (const Band& band : bar_.Bands()) {
        if (band.kind == Band::Kind::Menu) {
            Fill(*menus_->addMenu(ToQt(band.caption)), band);
        } else if (band.kind == Band::Kind::ToolBar) {
            toolBars_.push_back(MakeToolBar(band));
        }
    }
    menus_->setVisible(!menus_->actions().isEmpty());
}

void BarBinding::Follow() {
    const auto& tools = bar_.Tools();
    for (std::size_t i = 0; i < actions_.size() && i < tools.size(); ++i)
        FollowTool(*actions_[i], tools[i]);
    for (QToolBar* toolBar : toolBars_)
        toolBar->setVisible(bar_.Visible());
    menus_->setEnabled(bar_.Enabled());
}

void BarBinding::FollowTool(QAction& action, const Tool& tool) {
    const QString caption = ToQt(tool.caption);
    if (action.text() != caption) action.setText(caption);
    const QString tip = ToQt(tool.ShownTip());
    const QString plain = action.iconText();
    const QKeySequence keys(ToQt(tool.shortcut));
    const QString shown =
        keys.isEmpty()
            ? plain
            : plain + QStringLiteral(" (%1)").arg(keys.toString(QKeySequence::NativeText));
    const QString hint = (tip.isEmpty() || tip == plain) ? shown : shown + QLatin1Char('\n') + tip;
    if (action.toolTip() != hint) action.setToolTip(hint);
    // A form that shows the tip itself, in its status bar, is told by onHover.
    if (!bar_.onHover && action.statusTip() != tip) action.setStatusTip(tip);
    const QKeySequence held = yielded_.contains(keys) ? QKeySequence() : keys;
    if (action.shortcut() != held) action.setShortcut(held);
    action.setEnabled(tool.On() && bar_.Enabled());
    action.setVisible(tool.visible && bar_.Visible());
    action.setChecked(tool.checked);
}

void BarBinding::Fill(QMenu& menu, const Band& band) {
    menu.setToolTipsVisible(true);
    connect(&menu, &QMenu::aboutToHide, this, [this] { Leave(); });
    for (const std::string& entry : band.entries) {
        if (entry == "-") {
            menu.addSeparator();
        } else if (entry.starts_with('>')) {
            const Band* inner = FindBand(entry.substr(1));
            if (inner) Fill(*menu.addMenu(ToQt(inner->caption)), *inner);
        } else if (QAction* action = ActionOf(entry)) {
            menu.addAction(action);
        }
    }
}

const Band* BarBinding::FindBand(const std::string& name) const {
    const auto& bands = bar_.Bands();
    const auto found = std::find_if(bands.begin(), bands.end(),
                                    [&](const Band& band) { return SameName(band.name, name); });
    return found == bands.end() ? nullptr : &*found;
}

QAction* BarBinding::ActionOf(const std::string& name) const {
    const auto& tools = bar_.Tools();
    const auto found = std::find_if(tools.begin(), tools.end(),
                                    [&](const Tool& tool) { return SameName(tool.name, name); });
    return found == tools.end() ? nullptr
                                : actions_[static_cast<std::size_t>(found - tools.begin())];
}

QToolBar* BarBinding::MakeToolBar(const Band& band) {
    auto* toolBar = new QToolBar(ToQt(band.caption), window_ ? window_ : place_);
    toolBar->setMovable(false);
    toolBar->setToolButtonStyle(window_ ? Qt::ToolButtonTextUnderIcon : Qt::ToolButtonIconOnly);
    for (const std::string& entry : band.entries) {
        if (entry == "-") {
            toolBar->addSeparator();
        } else if (QAction* action = ActionOf(entry)) {
            toolBar->addAction(action);
            toolBar->widgetForAction(action)->installEventFilter(this);
        }
    }
    if (window_) {
        window_->addToolBar(toolBar);
    } else {
        place_->layout()->addWidget(toolBar);
    }
    return toolBar;
}

void BarBinding::Leave() {
    RunHandler(bar_.onHover, nullptr);
}

bool BarBinding::eventFilter(QObject*, QEvent* event) {
    if (event->type() == QEvent::Leave) Leave();
    return false;
}

void BarBinding::Popup(const std::string& name) {
    const Band* band = FindBand(name);
    if (!band) return;
    QMenu*& menu = popups_[band->name];
    if (!menu) {
        menu = new QMenu(&root_);
        Fill(*menu, *band);
    }
    menu->popup(QCursor::pos());
}

QList<QKeySequence> BarBinding::Shortcuts() const {
    QList<QKeySequence> keys;
    for (const Tool& tool : bar_.Tools())
        if (!tool.shortcut.empty()) keys.append(QKeySequence(ToQt(tool.shortcut)));
    return keys;
}

void BarBinding::YieldShortcuts(const QList<QKeySequence>& keys) {
    yielded_ = keys;
    Follow();
}

}  // namespace mailvane
