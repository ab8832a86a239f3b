#pragma once

#include "exercise/SelectionPanes.h"
#include "exercise/SelectionWorkspace.h"

#include <QFileInfo>
#include <QMap>
#include <QStringList>
#include <algorithm>
#include <vector>

namespace tarvex::fakes {

// The upper pane in memory: cells with positions, visibility, captions, and a count of
// the picture files read.
class FakeChoicePane : public IChoicePaneView {
public:
    struct Cell {
        QPoint picture, caption;
        bool visible = false;
        QString caption_text;
        bool blue = false;
        bool hasPicture = false;
    };
    FakeChoicePane() {
        // The design pair exists before any cell is made.
        Cell design;
        design.picture = QPoint(18, 4);
        design.caption = QPoint(16, 56);
        cells.push_back(design);
    }
    int CellCount() const override { return static_cast<int>(cells.size()); }
    void CreateCell(int index) override {
        if (index != CellCount())
            throw std::runtime_error("cells are made in order");
        cells.push_back({});
    }
    void PlaceCell(int i, QPoint picture, QPoint caption) override {
        cells.at(i).picture = picture;
        cells.at(i).caption = caption;
    }
    QPoint PicturePos(int i) const override { return cells.at(i).picture; }
    QPoint CaptionPos(int i) const override { return cells.at(i).caption; }
    void ShowCell(int i, bool v) override { cells.at(i).visible = v; }
    PictureLoad LoadCellPicture(int i, const QString& path) override {
        reads[path] += 1;
        const bool exists = QFileInfo(path).isFile();
        cells.at(i).hasPicture = exists;
        if (failPaths.contains(path))
            return {PictureLoad::Failed, 481, "Invalid picture"};
        return {exists ? PictureLoad::Loaded : PictureLoad::Missing, exists ? 0 : 53, {}};
    }
    void SetCellCaption(int i, const QString& text, bool b) override {
        cells.at(i).caption_text = text;
        cells.at(i).blue = b;
    }
    void SetSurfaceHeight(int h) override { surfaceHeight = h; }
    void SetSurfaceTop(int t) override { surfaceTop = t; }
    int SurfaceTop() const override { return surfaceTop; }
    void SetScrollMax(int m) override {
        scrollMax = m;
        if (scrollValue > m) {
            scrollValue = m;
            SetSurfaceTop(-76 * m);
        }
    }
    int ScrollValue() const override { return scrollValue; }
    void HideSelectedRect() override { selectedRectVisible = false; }
    int TotalReads() const {
        int n = 0;
        for (int r : reads)
            n += r;
        return n;
    }

    std::vector<Cell> cells;
    QMap<QString, int> reads;
    QStringList failPaths;
    int surfaceHeight = 0, surfaceTop = 0, scrollMax = 0, scrollValue = 0;
    bool selectedRectVisible = true;
};

class FakeProgress : public IProgressSink {
public:
    void Init(int m, const QString& t) override {
        maximum = m;
        title = t;
        open = true;
    }
    void Update(int v) override { values.push_back(v); }
    void Destroy() override { open = false; }
    int maximum = -1;
    QString title;
    bool open = false;
    std::vector<int> values;
};

class FakeWorkspaceView : public IWorkspaceView {
public:
    struct Slot {
        QString icon, caption;
        bool blue = false;
        bool filled = false;
    };
    FakeWorkspaceView() : slotList(20) {}
    PictureLoad ShowSlot(int s, const QString& icon, const QString& caption, bool b) override {
        slotList.at(s) = {icon, caption, b, true};
        return {QFileInfo(icon).isFile() ? PictureLoad::Loaded : PictureLoad::Missing, 0, {}};
    }
    void ClearSlot(int s) override {
        slotList.at(s).filled = false;
        slotList.at(s).icon.clear();
        slotList.at(s).caption.clear();
    }
    void SetSlotCaption(int s, const QString& c) override { slotList.at(s).caption = c; }
    int Scroll2Value() const override { return scroll2; }
    void SetScroll2Value(int v) override { scroll2 = v; }
    bool Scroll2Visible() const override { return upperPane; }
    void MarkLibraryPicture(int i) override {
        libraryMark = i;
        slotMark = -1;
    }
    void MarkSlot(int s) override {
        slotMark = s;
        libraryMark = -1;
    }
    void HideSlotMarker() override { slotMark = -1; }
    void ShowProgramControls(bool v) override { programControls = v; }
    void SetVisitCommandsEnabled(bool e) override { visitCommands = e; }
    void ShowUpperPane(bool v) override { upperPane = v; }
    void SetShowAllCaption(const QString& c) override { showAllCaption = c; }
    void SetLowerPaneOffset(int o) override { offsets.push_back(o); }
    void Repaint() override { ++repaints; }
    void OpenParams() override { ++paramsOpened; }
    void OpenProtocolSelection() override { ++protocolOpened; }
    void HideWindow() override { hidden = true; }
    void SetBusy(bool b) override { busy = b; }

    std::vector<Slot> slotList;
    int scroll2 = 2;
    bool upperPane = true;
    int libraryMark = -1, slotMark = -1;
    bool programControls = true, visitCommands = true, hidden = false, busy = false;
    QString showAllCaption = "&Show All";
    std::vector<int> offsets;
    int repaints = 0, paramsOpened = 0, protocolOpened = 0;
};

} // namespace tarvex::fakes
