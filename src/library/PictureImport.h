#pragma once

#include "support/Controls.h"

#include <QImage>
#include <QString>
#include <cstdint>

namespace tarvex {

// The picture service of the exercise editor: loads one of an exercise's pictures and
// makes its selection icon from it, a JPEG of the given width with the height in
// proportion. The status panel tells each step. It holds nothing but the loaded picture.
class PictureImport {
public:
    static constexpr const char* kLoading = "Loading picture";
    static constexpr const char* kResizing = "Resizing picture";
    static constexpr const char* kSaving = "Saving picture";
    static constexpr const char* kReady = "Ready";
    // A picture is decoded at no more than this on either side: a photo of many megapixels
    // is scaled while it decodes, so that its memory stays bounded.
    static constexpr int kLoadBound = 2048;

    explicit PictureImport(IStatusBar& status) : status_(status) {}

    // Loads the picture file. The flag is not used. A file that is no readable picture is
    // a fault, and no picture is held afterwards.
    void LoadFile(const QString& path, int32_t flag);
    // Scales the loaded picture to the width and saves it as a JPEG at path, replacing a
    // file that is there. The file is written whole or not at all.
    void ResizeAndSaveFile(const QString& path, int32_t size);

    const QImage& Picture() const { return picture_; }

private:
    IStatusBar& status_;
    QImage picture_;
};

// True when new files can be written into the folder (it exists and is writable).
bool FolderIsWritable(const QString& folder);

// The browser's rule for a folder chosen in its folder list: the icon and picture folders
// of the media are refused. The texts are compared upper-cased and as they stand, so a
// media folder stored with its final separator never equals the list's path.
bool IsMediaFolder(const QString& folder, const QString& iconFolder, const QString& pictureFolder);

// The browser's file list: the picture files it offers.
inline constexpr const char* kBrowserPattern = "*.bmp;*.jpg;*.fpx";

} // namespace tarvex
