#pragma once

#include "support/Controls.h"
#include "support/Prompter.h"

#include <QString>
#include <array>

namespace tarvex {

class IWindowTitle;

// The system information window, as the About box asks for it.
class ISystemInfoHost {
public:
    virtual ~ISystemInfoHost() = default;
    // Shows the window; false when it cannot be shown.
    virtual bool ShowSystemInfo() = 0;
};

// The logic of the About box.
class AboutLogic {
public:
    struct Controls {
        IWindowTitle& Caption;
        ILabel& lblTitle;
        ILabel& lblVersion;
        ILabel& lblDescription;
        std::array<ILabel*, 3> lblCSMI; // name and address; the headings; their values
        ILabel& lblDisclaimer;
    };

    AboutLogic(Controls controls, ISystemInfoHost& host, Prompter& prompter);

    // On load: the caption "About " and the title, the version, the fixed texts.
    void Load();
    // "System Info...": the system information window, or a box when it cannot be shown.
    void cmdSysInfo() { StartSysInfo(); }
    void StartSysInfo();

    static const QString kDescription;
    static const QString kUnavailableText;
    static const QString kPhone;
    static const QString kFax;

private:
    Controls c_;
    ISystemInfoHost& host_;
    Prompter& prompter_;
};

} // namespace tarvex
