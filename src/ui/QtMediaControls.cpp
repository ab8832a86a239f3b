#include "ui/QtMediaControls.h"

#include <QComboBox>
#include <QDir>
#include <QFileDialog>

namespace tarvex {

std::optional<QString> QtOpenFileDialog::ShowOpen(const OpenFileRequest& request) {
    QFileDialog dialog(parent_, QStringLiteral("Open"), request.InitDir);
    dialog.setObjectName(QStringLiteral("dlgOpen"));
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    // Qt's own dialog everywhere, so that a filter of one name behaves the same on every
    // desktop; it lists names without regard to case.
    dialog.setOption(QFileDialog::DontUseNativeDialog, true);
    QStringList filters;
    const QStringList parts = request.Filter.split(u'|');
    for (int i = 0; i + 1 < parts.size(); i += 2)
        filters << QStringLiteral("%1 (%2)").arg(parts.at(i), parts.at(i + 1));
    dialog.setNameFilters(filters);
    if (request.FilterIndex >= 1 && request.FilterIndex <= filters.size())
        dialog.selectNameFilter(filters.at(request.FilterIndex - 1));
    dialog.selectFile(request.FileName);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return std::nullopt;
    return QDir::toNativeSeparators(dialog.selectedFiles().constFirst());
}

void QtDriveList::SetDrives(const QList<MediaDrive>& drives) {
    box_->clear();
    for (const MediaDrive& drive : drives)
        box_->addItem(drive.Name, drive.Root);
}

QString QtDriveList::Drive() const {
    return box_->currentIndex() < 0 ? QString() : box_->currentData().toString();
}

bool QtDriveList::SetDrive(const QString& root) {
    const QString wanted = QDir::cleanPath(root);
    for (int i = 0; i < box_->count(); ++i) {
        if (QDir::cleanPath(box_->itemData(i).toString()) == wanted) {
            box_->setCurrentIndex(i);
            return true;
        }
    }
    return false;
}

} // namespace tarvex
