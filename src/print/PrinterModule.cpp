#include "print/PrinterModule.h"

#include "support/Numbers.h"
#include "support/Pictures.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <cmath>

namespace tarvex {

namespace {

constexpr double kLineStep = 220.0;
constexpr double kWideLineStep = 260.0;
constexpr double kWideSkipStep = 240.0;

double PageWidthTwips(const PrintState& print) {
    return print.InchTwips * print.PageWidthInches;
}

// The picture file in its folder; a name that differs only in case is found as well.
QString FindPictureFile(const QString& folder, const QString& file) {
    const QString exact = folder + file;
    if (QFileInfo::exists(exact))
        return exact;
    const QDir dir(folder);
    for (const QString& entry : dir.entryList(QDir::Files)) {
        if (entry.compare(file, Qt::CaseInsensitive) == 0)
            return dir.filePath(entry);
    }
    return QString();
}

// Whether a JPEG file runs from its start marker through its end marker. The decoder reads a
// file cut off in its picture data without an error and greys out what is missing; such a
// file is broken all the same. The segments are stepped over by their lengths, the picture
// data after each scan byte by byte up to the next marker.
bool JpegIsComplete(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray data = file.readAll();
    const auto at = [&data](qsizetype i) { return static_cast<uchar>(data.at(i)); };
    if (data.size() < 2 || at(0) != 0xFF || at(1) != 0xD8)
        return false;
    qsizetype i = 2;
    while (i < data.size()) {
        if (at(i) != 0xFF) {
            ++i; // picture data
            continue;
        }
        while (i < data.size() && at(i) == 0xFF)
            ++i; // fill bytes
        if (i >= data.size())
            return false;
        const uchar marker = at(i++);
        if (marker == 0xD9)
            return true; // end of the picture
        if (marker == 0x00 || marker == 0x01 || (marker >= 0xD0 && marker <= 0xD7))
            continue; // a stuffed byte or a marker without length
        if (i + 2 > data.size())
            return false;
        const qsizetype length = (qsizetype(at(i)) << 8) | at(i + 1);
        if (length < 2)
            return false;
        i += length;
    }
    return false;
}

} // namespace

int16_t InchesToTwips(const PrintState& print, double inches) {
    return ToInt16(print.InchTwips * inches);
}

double ScaledTwips(const PrintState& print, double twips) {
    return twips * print.PrintScale;
}

double ScaledPoints(const PrintState& print, double points) {
    return points * print.PrintScale;
}

void SetPageOrientation(PageSurface& surface, PrintState& print, int orientation) {
    surface.SetOrientation(orientation == kPortrait ? kPortrait : kLandscape);
    if (orientation == kPortrait) {
        print.PageWidthInches = 8.5;
        print.PageHeightInches = 11.0;
    } else {
        print.PageWidthInches = 11.0;
        print.PageHeightInches = 8.5;
    }
}

void CenterCurrentX(PageSurface& surface, const PrintState& print, const QString& text) {
    surface.SetCurrentX((PageWidthTwips(print) - surface.TextWidth(text)) / 2.0);
}

void RightAlignCurrentX(PageSurface& surface, const PrintState& print, const QString& text) {
    surface.SetCurrentX(PageWidthTwips(print) - surface.TextWidth(text) - print.MarginTwips);
}

void PrintCenter(PageSurface& surface, const PrintState& print, const QString& text) {
    CenterCurrentX(surface, print, text);
    surface.Print(text);
}

void PrintCenterLine(PageSurface& surface, const PrintState& print, const QString& text) {
    CenterCurrentX(surface, print, text);
    surface.PrintLine(text);
}

void PrintRight(PageSurface& surface, const PrintState& print, const QString& text) {
    RightAlignCurrentX(surface, print, text);
    surface.Print(text);
}

void PrintPageTitle(PageSurface& surface, const PrintState& print, const QString& text) {
    surface.SetFontName(QStringLiteral("Arial"));
    surface.SetFontSize(ScaledPoints(print, 12));
    surface.SetCurrentY(InchesToTwips(print, 0.5));
    PrintCenter(surface, print, text);
}

void NextLine(PageSurface& surface, const PrintState& print) {
    surface.SetCurrentY(surface.CurrentY() + ScaledTwips(print, kLineStep));
}

void SkipLines(PageSurface& surface, const PrintState& print, float n) {
    surface.SetCurrentY(surface.CurrentY() + ScaledTwips(print, kLineStep) * n);
}

void NextWideLine(PageSurface& surface, const PrintState& print) {
    surface.SetCurrentY(surface.CurrentY() + ScaledTwips(print, kWideLineStep));
}

void SkipWideLines(PageSurface& surface, const PrintState& print, float n) {
    surface.SetCurrentY(surface.CurrentY() + ScaledTwips(print, kWideSkipStep) * n);
}

QStringList SplitTextLines(const QString& text) {
    QStringList lines;
    const QString crlf = QStringLiteral("\r\n");
    qsizetype start = 0;
    while (start < text.size()) {
        const qsizetype end = text.indexOf(crlf, start);
        if (end < 0) {
            lines.append(text.mid(start));
            break;
        }
        lines.append(text.mid(start, end - start));
        start = end + crlf.size();
    }
    return lines;
}

QString WithStoredLineBreaks(const QString& text) {
    QString out;
    out.reserve(text.size() + 8);
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text.at(i) == u'\n' && (i == 0 || text.at(i - 1) != u'\r'))
            out += u'\r';
        out += text.at(i);
    }
    return out;
}

void PrintTextBlock(PageSurface& surface, double x, const QString& text) {
    for (const QString& line : SplitTextLines(text)) {
        surface.SetCurrentX(x);
        surface.PrintLine(line);
    }
}

void PrintTextBlockSpaced(PageSurface& surface, const PrintState& print, double x,
                          const QString& text) {
    for (const QString& line : SplitTextLines(text)) {
        surface.SetCurrentX(x);
        surface.Print(line);
        NextLine(surface, print);
    }
}

namespace {

void PrintSymbol(PageSurface& surface, char16_t code) {
    const QString remembered = surface.FontName();
    surface.SetFontName(QString::fromLatin1(kSymbolFont));
    surface.Print(QString(QChar(code)));
    surface.SetFontName(remembered);
}

} // namespace

void PrintCheckBox(PageSurface& surface, bool checked) {
    PrintSymbol(surface, checked ? kTickedBoxCode : kEmptyBoxCode);
}

void PrintArrow(PageSurface& surface) {
    PrintSymbol(surface, kArrowCode);
}

void PrintPicture(PageSurface& surface, const MediaPaths& media, const QString& file, double x,
                  double y, double width, double height) {
    // Any failure here leaves the box empty: the sheet goes on without the picture.
    try {
        if (file.isEmpty())
            return;
        const QString path = FindPictureFile(media.Picture, file);
        if (path.isEmpty())
            return;
        QImageReader reader(path);
        if (reader.format() == "jpeg" && !JpegIsComplete(path))
            return;
        // Decoded at the size of its box on the page, whatever the size of the photo.
        const double perTwip = surface.PixelsPerTwip();
        const QImage picture =
            ReadPictureAtMost(reader, QSize(static_cast<int>(std::ceil(width * perTwip)),
                                            static_cast<int>(std::ceil(height * perTwip))));
        if (picture.isNull())
            return;
        surface.PaintPicture(picture, x, y, width, height);
    } catch (...) {
    }
}

void PrintShadedBand(PageSurface& surface, double x1, double x2, double y) {
    const double h = surface.TextHeight(QStringLiteral("X"));
    surface.FillBox(x1, y - h / 8.0, x2, y + h + h / 16.0, QColor(0xE0, 0xE0, 0xE0));
}

QString MakerNotice() {
    return QStringLiteral("Copyright 1995-99 Tarvex, Inc. All rights reserved.");
}

double FooterY(const PageSurface& surface, const PrintState& print) {
    return print.InchTwips * print.PageHeightInches -
           3.0 * surface.TextHeight(QStringLiteral("X")) - print.InchTwips * 0.5;
}

void PrintSmallNotice(PageSurface& surface, const PrintState& print) {
    surface.SetCurrentY(FooterY(surface, print));
    surface.SetFontName(QStringLiteral("Arial"));
    surface.SetFontSize(ScaledPoints(print, 10));
    PrintRight(surface, print, MakerNotice());
}

void PrintPageFooter(PageSurface& surface, const AppState& state) {
    const PrintState& print = state.Print;
    surface.SetCurrentY(FooterY(surface, print));
    if (state.Prefs.PrintCallTVX) {
        const QString number = state.TollFreeOrder.isEmpty() ? QString::fromLatin1(kTollFreeOrder)
                                                             : state.TollFreeOrder;
        surface.SetFontBold(true);
        PrintCenterLine(surface, print, QStringLiteral("Call Tarvex, Inc. toll free at ") + number);
        PrintCenterLine(surface, print,
                        QStringLiteral("to order your video tape of this exercise program."));
        surface.SetFontBold(false);
    }
    PrintRight(surface, print, MakerNotice());
}

int FindBreakChar(int start, const QString& text, const QString& breakChars) {
    for (qsizetype i = std::max(start, 1) - 1; i < text.size(); ++i) {
        if (breakChars.contains(text.at(i)))
            return static_cast<int>(i + 1);
    }
    return 0;
}

void PrintWrappedToken(PageSurface& surface, const QString& token, double left, double width) {
    if (surface.CurrentX() + surface.TextWidth(token) > left + width) {
        surface.EndLine();
        surface.SetCurrentX(left);
    }
    surface.Print(token);
}

void PrintWrappedText(PageSurface& surface, const QString& text, double left, double width) {
    const QString breakChars = QStringLiteral(" -");
    surface.SetCurrentX(left);
    int position = 1;
    for (;;) {
        const int brk = FindBreakChar(position, text, breakChars);
        if (brk == 0) {
            PrintWrappedToken(surface, text.mid(position - 1), left, width);
            return;
        }
        PrintWrappedToken(surface, text.mid(position - 1, brk - position + 1), left, width);
        position = brk + 1;
    }
}

} // namespace tarvex
