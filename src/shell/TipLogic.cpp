#include "shell/TipLogic.h"

#include "shell/AppFolder.h"
#include "shell/AppState.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QStringDecoder>
#include <cmath>
#include <memory>

namespace tarvex {

const QString TipLogic::kFileName = QStringLiteral("TIPOFDAY.TXT");
const QString TipLogic::kNotFoundText =
    QStringLiteral("That the TIPOFDAY.TXT file was not found? \n\n"
                   "Create a text file named TIPOFDAY.TXT using NotePad with 1 tip per line. "
                   "Then place it in the same directory as the application. ");

TipLogic::TipLogic(AppState& state, Controls controls, IDesktop& desktop,
                   std::function<double()> random)
    : state_(state), c_(controls), desktop_(desktop), random_(std::move(random)) {}

void TipLogic::Load() {
    c_.chkLoadTipsAtStartup.SetValue(1);
    if (!random_) {
        auto generator = std::make_shared<QRandomGenerator>(
            static_cast<quint32>(QDateTime::currentMSecsSinceEpoch()));
        random_ = [generator] { return generator->generateDouble(); };
    }
    if (!LoadTips(AppPathAndFName(state_, kFileName)))
        c_.lblTipText.SetCaption(kNotFoundText);
}

namespace {

// The text of the file: UTF-8, or, for a file that is not (one saved by an old editor in
// the Windows code page), Latin-1, so that no tip is lost to a bad byte.
QString DecodeTipFile(const QByteArray& bytes) {
    QStringDecoder utf8(QStringDecoder::Utf8);
    QString text = utf8(bytes);
    if (utf8.hasError())
        text = QString::fromLatin1(bytes);
    if (text.startsWith(QChar(0xFEFF)))
        text.remove(0, 1);
    return text;
}

// The lines of a text, as a line-by-line read gives them: "\r\n", "\n" and "\r" end a
// line, and the end of the text after a final line break starts no new one.
QStringList TextLines(const QString& text) {
    QString unified = text;
    unified.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(u'\r', u'\n');
    if (unified.endsWith(u'\n'))
        unified.chop(1);
    if (unified.isEmpty() && !text.contains(u'\n') && !text.contains(u'\r'))
        return {};
    return unified.split(u'\n');
}

} // namespace

bool TipLogic::LoadTips(const QString& fileName) {
    if (fileName.isEmpty() || !QFileInfo(fileName).isFile())
        return false;
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    Tips << TextLines(DecodeTipFile(file.readAll()));
    DoNextTip();
    return true;
}

void TipLogic::DoNextTip() {
    const double pick = random_ ? random_() : 0.0;
    CurrentTip = static_cast<int32_t>(std::floor(pick * static_cast<double>(Tips.size()))) + 1;
    DisplayCurrentTip();
}

void TipLogic::DisplayCurrentTip() {
    if (Tips.isEmpty() || CurrentTip < 1 || CurrentTip > Tips.size())
        return;
    c_.lblTipText.SetCaption(Tips.at(CurrentTip - 1));
}

bool TipLogic::cmdEditTip() {
    return desktop_.OpenDocument(AppPathAndFName(state_, kFileName));
}

void TipLogic::cmdOK() {
    state_.Prefs.ShowTips = c_.chkLoadTipsAtStartup.Value() > 0;
}

} // namespace tarvex
