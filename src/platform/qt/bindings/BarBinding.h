#pragma once

#include <QKeySequence>
#include <QList>
#include <QObject>
#include <map>
#include <string>
#include <vector>

#include "platform/forms/ActiveBar.h"

class QAction;
class QMainWindow;
class QMenu;
class QMenuBar;
class QToolBar;
class QWidget;

namespace mailvane {

/// Menus and tool bars of an ActiveBar, as long as it lives.
class BarBinding final : public QObject {
public:
    /// In the window's own places for them.
    BarBinding(ActiveBar& bar, QMainWindow& window);
    /// In the empty widget `place` of a form's design; shortcuts hold in `root`.
    BarBinding(ActiveBar& bar, QWidget& place, QWidget& root);
    ~BarBinding() override;

    /// Opens the band as a menu where the mouse is.
    void Popup(const std::string& band);

    QList<QKeySequence> Shortcuts() const;
    /// A window inside this one uses these keys for itself while it is active.
    void YieldShortcuts(const QList<QKeySequence>& keys);

private:
    void Start();
    void Rebuild();
    void MakeActions();
    void MakeBands();
    void Follow();
    void FollowTool(QAction& action, const Tool& tool);
    void Fill(QMenu& menu, const Band& band);
    const Band* FindBand(const std::string& name) const;
    QAction* ActionOf(const std::string& tool) const;
    QToolBar* MakeToolBar(const Band& band);
    void Leave();
    bool eventFilter(QObject* watched, QEvent* event) override;

    ActiveBar& bar_;
    QMainWindow* window_ = nullptr;
    QWidget* place_ = nullptr;
    QWidget& root_;
    QMenuBar* menus_ = nullptr;
    std::vector<QAction*> actions_;  ///< in the order of the bar's tools
    std::vector<QToolBar*> toolBars_;
    std::map<std::string, QMenu*> popups_;
    std::size_t bandCount_ = 0;
    QList<QKeySequence> yielded_;
    Subscription subscription_;
};

}  // namespace mailvane
