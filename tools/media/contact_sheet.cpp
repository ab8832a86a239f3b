// Puts the delivered media on sheets to look at: every icon with its short description
// (icons.png), and the pictures of a few exercises, all views, with their instruction
// lines (pictures.png).
//
//   tarvex-contact-sheet --bin DIR --library FILE --out DIR [--ids ID,ID...]
//                        [--pictures NAME.png] [--icon-zoom N]

#include "PoseFile.h"

#include <QDir>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <cstdio>

using namespace tarvex::media;

namespace {

QString Option(const QStringList& args, const char* name, const QString& otherwise = {}) {
    const qsizetype at = args.indexOf(QLatin1String(name));
    return at >= 0 && at + 1 < args.size() ? args[at + 1] : otherwise;
}

QImage IconSheet(const std::vector<Exercise>& library, const QDir& bin, int zoom) {
    constexpr int kColumns = 8;
    const int cellW = std::max(61 * zoom + 20, 130), iconH = 46 * zoom, cellH = iconH + 44;
    const int rows = (static_cast<int>(library.size()) + kColumns - 1) / kColumns;
    QImage sheet(kColumns * cellW, rows * cellH + 10, QImage::Format_RGB32);
    sheet.fill(Qt::white);
    QPainter p(&sheet);
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(11);
    p.setFont(font);
    for (size_t i = 0; i < library.size(); ++i) {
        const int x = static_cast<int>(i % kColumns) * cellW;
        const int y = static_cast<int>(i / kColumns) * cellH + 5;
        const QImage icon(bin.filePath(QStringLiteral("ICON/%1.JPG").arg(library[i].id)));
        const QRect target((cellW - 61 * zoom) / 2 + x, y, 61 * zoom, iconH);
        if (icon.isNull()) {
            p.setPen(Qt::red);
            p.drawRect(target);
        } else {
            p.drawImage(target, icon);
        }
        p.setPen(Qt::black);
        p.drawText(QRect(x + 2, y + iconH + 2, cellW - 4, 38), Qt::AlignHCenter | Qt::TextWordWrap,
                   library[i].id + QStringLiteral(" ") + library[i].abbrev);
    }
    return sheet;
}

QImage PictureSheet(const std::vector<const Exercise*>& chosen, const QDir& bin) {
    constexpr int kW = 450, kH = 338, kText = 62, kTitle = 26;
    const int rowH = kTitle + kH + kText + 10;
    QImage sheet(3 * (kW + 12) + 12, static_cast<int>(chosen.size()) * rowH + 10,
                 QImage::Format_RGB32);
    sheet.fill(Qt::white);
    QPainter p(&sheet);
    QFont title(QStringLiteral("DejaVu Sans"));
    title.setPixelSize(16);
    title.setBold(true);
    QFont body(QStringLiteral("DejaVu Sans"));
    body.setPixelSize(12);
    for (size_t r = 0; r < chosen.size(); ++r) {
        const Exercise& e = *chosen[r];
        const int y = static_cast<int>(r) * rowH + 8;
        p.setFont(title);
        p.setPen(Qt::black);
        p.drawText(QPoint(12, y + 18),
                   QStringLiteral("%1  %2%3")
                       .arg(e.id, e.desc, e.hasVideo ? QStringLiteral("  (video)") : QString()));
        for (int v = 0; v < 3; ++v) {
            if (e.instruct[v].isEmpty())
                continue;
            const int x = 12 + v * (kW + 12);
            const QRect frame(x, y + kTitle, kW, kH);
            const QImage picture(
                bin.filePath(QStringLiteral("PICTURE/%1_%2.JPG").arg(e.id).arg(v + 1)));
            if (!picture.isNull())
                p.drawImage(frame, picture);
            p.setPen(QColor(0xbb, 0xbb, 0xbb));
            p.drawRect(frame);
            p.setPen(Qt::black);
            p.setFont(body);
            p.drawText(QRect(x, y + kTitle + kH + 4, kW, kText), Qt::TextWordWrap,
                       QStringLiteral("%1. %2").arg(v + 1).arg(e.instruct[v]));
        }
    }
    return sheet;
}

} // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    const QStringList args = app.arguments();
    const QString binPath = Option(args, "--bin"), libraryPath = Option(args, "--library");
    const QString outPath = Option(args, "--out");
    if (binPath.isEmpty() || libraryPath.isEmpty() || outPath.isEmpty()) {
        std::fprintf(stderr, "usage: tarvex-contact-sheet --bin DIR --library FILE --out DIR "
                             "[--ids ID,...] [--pictures NAME.png] [--icon-zoom N]\n");
        return 2;
    }
    std::vector<Exercise> library;
    try {
        library = ReadLibrary(libraryPath);
    } catch (const InputError& e) {
        std::fprintf(stderr, "error: %s\n", qPrintable(e.message));
        return 1;
    }
    const QDir bin(binPath), out(outPath);
    if (!out.mkpath(QStringLiteral("."))) {
        std::fprintf(stderr, "cannot create %s\n", qPrintable(outPath));
        return 1;
    }
    // A few exercises of different postures unless told which.
    const QStringList ids =
        Option(args, "--ids", QStringLiteral("1,21,88,92,103,385")).split(u',', Qt::SkipEmptyParts);
    std::vector<const Exercise*> chosen;
    for (const QString& id : ids)
        for (const Exercise& e : library)
            if (e.id == id)
                chosen.push_back(&e);
    const int zoom = std::max(1, Option(args, "--icon-zoom", QStringLiteral("1")).toInt());
    const QString icons = out.filePath(QStringLiteral("icons.png"));
    const QString pictures =
        out.filePath(Option(args, "--pictures", QStringLiteral("pictures.png")));
    if (!IconSheet(library, bin, zoom).save(icons, "PNG") ||
        !PictureSheet(chosen, bin).save(pictures, "PNG")) {
        std::fprintf(stderr, "cannot write the sheets in %s\n", qPrintable(outPath));
        return 1;
    }
    std::printf("%s\n%s\n", qPrintable(icons), qPrintable(pictures));
    return 0;
}
