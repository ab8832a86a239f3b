#pragma once

// The small pieces that the writing, testing, repairing and reading of Zip archives share:
// owners of libzip's handles, file names for libzip, and libzip's errors as result codes.

#include "dbtools/ZipMessages.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QString>
#include <algorithm>
#include <cstdint>
#include <memory>
#include <zip.h>

namespace tarvex::zipio {

struct ZipDiscard {
    void operator()(zip_t* zip) const { zip_discard(zip); }
};
using ZipHandle = std::unique_ptr<zip_t, ZipDiscard>;

struct ZipFileClose {
    void operator()(zip_file_t* file) const { zip_fclose(file); }
};
using ZipFileHandle = std::unique_ptr<zip_file_t, ZipFileClose>;

inline constexpr QFileDevice::Permissions kOwnerOnly =
    QFileDevice::ReadOwner | QFileDevice::WriteOwner;

inline QByteArray FileName(const QString& path) {
    return QFile::encodeName(path);
}

inline QString Native(const QString& path) {
    return QDir::toNativeSeparators(path);
}

inline const char* PasswordOrNull(const QByteArray& password) {
    return password.isEmpty() ? nullptr : password.constData();
}

inline int16_t Percent(uint64_t part, uint64_t whole) {
    if (whole == 0)
        return 100;
    return static_cast<int16_t>(std::min<uint64_t>(100, part * 100 / whole));
}

// libzip's error as a result code; the system's error counts where libzip has one.
inline int16_t WriteResult(const zip_error_t* error) {
    const bool system = zip_error_system_type(error) == ZIP_ET_SYS;
    return ZipWriteResult(zip_error_code_zip(error), system ? zip_error_code_system(error) : 0);
}

inline ZipHandle OpenForReading(const QString& path, int& error) {
    error = ZIP_ER_OK;
    return ZipHandle(zip_open(FileName(path).constData(), ZIP_RDONLY | ZIP_CHECKCONS, &error));
}

} // namespace tarvex::zipio
