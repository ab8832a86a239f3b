#include "PoseFile.h"

#include <QFile>
#include <QHash>
#include <QRegularExpression>
#include <QTextStream>

namespace tarvex::media {

bool PoseLine::Has(PropKind kind) const {
    for (const PropItem& p : props)
        if (p.kind == kind)
            return true;
    return false;
}

namespace {

[[noreturn]] void Fail(const QString& where, const QString& what) {
    throw InputError{where + QStringLiteral(": ") + what};
}

// The data lines of a tab-separated file with a header, as (line number, fields).
std::vector<std::pair<int, QStringList>> ReadTsv(const QString& path, const QStringList& header) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        throw InputError{QStringLiteral("%1: cannot read the file").arg(path)};
    QTextStream in(&file);
    std::vector<std::pair<int, QStringList>> rows;
    QString line;
    int number = 0;
    while (in.readLineInto(&line)) {
        ++number;
        const QStringList fields = line.split(u'\t');
        const QString where = QStringLiteral("%1:%2").arg(path).arg(number);
        if (number == 1) {
            if (fields.mid(0, header.size()) != header)
                Fail(where, QStringLiteral("the header must start with: %1")
                                .arg(header.join(QLatin1String(" "))));
            continue;
        }
        if (line.trimmed().isEmpty())
            continue;
        rows.emplace_back(number, fields);
    }
    return rows;
}

const QHash<QString, Point>& Points() {
    static const QHash<QString, Point> points = {
        {"head", Point::Head},     {"lhand", Point::LHand},   {"rhand", Point::RHand},
        {"lelbow", Point::LElbow}, {"relbow", Point::RElbow}, {"lknee", Point::LKnee},
        {"rknee", Point::RKnee},   {"lfoot", Point::LFoot},   {"rfoot", Point::RFoot},
        {"hips", Point::Hips},     {"back", Point::Back},     {"door", Point::Door}};
    return points;
}

Point ParsePoint(const QString& name, const QString& where, bool doorAllowed) {
    const auto it = Points().constFind(name);
    if (it == Points().constEnd() || (*it == Point::Door && !doorAllowed))
        Fail(where, QStringLiteral("unknown point \"%1\"").arg(name));
    return *it;
}

Dofs ParseAngles(const QString& text, const Posture& posture, const QString& where) {
    Dofs dofs = posture.base;
    QStringList seen;
    for (const QString& item :
         text.split(QRegularExpression(QStringLiteral("\\s+")), Qt::SkipEmptyParts)) {
        const qsizetype eq = item.indexOf(u'=');
        const QString joint = item.left(eq);
        if (eq <= 0)
            Fail(where, QStringLiteral("angle \"%1\" is not joint=degrees").arg(item));
        const std::optional<int> dof = JointDof(joint, posture);
        if (!dof)
            Fail(where, QStringLiteral("unknown joint \"%1\"").arg(joint));
        if (seen.contains(joint))
            Fail(where, QStringLiteral("joint \"%1\" is given twice").arg(joint));
        seen << joint;
        bool ok = false;
        const double degrees = item.mid(eq + 1).toDouble(&ok);
        if (!ok || degrees < -360 || degrees > 360)
            Fail(where, QStringLiteral("angle \"%1\" is not a number of degrees").arg(item));
        dofs[*dof] = degrees;
    }
    return dofs;
}

PropItem ParseProp(const QString& text, const QString& where) {
    static const QHash<QString, PropKind> fixed = {
        {"chair", PropKind::Chair}, {"table", PropKind::Table},     {"mat", PropKind::Mat},
        {"wall", PropKind::Wall},   {"counter", PropKind::Counter}, {"step", PropKind::Step},
        {"door", PropKind::Door}};
    static const QHash<QString, PropKind> held = {{"band", PropKind::Band},
                                                  {"towel", PropKind::Towel},
                                                  {"ball", PropKind::Ball},
                                                  {"weight", PropKind::Weight},
                                                  {"pillow", PropKind::Pillow}};
    const qsizetype colon = text.indexOf(u':');
    const QString name = colon < 0 ? text : text.left(colon);
    if (colon < 0) {
        if (fixed.contains(name))
            return {fixed.value(name), std::nullopt, std::nullopt};
        if (held.contains(name))
            Fail(where, QStringLiteral("prop \"%1\" needs a point, as %1:POINT").arg(name));
        Fail(where, QStringLiteral("unknown prop \"%1\"").arg(text));
    }
    if (!held.contains(name))
        Fail(where, QStringLiteral("unknown prop \"%1\"").arg(text));
    const PropKind kind = held.value(name);
    const QStringList points = text.mid(colon + 1).split(u'-');
    const bool two = points.size() == 2;
    if (points.size() > 2 || (kind == PropKind::Band && !two) ||
        (two && kind != PropKind::Band && kind != PropKind::Towel))
        Fail(where, QStringLiteral("prop \"%1\" has the wrong number of points").arg(text));
    PropItem p{kind, ParsePoint(points[0], where, kind == PropKind::Band), std::nullopt};
    if (two)
        p.b = ParsePoint(points[1], where, kind == PropKind::Band);
    return p;
}

ArrowItem ParseArrow(const QString& text, const QString& where) {
    ArrowItem a;
    if (text == QLatin1String("-"))
        return a;
    const qsizetype colon = text.indexOf(u':');
    a.point = ParsePoint(colon < 0 ? text : text.left(colon), where, false);
    if (colon < 0) {
        a.kind = ArrowItem::Kind::Path;
        return a;
    }
    a.kind = ArrowItem::Kind::Push;
    const QString dir = text.mid(colon + 1);
    if (dir == QLatin1String("up"))
        a.dy = 1;
    else if (dir == QLatin1String("down"))
        a.dy = -1;
    else if (dir == QLatin1String("left"))
        a.dx = -1;
    else if (dir == QLatin1String("right"))
        a.dx = 1;
    else
        Fail(where, QStringLiteral("unknown arrow direction \"%1\"").arg(dir));
    return a;
}

} // namespace

std::vector<Exercise> ReadLibrary(const QString& path) {
    const QStringList header = {"ExerciseID", "code", "Desc", "AbbrevDesc"};
    std::vector<Exercise> library;
    QHash<QString, QString> seen;
    for (const auto& [number, f] : ReadTsv(path, header)) {
        const QString where = QStringLiteral("%1:%2").arg(path).arg(number);
        if (f.size() != 17)
            Fail(where, QStringLiteral("%1 fields, expected 17").arg(f.size()));
        bool ok = false;
        f[0].toInt(&ok);
        if (!ok)
            Fail(where, QStringLiteral("exercise number \"%1\" is not a number").arg(f[0]));
        if (seen.contains(f[0]))
            Fail(where, QStringLiteral("exercise %1 is also on %2").arg(f[0], seen.value(f[0])));
        seen.insert(f[0], where);
        library.push_back({f[0], f[2], f[3], {f[10], f[11], f[12]}, f[13] == u"1", where});
    }
    return library;
}

std::vector<ExerciseMedia> ReadPoses(const QString& path, const std::vector<Exercise>& library) {
    std::vector<ExerciseMedia> media;
    QHash<QString, size_t> index;
    for (const Exercise& e : library) {
        index.insert(e.id, media.size());
        media.push_back({e, {}});
    }
    const QStringList header = {"ExerciseID", "View", "Posture", "Angles", "Props", "Arrow"};
    for (const auto& [number, f] : ReadTsv(path, header)) {
        const QString where = QStringLiteral("%1:%2").arg(path).arg(number);
        if (f.size() != 6)
            Fail(where, QStringLiteral("%1 fields, expected 6").arg(f.size()));
        if (!index.contains(f[0]))
            Fail(where, QStringLiteral("exercise \"%1\" is not in the library").arg(f[0]));
        ExerciseMedia& m = media[index.value(f[0])];
        bool ok = false;
        const int view = f[1].toInt(&ok);
        if (!ok || view < 1 || view > 3)
            Fail(where, QStringLiteral("view \"%1\" is not 1, 2 or 3").arg(f[1]));
        if (m.exercise.instruct[view - 1].isEmpty())
            Fail(where, QStringLiteral("exercise %1 has no instruction line for view %2")
                            .arg(f[0])
                            .arg(view));
        if (m.views[view - 1])
            Fail(where, QStringLiteral("exercise %1 view %2 is also on %3")
                            .arg(f[0])
                            .arg(view)
                            .arg(m.views[view - 1]->where));
        PoseLine v;
        v.view = view;
        v.where = where;
        v.posture = FindPosture(f[2]);
        if (!v.posture)
            Fail(where, QStringLiteral("unknown posture \"%1\"").arg(f[2]));
        v.dofs = ParseAngles(f[3], *v.posture, where);
        for (const QString& item : f[4].split(u',', Qt::SkipEmptyParts))
            v.props.push_back(ParseProp(item.trimmed(), where));
        for (const PropItem& p : v.props)
            if ((p.a == Point::Door || p.b == Point::Door) && !v.Has(PropKind::Door))
                Fail(where, QStringLiteral("a band tied to the door needs the prop \"door\""));
        v.arrow = ParseArrow(f[5].trimmed(), where);
        m.views[view - 1] = v;
    }
    for (const ExerciseMedia& m : media) {
        for (int v = 0; v < 3; ++v) {
            if (!m.exercise.instruct[v].isEmpty() && !m.views[v])
                Fail(m.exercise.where, QStringLiteral("exercise %1 view %2 has no line in %3")
                                           .arg(m.exercise.id)
                                           .arg(v + 1)
                                           .arg(path));
            if (m.views[v] && m.views[v]->arrow.kind == ArrowItem::Kind::Path && v == 0 &&
                !m.views[1])
                Fail(m.views[v]->where,
                     QStringLiteral("an arrow that follows a point needs a view 2"));
        }
    }
    return media;
}

} // namespace tarvex::media
