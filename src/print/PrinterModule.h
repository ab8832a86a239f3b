#pragma once

#include "print/PageSurface.h"
#include "shell/AppState.h"

#include <QStringList>
#include <cstdint>

namespace tarvex {

// The drawing helpers that every sheet shares. Lengths are twips of the current scale:
// an inch is PrintState::InchTwips, and the fixed line steps are multiplied by PrintScale.

// A length of the page in inches: InchTwips times inches, rounded (ties to even) into
// 16 bits; out of range is an OverflowFault.
int16_t InchesToTwips(const PrintState& print, double inches);
// A fixed length in twips at the current scale, not rounded.
double ScaledTwips(const PrintState& print, double twips);
// A font size in points at the current scale.
double ScaledPoints(const PrintState& print, double points);

// Sets the surface's orientation and the page size in inches: 8.5 x 11 for kPortrait,
// 11 x 8.5 for any other value.
void SetPageOrientation(PageSurface& surface, PrintState& print, int orientation);

void CenterCurrentX(PageSurface& surface, const PrintState& print, const QString& text);
void RightAlignCurrentX(PageSurface& surface, const PrintState& print, const QString& text);
void PrintCenter(PageSurface& surface, const PrintState& print, const QString& text);
void PrintCenterLine(PageSurface& surface, const PrintState& print, const QString& text);
void PrintRight(PageSurface& surface, const PrintState& print, const QString& text);
// "Arial" at 12 points, 0.5 inch down, the text centred; stays on the line.
void PrintPageTitle(PageSurface& surface, const PrintState& print, const QString& text);

void NextLine(PageSurface& surface, const PrintState& print);               // 220 twips
void SkipLines(PageSurface& surface, const PrintState& print, float n);     // 220 twips each
void NextWideLine(PageSurface& surface, const PrintState& print);           // 260 twips
void SkipWideLines(PageSurface& surface, const PrintState& print, float n); // 240 twips each

// Cuts a text at every CR LF. The empty text gives no line, a trailing CR LF no further
// line; an empty line inside the text is kept.
QStringList SplitTextLines(const QString& text);
// Each line at x, ending the line: the step is the surface's own line height.
// A text of several lines with every line break as CR LF: a lone LF, as an older box may
// have stored it, is a break too.
QString WithStoredLineBreaks(const QString& text);

void PrintTextBlock(PageSurface& surface, double x, const QString& text);
// Each line at x, then NextLine: a fixed step of 220 twips.
void PrintTextBlockSpaced(PageSurface& surface, const PrintState& print, double x,
                          const QString& text);

// The symbol font and its three characters.
inline constexpr const char* kSymbolFont = "Wingdings";
inline constexpr char16_t kTickedBoxCode = 254;
inline constexpr char16_t kEmptyBoxCode = 111;
inline constexpr char16_t kArrowCode = 231;
void PrintCheckBox(PageSurface& surface, bool checked);
void PrintArrow(PageSurface& surface);

// Loads the bare file name from the pictures folder and paints it into the box. A missing
// or unreadable picture leaves the box empty.
void PrintPicture(PageSurface& surface, const MediaPaths& media, const QString& file, double x,
                  double y, double width, double height);
// A light grey band behind a heading at y, from x1 to x2, drawn before the heading.
void PrintShadedBand(PageSurface& surface, double x1, double x2, double y);

// The maker's notice, right-aligned at the foot of the page.
QString MakerNotice();
double FooterY(const PageSurface& surface, const PrintState& print);
// The foot of the page with the maker's notice only, in "Arial" at 10 points.
void PrintSmallNotice(PageSurface& surface, const PrintState& print);
// The foot of the page: the call-to-order lines when Preferences.PrintCallTVX is set, then
// the maker's notice; in the font of what was drawn last.
void PrintPageFooter(PageSurface& surface, const AppState& state);

// Position (1-based) of the first character at or after start that is one of breakChars;
// 0 if none.
int FindBreakChar(int start, const QString& text, const QString& breakChars);
// Ends the line first (back to left) if the token would end strictly right of left + width.
void PrintWrappedToken(PageSurface& surface, const QString& token, double left, double width);
// Prints the text in the column, breaking after blanks and hyphens.
void PrintWrappedText(PageSurface& surface, const QString& text, double left, double width);

} // namespace tarvex
