#pragma once

#include "media/CheckMediaLogic.h"
#include "support/Controls.h"
#include "support/FileDialog.h"

#include <QList>
#include <QPointer>

class QComboBox;
class QWidget;

namespace tarvex {

// The open-file dialog over QFileDialog: one file name as the filter and the preset, so
// that only that file is listed (matched without regard to case).
class QtOpenFileDialog : public IOpenFileDialog {
public:
    explicit QtOpenFileDialog(QWidget* parent) : parent_(parent) {}
    std::optional<QString> ShowOpen(const OpenFileRequest& request) override;

private:
    QPointer<QWidget> parent_;
};

// The drive list over a combo box: each place by its name, its root kept with it.
class QtDriveList : public IDriveList {
public:
    explicit QtDriveList(QComboBox* box) : box_(box) {}
    void SetDrives(const QList<MediaDrive>& drives) override;
    QString Drive() const override;
    bool SetDrive(const QString& root) override;

private:
    QPointer<QComboBox> box_;
};

} // namespace tarvex
