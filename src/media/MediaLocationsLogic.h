#pragma once

#include "support/Controls.h"
#include "support/FileDialog.h"

#include <QString>
#include <array>

namespace tarvex {

struct AppState;

// The logic of "Media Locations": the user points the program to the folders of icons,
// pictures and movies by picking a known file in each. Nothing is stored until "OK"; the
// settings store is written at the end of the run.
class MediaLocationsLogic {
public:
    struct Controls {
        // lblMedia(0) to (2): the icon, picture and movie folders.
        std::array<ILabel*, 3> lblMedia;
        // The tags of cmdMedia(0) to (2): "Icon", "Picture", "Movie".
        std::array<QString, 3> cmdMediaTags;
    };

    MediaLocationsLogic(AppState& state, Controls controls, IOpenFileDialog& dialog);

    // On load: the three folders as they are.
    void Load();
    // A folder button: the probe file of its tag is looked for; a chosen folder becomes the
    // caption of the label beside it. An unknown tag does nothing.
    void cmdMedia(int index);
    // "OK" stores the three captions as the icon, picture and movie folders; "Cancel" stores
    // nothing. True when the form unloads.
    bool cmdOKCancel(const QString& tag);

    // The open dialog with the probe file as its only filter and preset: the chosen folder
    // with its final separator, or the empty text when the dialog was cancelled.
    QString FindMediaPath(const QString& tag, const QString& fileName);

    // The probe file of a tag ("Icon" gives "1.JPG"); empty for an unknown tag.
    static QString ProbeFile(const QString& tag);
    // Where the dialog starts for a tag: the folder of that kind among the delivered media
    // (the program's own folder, as it was), found without regard to case.
    QString StartFolder(const QString& tag) const;

private:
    AppState& state_;
    Controls c_;
    IOpenFileDialog& dialog_;
};

} // namespace tarvex
