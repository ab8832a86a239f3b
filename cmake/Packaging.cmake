# What makes the program a Linux desktop program once installed, and the Debian package.
#
#   bin/                       tarvex, tarvex-print, tarvex-migrate, tarvex-picture-bench
#   share/tarvex/              the delivered files (templates, Help, PICTURE, ICON, MOVIE)
#   share/applications/        the desktop entry
#   share/metainfo/            the AppStream metadata
#   share/icons/hicolor/       the program's icon, as PNG at the usual sizes and as SVG
#   share/man/man1/            a manual page for each program
#   share/doc/tarvex/          the copyright and the changelog

set(TARVEX_ID com.tarvex.Regimenter)
set(PACKAGING_DIR ${PROJECT_SOURCE_DIR}/packaging)
set(_readable OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)

# The icon's PNG sizes, drawn from the SVG. They lie in the build tree as they will be
# installed (build/*/share/icons beside build/*/bin), so that the program finds them there too.
find_program(TARVEX_RSVG_CONVERT rsvg-convert REQUIRED)
set(TARVEX_ICON_SIZES 16 22 24 32 48 64 128 256)
set(_icons "")
foreach(_size IN LISTS TARVEX_ICON_SIZES)
    set(_png ${CMAKE_BINARY_DIR}/share/icons/hicolor/${_size}x${_size}/apps/${TARVEX_ID}.png)
    add_custom_command(
        OUTPUT ${_png}
        COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/share/icons/hicolor/${_size}x${_size}/apps
        COMMAND ${TARVEX_RSVG_CONVERT} --width ${_size} --height ${_size} --format png
                --output ${_png} ${PACKAGING_DIR}/${TARVEX_ID}.svg
        DEPENDS ${PACKAGING_DIR}/${TARVEX_ID}.svg
        COMMENT "Drawing the ${_size}x${_size} icon"
        VERBATIM)
    list(APPEND _icons ${_png})
endforeach()

# Manual pages and the changelog are installed compressed, without a time stamp in the
# header, as Debian's policy asks.
find_program(TARVEX_GZIP gzip REQUIRED)
set(_compressed "")
foreach(_page tarvex tarvex-print tarvex-migrate tarvex-picture-bench)
    set(_gz ${CMAKE_BINARY_DIR}/share/man/man1/${_page}.1.gz)
    add_custom_command(
        OUTPUT ${_gz}
        COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/share/man/man1
        COMMAND sh -c "${TARVEX_GZIP} -9nc \"$1\" > \"$2\"" sh ${PACKAGING_DIR}/man/${_page}.1 ${_gz}
        DEPENDS ${PACKAGING_DIR}/man/${_page}.1
        VERBATIM)
    list(APPEND _compressed ${_gz})
    install(FILES ${_gz} DESTINATION share/man/man1 PERMISSIONS ${_readable})
endforeach()
set(_changelog ${CMAKE_BINARY_DIR}/share/doc/tarvex/changelog.gz)
add_custom_command(
    OUTPUT ${_changelog}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/share/doc/tarvex
    COMMAND sh -c "${TARVEX_GZIP} -9nc \"$1\" > \"$2\"" sh ${PACKAGING_DIR}/changelog ${_changelog}
    DEPENDS ${PACKAGING_DIR}/changelog
    VERBATIM)
list(APPEND _compressed ${_changelog})
add_custom_target(desktop_integration ALL DEPENDS ${_icons} ${_compressed})

install(DIRECTORY ${CMAKE_BINARY_DIR}/share/icons DESTINATION share
        FILE_PERMISSIONS ${_readable}
        DIRECTORY_PERMISSIONS ${_readable} OWNER_EXECUTE GROUP_EXECUTE WORLD_EXECUTE)
install(FILES ${PACKAGING_DIR}/${TARVEX_ID}.svg DESTINATION share/icons/hicolor/scalable/apps
        PERMISSIONS ${_readable})
install(FILES ${PACKAGING_DIR}/${TARVEX_ID}.desktop DESTINATION share/applications
        PERMISSIONS ${_readable})
install(FILES ${PACKAGING_DIR}/${TARVEX_ID}.metainfo.xml DESTINATION share/metainfo
        PERMISSIONS ${_readable})
install(FILES ${PACKAGING_DIR}/copyright ${_changelog} DESTINATION share/doc/tarvex
        PERMISSIONS ${_readable})
# What lintian says that is so by design; the README explains each.
install(FILES ${PACKAGING_DIR}/lintian-overrides DESTINATION share/lintian/overrides
        RENAME tarvex PERMISSIONS ${_readable})

# The Debian package: `cmake --build --preset release --target package`.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tarvex)
set(CPACK_PACKAGE_VENDOR Tarvex)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
# The maker's address, as the About box gives it.
set(CPACK_PACKAGE_CONTACT "Tarvex <support@tarvex.example>")
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "https://www.tarvex.example")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "home exercise programs for physical-therapy clinics")
# (Lines of at most 79 characters, as the package's control file asks.)
set(CPACK_PACKAGE_DESCRIPTION
    "TVX Regimenter helps a clinician build a home exercise program for a
patient: up to twenty illustrated exercises from a library filtered by joint,
movement pattern and type, each with its repetitions, hold time, sets and
movie. Programs are kept in each patient's dated history, named protocols are
reused, and a program prints as exercise sheets, a record for the chart, a
cover sheet and a video order form.

One workstation keeps its data in SQLite files of its own; a clinic with
several workstations shares them on a PostgreSQL server.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
# Stripped as Debian strips: the compiler's notes go as well.
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/StripNotes.cmake)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# The libraries the programs link (Qt, libzip, libpq, the C++ run-time) are found by
# dpkg-shlibdeps. Named here is what Qt loads as plug-ins, what the program reads and the
# programs it runs:
# - the SQLite and PostgreSQL drivers of Qt;
# - GStreamer's AVI and Motion JPEG decoders, for the delivered movies;
# - Liberation Sans (for "Arial") and DejaVu Sans (the check boxes and arrows) in print;
# - sqlite3, whose ".recover" Database > Rebuild uses on a damaged database;
# - zip and unzip, with which the backup window's "Fix" mends a damaged archive.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS
    "libqt6sql6-sqlite, libqt6sql6-psql, gstreamer1.0-plugins-base, gstreamer1.0-plugins-good, fonts-liberation, fonts-dejavu-core, sqlite3, zip, unzip")
# pg_dump and pg_restore back up and restore a clinic's server; libav plays a clinic's own
# movies in older formats; Noto Sans CJK shows Chinese, Japanese and Korean names.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "postgresql-client, gstreamer1.0-libav, fonts-noto-cjk")
# LibreOffice prints the patient instructions document.
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "libreoffice-writer")
include(CPack)
