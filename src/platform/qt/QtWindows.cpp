#include "platform/qt/QtWindows.h"

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QTimer>
#include <QWindow>
#include <clocale>
#include <map>
#include <set>

#include "platform/forms/Form.h"
#include "platform/qt/FormWindow.h"
#include "platform/qt/Icons.h"
#include "platform/qt/QtPrompts.h"
#include "platform/qt/printing/QtPrinting.h"

/// The designs are part of a static library, whose resources nobody registers by itself. The macro
/// works outside of namespaces only.
static void RegisterDesigns() {
    Q_INIT_RESOURCE(forms);
}

namespace mailvane {

namespace {

constexpr std::chrono::milliseconds DialogWait{100};

/// Numbers and dates in files never follow the desktop's locale, which Qt has just switched on.
void KeepPlainLocale() {
    for (const int category : {LC_NUMERIC, LC_TIME, LC_COLLATE, LC_MONETARY})
        std::setlocale(category, "C");
}

Qt::CursorShape ShapeOf(MousePointer pointer) {
    return pointer == MousePointer::ArrowBusy ? Qt::BusyCursor : Qt::WaitCursor;
}

/// Counts up as long as it lives.
class Counting {
public:
    explicit Counting(int& counter) : counter_(counter) { ++counter_; }
    ~Counting() { --counter_; }
    Counting(const Counting&) = delete;
    Counting& operator=(const Counting&) = delete;

private:
    int& counter_;
};

/// Sees when the desktop turns dark or light, and when a tip is about to be shown.
class DesktopWatch final : public QObject {
public:
    explicit DesktopWatch(const WindowSystem& windows) : windows_(windows) {}

private:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::ApplicationPaletteChange && watched == qApp) UseIconThemes();
        if (event->type() == QEvent::ToolTip && watched->isWidgetType())
            static_cast<QWidget*>(watched)->setToolTipDuration(TipMilliseconds());
        return false;
    }
    int TipMilliseconds() const {
        constexpr std::chrono::seconds UntilTheMouseLeaves = std::chrono::hours(24);
        const std::chrono::milliseconds time = windows_.TipTime().value_or(UntilTheMouseLeaves);
        return static_cast<int>(time.count());
    }
    const WindowSystem& windows_;
};

}  // namespace

struct QtWindows::Desktop {
    Desktop(int& argumentCount, char** arguments, const WindowSystem& system)
        : application(argumentCount, arguments), watch(system) {}
    ~Desktop() {
        windows.clear();
        graveyard.clear();
    }

    FormWindow* Find(const Form& form) const {
        const auto found = windows.find(&form);
        return found == windows.end() ? nullptr : found->second.get();
    }

    MainWindow* Main() const {
        for (const auto& entry : windows)
            if (MainWindow* main = entry.second->AsMain()) return main;
        return nullptr;
    }

    FormWindow* Ensure(Form& form, bool modal);
    void ChildActivated(const QMdiSubWindow* child);
    BarBinding* MainBar() const;
    void Handle(QEventLoop::ProcessEventsFlags flags);
    QWidget* Opener(const Form* form = nullptr) const;
    void KeepKeyboard() const;

    QApplication application;
    DesktopWatch watch;
    std::map<const Form*, std::unique_ptr<FormWindow>> windows;
    std::set<std::string> withoutDesign;
    std::vector<const Form*> modals;  ///< the innermost last
    std::map<Timer*, std::unique_ptr<QTimer>> timers;
    /// What may still be at work in an event further down the stack.
    std::vector<std::unique_ptr<QObject>> graveyard;
    int depth = 0;  ///< of event handling inside event handling
    const QMdiSubWindow* activeChild = nullptr;
    int placing = 0;  ///< windows come, go or move because the program says so
    QTimer wake;      ///< ends a wait
};

FormWindow* QtWindows::Desktop::Ensure(Form& form, bool modal) {
    if (FormWindow* window = Find(form)) return window;
    if (withoutDesign.contains(form.Name())) return nullptr;
    auto window = FormWindow::Make(form, Main(), modal);
    if (!window) {
        withoutDesign.insert(form.Name());
        qWarning("%s has no design and is not shown", form.Name().c_str());
        return nullptr;
    }
    if (MainWindow* main = window->AsMain())
        QObject::connect(&main->Area(), &QMdiArea::subWindowActivated, window.get(),
                         [this](QMdiSubWindow* child) { ChildActivated(child); });
    return (windows[&form] = std::move(window)).get();
}

BarBinding* QtWindows::Desktop::MainBar() const {
    for (const auto& entry : windows)
        if (entry.second->AsMain()) return entry.second->Bar();
    return nullptr;
}

/// A shortcut that the active child and the main window both have is the child's. A form is told
/// when the user has brought its window forward.
void QtWindows::Desktop::ChildActivated(const QMdiSubWindow* child) {
    QList<QKeySequence> keys;
    Form* form = nullptr;
    for (const auto& entry : windows) {
        if (&entry.second->Frame() != child) continue;
        form = entry.second->OwnForm();
        if (entry.second->Bar()) keys = entry.second->Bar()->Shortcuts();
    }
    if (BarBinding* bar = MainBar()) bar->YieldShortcuts(keys);
    if (!form || std::exchange(activeChild, child) == child || placing > 0) return;
    form->BringToFront();
}

/// The keyboard may come to a window that was there for a moment only when it has gone already, and
/// nobody tells then that another window has it: shortcuts would be dead until the next click.
void QtWindows::Desktop::KeepKeyboard() const {
    const QWindow* holder = QGuiApplication::focusWindow();
    if (!holder || holder->isVisible()) return;
    QWidget* opener = Opener();
    if (opener && opener != QApplication::activeWindow()) QApplication::setActiveWindow(opener);
}

void QtWindows::Desktop::Handle(QEventLoop::ProcessEventsFlags flags) {
    {
        const Counting handling(depth);
        QCoreApplication::processEvents(flags);
    }
    KeepKeyboard();
    if (depth > 0) return;
    graveyard.clear();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

/// The window to which a prompt, or the dialog of the form, belongs: the one that the user is in;
/// null when nothing is on the screen.
QWidget* QtWindows::Desktop::Opener(const Form* form) const {
    const FormWindow* own = form ? Find(*form) : nullptr;
    const auto fits = [&](const QWidget* window) {
        return window && window->isVisible() && !(own && window == &own->Frame());
    };
    for (auto modal = modals.rbegin(); modal != modals.rend(); ++modal)
        if (const FormWindow* window = Find(**modal); window && fits(&window->Frame()))
            return &window->Frame();
    for (QWidget* window : {QApplication::activeWindow(), static_cast<QWidget*>(Main())})
        if (fits(window)) return window;
    return nullptr;
}

QtWindows::QtWindows(int& argumentCount, char** arguments, Clock& clock)
    : WindowSystem(clock), desktop_(std::make_unique<Desktop>(argumentCount, arguments, *this)) {
    KeepPlainLocale();
    RegisterDesigns();
    QDir::setSearchPaths(QStringLiteral("forms"), {QStringLiteral(":/forms")});
    QApplication::setApplicationName(QStringLiteral("Mailvane"));
    QApplication::setQuitOnLastWindowClosed(false);
    UseIconThemes();
    QApplication::setWindowIcon(ThemeIcon("internet-mail"));
    desktop_->application.installEventFilter(&desktop_->watch);
    desktop_->wake.setSingleShot(true);
}

QtWindows::~QtWindows() = default;

void QtWindows::ShowForm(Form& form) {
    const Counting placing(desktop_->placing);
    if (FormWindow* window = desktop_->Ensure(form, false)) window->Show(desktop_->Opener(&form));
}

void QtWindows::HideForm(Form& form) {
    const Counting placing(desktop_->placing);
    if (FormWindow* window = desktop_->Find(form)) window->Hide();
}

void QtWindows::BringToFront(Form& form) {
    const Counting placing(desktop_->placing);
    if (FormWindow* window = desktop_->Find(form)) window->BringToFront();
}

void QtWindows::FormChanged(Form& form) {
    if (FormWindow* window = desktop_->Find(form)) window->Follow();
}

void QtWindows::FormGone(Form& form) {
    const Counting placing(desktop_->placing);
    const auto found = desktop_->windows.find(&form);
    if (found == desktop_->windows.end()) return;
    found->second->Detach();
    desktop_->graveyard.push_back(std::move(found->second));
    desktop_->windows.erase(found);
}

void QtWindows::FocusControl(Control& control) {
    if (FormWindow* window = desktop_->Find(control.Owner())) window->FocusControl(control);
}

void QtWindows::ArrangeChildren(Arrangement arrangement) {
    if (MainWindow* main = desktop_->Main()) main->Arrange(arrangement);
}

void QtWindows::SetPointer(MousePointer pointer) {
    const bool overridden = QApplication::overrideCursor() != nullptr;
    if (pointer == MousePointer::Normal) {
        if (overridden) QApplication::restoreOverrideCursor();
    } else if (overridden) {
        QApplication::changeOverrideCursor(ShapeOf(pointer));
    } else {
        QApplication::setOverrideCursor(ShapeOf(pointer));
    }
}

void QtWindows::StartTimer(Timer& timer) {
    auto& own = desktop_->timers[&timer];
    own = std::make_unique<QTimer>();
    QObject::connect(own.get(), &QTimer::timeout, [&timer] { RunHandler(timer.onTimer); });
    own->start(timer.Interval());
}

void QtWindows::StopTimer(Timer& timer) {
    const auto found = desktop_->timers.find(&timer);
    if (found == desktop_->timers.end()) return;
    found->second->stop();
    found->second->disconnect();
    desktop_->graveyard.push_back(std::move(found->second));
    desktop_->timers.erase(found);
}

void QtWindows::PopupMenu(Form& form, const std::string& band) {
    const FormWindow* window = desktop_->Find(form);
    if (window && window->Bar()) window->Bar()->Popup(band);
}

PrintOutcome QtWindows::PrintTable(const PrintJob& job) {
    PrintDesk desk;
    desk.loop = [this](QDialog& dialog) { RunDialog(dialog); };
    desk.parent = desktop_->Opener();
    desk.askPdfFile = [this] {
        FileRequest request;
        request.save = true;
        request.title = "Print to a PDF file";
        request.filters = {{"PDF files", "*.pdf"}};
        request.defaultExtension = "pdf";
        return FileDialog(request).value_or("");
    };
    return PrintTableWith(desk, job);
}

QWidget* QtWindows::WindowOf(Form& form) {
    FormWindow* window = desktop_->Ensure(form, false);
    return window ? &window->Content() : nullptr;
}

void QtWindows::BeginModal(Form& form) {
    desktop_->modals.push_back(&form);
    if (FormWindow* window = desktop_->Ensure(form, true)) window->SetModal(true);
}

void QtWindows::EndModal() {
    const Form* form = desktop_->modals.back();
    desktop_->modals.pop_back();
    const auto found = desktop_->windows.find(form);
    if (found != desktop_->windows.end()) found->second->SetModal(false);
}

BoxAnswer QtWindows::AskMessageBox(const BoxRequest& request) {
    return AskMessageBoxWith([this](QDialog& dialog) { RunDialog(dialog); }, desktop_->Opener(),
                             request);
}

std::optional<std::string> QtWindows::AskInput(const InputRequest& request) {
    return AskInputWith([this](QDialog& dialog) { RunDialog(dialog); }, desktop_->Opener(),
                        request);
}

std::optional<std::string> QtWindows::AskFile(const FileRequest& request) {
    return AskFileWith([this](QDialog& dialog) { RunDialog(dialog); }, desktop_->Opener(), request);
}

/// The program goes on behind the dialog, but is not idle: the code that asks has not ended.
void QtWindows::RunDialog(QDialog& dialog) {
    const Counting keepsItsParent(desktop_->depth);
    QApplication::setOverrideCursor(Qt::ArrowCursor);
    dialog.setWindowModality(Qt::ApplicationModal);
    dialog.show();
    while (dialog.isVisible() && !Quitting())
        WaitForEvents(DialogWait);
    QApplication::restoreOverrideCursor();
}

void QtWindows::PumpEvents() {
    desktop_->Handle(QEventLoop::AllEvents);
}

void QtWindows::WaitForEvents(std::chrono::milliseconds atMost) {
    if (atMost.count() <= 0) {
        PumpEvents();
        return;
    }
    desktop_->wake.start(atMost);
    desktop_->Handle(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    desktop_->wake.stop();
}

}  // namespace mailvane
