#include "shell/AboutLogic.h"

#include "shell/Shell.h"
#include "shell/Splash.h"

#include <exception>

namespace tarvex {

const QString AboutLogic::kDescription =
    QStringLiteral("Build custom exercise programs for your patients.");
const QString AboutLogic::kUnavailableText =
    QStringLiteral("System Information Is Unavailable At This Time");
const QString AboutLogic::kPhone = QStringLiteral("(555) 555-0153");
const QString AboutLogic::kFax = QStringLiteral("(555) 555-0154");

AboutLogic::AboutLogic(Controls controls, ISystemInfoHost& host, Prompter& prompter)
    : c_(controls), host_(host), prompter_(prompter) {}

void AboutLogic::Load() {
    c_.Caption.SetTitle(QStringLiteral("About ") + ProductName());
    c_.lblVersion.SetCaption(VersionText());
    c_.lblTitle.SetCaption(ProductName());
    c_.lblDescription.SetCaption(kDescription);
    c_.lblCSMI[0]->SetCaption(CompanyName() + QStringLiteral("\n1200 Harbor Point Drive, Suite 300"
                                                             "\nPortland, OR 97209"));
    c_.lblCSMI[1]->SetCaption(QStringLiteral("Phone:\nFAX:\nHome:\ne-mail:"));
    c_.lblCSMI[2]->SetCaption(kPhone + u'\n' + kFax +
                              QStringLiteral("\nwww.tarvex.example\nsupport@tarvex.example"));
    c_.lblDisclaimer.SetCaption(
        QStringLiteral("Copyright 2026 Tarvex. All rights reserved.\n"
                       "The clinician prescribes each program; Tarvex gives no medical advice."));
}

void AboutLogic::StartSysInfo() {
    bool shown = false;
    try {
        shown = host_.ShowSystemInfo();
    } catch (const std::exception&) {
        shown = false;
    }
    if (!shown)
        prompter_.MsgBox(kUnavailableText, msg::OkOnly, Shell::kTitle);
}

} // namespace tarvex
