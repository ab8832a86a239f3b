#include "exercise/SelectionPanes.h"

#include "shell/AppState.h"
#include "support/Numbers.h"

#include <algorithm>
#include <cmath>

namespace tarvex {

namespace {

int Rounded(double value) {
    return static_cast<int>(RoundHalfEven(value));
}

} // namespace

SelectionPanes::SelectionPanes(AppState& state, IChoicePaneView& view)
    : state_(state), view_(view) {
    imLeft_ = Rounded(kPictureLeft);
    lbLeft_ = Rounded(kCaptionLeft);
    imTop_ = Rounded(kPictureTop);
    colWidth_ = Rounded(kPictureLeft + kPictureWidth + 1);           // 89
    choiceRowHeight_ = Rounded(kPictureHeight + kCaptionHeight + 1); // 76
    lbTop_ = imTop_ + static_cast<int>(kPictureHeight);              // 57
}

void SelectionPanes::CreateExChoiceControls(IProgressSink& progress) {
    const int count = state_.Library.NumChoices;
    progress.Init(count, QStringLiteral("Loading Exercise Library"));
    for (int i = 0; i < count; ++i) {
        progress.Update(i + 1);
        QPoint picture, caption;
        if (i >= view_.CellCount()) {
            view_.CreateCell(i);
            const int row = i / columns_;
            picture.setY(row * choiceRowHeight_ + imTop_);
            caption.setY(row * choiceRowHeight_ + lbTop_);
        } else {
            // The design pair and cells made before keep their tops.
            picture.setY(view_.PicturePos(i).y());
            caption.setY(view_.CaptionPos(i).y());
        }
        picture.setX((i % columns_) * colWidth_ + imLeft_);
        caption.setX((i % columns_) * colWidth_ + lbLeft_);
        view_.PlaceCell(i, picture, caption);
        view_.ShowCell(i, true);
    }
    made_ = true;
    progress.Destroy();
}

int SelectionPanes::ColumnsFor(double viewportWidth) {
    const int colWidth = Rounded(kPictureLeft + kPictureWidth + 1);
    return std::max(
        kColumns,
        static_cast<int>((viewportWidth - kViewportWidth + kColumns * colWidth) / colWidth));
}

int SelectionPanes::RowsFor(double viewportHeight) {
    const int rowHeight = Rounded(kPictureHeight + kCaptionHeight + 1);
    return std::max(2, static_cast<int>(std::ceil(viewportHeight / rowHeight)));
}

void SelectionPanes::SetGrid(int columns, int rowsInSight) {
    columns = std::max(columns, static_cast<int>(kColumns));
    rowsInSight_ = std::max(rowsInSight, 2);
    if (columns != columns_) {
        columns_ = columns;
        if (!made_)
            return; // the cells are laid out when they are made
        for (int i = 0; i < view_.CellCount(); ++i) {
            const int row = i / columns_;
            const int column = i % columns_;
            view_.PlaceCell(i,
                            QPoint(column * colWidth_ + imLeft_, row * choiceRowHeight_ + imTop_),
                            QPoint(column * colWidth_ + lbLeft_, row * choiceRowHeight_ + lbTop_));
        }
        SizeSourcePane();
        view_.SetSurfaceTop(-(choiceRowHeight_ * view_.ScrollValue()));
    }
    if (made_)
        LoadPictsInSight();
}

void SelectionPanes::SizeSourcePane() {
    const int count = state_.Library.NumChoices;
    pictLoaded_.assign(static_cast<size_t>(count) + 1, false);
    if (count > columns_)
        surfaceHeight_ = Rounded(view_.CaptionPos(count - 1).y() + kCaptionHeight + kPictureTop);
    else
        surfaceHeight_ = kViewportHeight + 1;
    view_.SetSurfaceHeight(surfaceHeight_);
    // Rounded, not cut: ten entries give two, though they fill only two rows.
    scrollMax_ = Rounded((count - 1) / static_cast<double>(columns_));
    view_.SetScrollMax(scrollMax_);
    view_.HideSelectedRect();
    for (int i = 0; i < view_.CellCount(); ++i)
        view_.ShowCell(i, i < count);
}

std::vector<int> SelectionPanes::LoadPictsInSight() {
    const LibraryCache& library = state_.Library;
    const int firstRow = Rounded(-view_.SurfaceTop() / static_cast<double>(choiceRowHeight_));
    const int first = firstRow * columns_;
    const int last =
        std::min(first + rowsInSight_ * columns_ - 1, static_cast<int>(library.NumChoices) - 1);
    // A cache rebuilt without a resize of the pane: everything in it is new.
    if (pictLoaded_.size() != static_cast<size_t>(library.NumChoices) + 1)
        pictLoaded_.assign(static_cast<size_t>(library.NumChoices) + 1, false);
    std::vector<int> loaded;
    for (int i = std::max(first, 0); i <= last; ++i) {
        if (PictLoaded(i))
            continue;
        const ExerciseEntry& entry = library.Entries[static_cast<size_t>(i)];
        const PictureLoad result = view_.LoadCellPicture(i, state_.Media.Icon + entry.Icon);
        if (result.result == PictureLoad::Failed && OnLoadError)
            OnLoadError(
                QStringLiteral("Error%1 %2").arg(result.errorNumber).arg(result.description),
                QStringLiteral("Error in LoadPictsInSight"));
        view_.SetCellCaption(i, entry.AbbrevDesc, !entry.Movie.isEmpty());
        pictLoaded_[static_cast<size_t>(i)] = true;
        loaded.push_back(i);
    }
    return loaded;
}

void SelectionPanes::Scroll1Settled(int value) {
    view_.SetSurfaceTop(-(choiceRowHeight_ * value));
    LoadPictsInSight();
}

void SelectionPanes::Scroll1Dragged(int value) {
    view_.SetSurfaceTop(-(choiceRowHeight_ * value));
}

bool SelectionPanes::PictLoaded(int index) const {
    return index >= 0 && static_cast<size_t>(index) < pictLoaded_.size() &&
           pictLoaded_[static_cast<size_t>(index)];
}

QPoint SelectionPanes::SlotPicturePos(int slot) {
    static const int lefts[] = {18, 108, 196, 284, 372};
    return {lefts[slot % kColumns], 4 + (slot / kColumns) * 80};
}

QPoint SelectionPanes::SlotCaptionPos(int slot) {
    static const int lefts[] = {16, 104, 192, 280, 368};
    return {lefts[slot % kColumns], 58 + (slot / kColumns) * 80};
}

QPoint SelectionPanes::SlotNumberPos(int slot) {
    static const int lefts[] = {4, 94, 182, 270, 358};
    return {lefts[slot % kColumns], 6 + (slot / kColumns) * 80};
}

} // namespace tarvex
