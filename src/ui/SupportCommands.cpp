#include "ui/SupportCommands.h"

#include "shell/AppFolder.h"
#include "support/HelpBook.h"
#include "ui/Guarded.h"
#include "ui/HelpWindow.h"
#include "ui/MainWindow.h"
#include "ui/MediaDialogs.h"
#include "ui/OpenOnce.h"
#include "ui/QtControls.h"
#include "ui/SupportDialogs.h"

#include <QApplication>
#include <QDir>
#include <QKeyEvent>
#include <QPointer>
#include <memory>

namespace tarvex {

void RegisterMediaCommands(MainWindow& window, AppState& state) {
    auto media = std::make_shared<QPointer<QWidget>>();
    window.SetMenuCommand(QStringLiteral("mnuSetMedia"), [&window, &state, media] {
        OpenOnce(window, *media, [&] { return new MediaDialog(state, &window); });
    });
    auto check = std::make_shared<QPointer<QWidget>>();
    window.SetMenuCommand(QStringLiteral("mnuCopyPictures"), [&window, &state, check] {
        OpenOnce(window, *check,
                 [&] { return new CheckMediaDialog(state, window.Prompts(), &window); });
    });
}

namespace {

// The one help window of the run: made on first use, brought forward afterwards. While a
// modal window is up, the help belongs to it, so that it can be used and not only seen.
class HelpCommands : public QObject {
public:
    HelpCommands(MainWindow& window, AppState& state)
        : QObject(&window), window_(window), state_(state) {}

    void Open(const QString& page) {
        QWidget* owner = QApplication::activeModalWidget();
        if (!owner)
            owner = &window_;
        if (!help_) {
            help_ = new HelpWindow(HelpFolder(state_), owner);
        } else if (help_->parentWidget() != owner) {
            help_->setParent(owner, Qt::Window);
        }
        if (!help_->ShowPage(page))
            help_->ShowPage(QStringLiteral("index.html"));
        help_->show();
        help_->raise();
        help_->activateWindow();
    }

    HelpWindow* Window() const { return help_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::KeyPress ||
            static_cast<QKeyEvent*>(event)->key() != Qt::Key_F1 || !watched->isWidgetType())
            return false;
        QWidget* top = static_cast<QWidget*>(watched)->window();
        if (top == help_)
            return false;
        RunGuarded([this, top] { Open(HelpPageFor(top->objectName())); });
        return true;
    }

private:
    MainWindow& window_;
    AppState& state_;
    QPointer<HelpWindow> help_;
};

} // namespace

void RegisterHelpCommands(MainWindow& window, AppState& state) {
    auto* help = new HelpCommands(window, state);
    help->setObjectName(QStringLiteral("HelpCommands"));
    qApp->installEventFilter(help);
    window.SetMenuCommand(QStringLiteral("mnuContents"),
                          [help] { help->Open(QStringLiteral("index.html")); });
    window.SetMenuCommand(QStringLiteral("mnuPrintManual"), [&state] {
        // As with every document the desktop opens for us, a failure goes unremarked.
        QtDesktop desktop;
        desktop.OpenDocument(
            QDir(HelpFolder(state)).filePath(QStringLiteral("TVX Users Manual.pdf")));
    });
    auto about = std::make_shared<QPointer<QWidget>>();
    window.SetMenuCommand(QStringLiteral("mnuAbout"), [&window, &state, about] {
        OpenOnce(window, *about, [&] { return new AboutDialog(state, window.Prompts(), &window); });
    });
}

} // namespace tarvex
