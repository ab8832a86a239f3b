#pragma once

// In-memory stand-ins for the control interfaces, so that the logic of every window can
// be driven headless and its effects read back.

#include "shell/Shell.h"
#include "shell/Startup.h"
#include "support/Controls.h"
#include "support/Desktop.h"
#include "support/Progress.h"
#include "support/Prompter.h"
#include "support/TreeModel.h"

#include <QFile>
#include <QHash>
#include <QMap>
#include <QStringList>
#include <algorithm>
#include <deque>
#include <functional>
#include <initializer_list>
#include <stdexcept>
#include <vector>

namespace tarvex::fakes {

class FakeCommands : public ICommands {
public:
    void SetEnabled(const QString& key, bool enabled) override { enabled_[key] = enabled; }
    bool IsEnabled(const QString& key) const override { return enabled_.value(key, true); }
    QStringList EnabledOf(const QStringList& keys) const {
        QStringList on;
        for (const QString& key : keys)
            if (IsEnabled(key))
                on << key;
        return on;
    }

private:
    QHash<QString, bool> enabled_;
};

class FakeStatusBar : public IStatusBar {
public:
    void SetPanelText(int panel, const QString& text) override {
        panels[panel] = text;
        ++writes;
    }
    QString PanelText(int panel) const override { return panels.value(panel); }
    void Refresh() override { ++refreshes; }

    QMap<int, QString> panels;
    int writes = 0;
    int refreshes = 0;
};

class FakeTitle : public IWindowTitle {
public:
    explicit FakeTitle(QString initial = QStringLiteral("TVX Regimenter")) : title(initial) {}
    void SetTitle(const QString& t) override { title = t; }
    QString Title() const override { return title; }
    QString title;
};

class FakePrintDialog : public IPrintDialog {
public:
    bool Show() override {
        ++shown;
        return answer;
    }
    bool answer = true;
    int shown = 0;
};

class FakeTextBox : public ITextBox {
public:
    QString Text() const override { return text; }
    void SetText(const QString& t) override { text = t; }
    void SetEnabled(bool e) override { enabled = e; }
    bool IsEnabled() const override { return enabled; }
    void SetCursorPosition(int p) override { cursor = p; }
    QString text;
    bool enabled = true;
    int cursor = -1;
};

class FakeLabel : public ILabel {
public:
    QString Caption() const override { return caption; }
    void SetCaption(const QString& c) override { caption = c; }
    QString caption;
};

class FakeCheckBox : public ICheckBox {
public:
    int Value() const override { return value; }
    void SetValue(int v) override { value = v; }
    int value = 0;
};

class FakeEnableable : public IEnableable {
public:
    void SetEnabled(bool e) override { enabled = e; }
    bool IsEnabled() const override { return enabled; }
    bool enabled = true;
};

// A combo box; with fixedList set it refuses texts that are none of its items.
class FakeComboBox : public IComboBox {
public:
    explicit FakeComboBox(bool fixedList = true, QString tag = {}) : fixed(fixedList), tag(tag) {}
    void Clear() override {
        items.clear();
        text.clear();
    }
    void AddItem(const QString& t) override { items << t; }
    int ListCount() const override { return static_cast<int>(items.size()); }
    QString List(int i) const override { return items.value(i); }
    QString Text() const override { return text; }
    bool SetText(const QString& t) override {
        const int i = IndexOf(t);
        if (i < 0 && fixed)
            return false;
        text = i >= 0 ? items[i] : t;
        return true;
    }
    int ListIndex() const override { return IndexOf(text); }
    void SetListIndex(int i) override { text = items.value(i); }
    QString Tag() const override { return tag; }

    QStringList items;
    QString text;
    bool fixed;
    QString tag;

private:
    int IndexOf(const QString& t) const {
        for (int i = 0; i < items.size(); ++i)
            if (items[i].compare(t, Qt::CaseInsensitive) == 0)
                return i;
        return -1;
    }
};

// A fixed-list combo whose entries carry numbers; the choice is an index, so entries of
// the same text stay apart.
class FakeItemDataCombo : public IItemDataCombo {
public:
    void Clear() override {
        items.clear();
        data.clear();
        index = -1;
    }
    void AddItem(const QString& t, int32_t d) override {
        items << t;
        data.push_back(d);
    }
    int ListCount() const override { return static_cast<int>(items.size()); }
    QString List(int i) const override { return items.value(i); }
    int32_t ItemData(int i) const override {
        if (i < 0 || i >= ListCount())
            throw std::out_of_range("ItemData");
        return data[static_cast<size_t>(i)];
    }
    int ListIndex() const override { return index; }
    void SetListIndex(int i) override { index = i; }

    // What the user does: chooses the entry and raises the click.
    void Choose(int i) {
        index = i;
        if (onClick)
            onClick();
    }
    // The same, by the entry's text (the first of that text).
    void ChooseText(const QString& text) {
        const qsizetype i = items.indexOf(text);
        if (i < 0)
            throw std::runtime_error("no entry " + text.toStdString());
        Choose(static_cast<int>(i));
    }

    QStringList items;
    std::vector<int32_t> data;
    int index = -1;
    std::function<void()> onClick;
};

// A list box; with sorted set it keeps its entries in SortsBefore order, as a list that
// sorts itself does: AddItem then inserts behind the entries that sort equal.
class FakeListBox : public IListBox {
public:
    explicit FakeListBox(QString tag = {}, bool sortedList = false)
        : tag(tag), sorted(sortedList) {}
    void Clear() override {
        items.clear();
        selected.clear();
    }
    void AddItem(const QString& t) override {
        qsizetype at = items.size();
        if (sorted) {
            at = 0;
            while (at < items.size() && !SortsBefore(t, items[at]))
                ++at;
        }
        items.insert(at, t);
        selected.insert(selected.begin() + at, false);
    }
    int ListCount() const override { return static_cast<int>(items.size()); }
    QString List(int i) const override { return items.value(i); }
    bool Selected(int i) const override {
        return i >= 0 && i < static_cast<int>(selected.size()) && selected[i];
    }
    void SetSelected(int i, bool s) override {
        if (i >= 0 && i < static_cast<int>(selected.size()))
            selected[i] = s;
    }
    QString Tag() const override { return tag; }

    // What the user does: selects exactly the given entries and raises the click.
    void Click(std::initializer_list<int> rows) {
        std::fill(selected.begin(), selected.end(), false);
        for (int row : rows)
            SetSelected(row, true);
        if (onClick)
            onClick();
    }
    // The same, naming the entries by their text; a text the list lacks is a test failure.
    void ClickItems(const QStringList& texts) {
        std::fill(selected.begin(), selected.end(), false);
        for (const QString& text : texts) {
            const qsizetype row = items.indexOf(text);
            if (row < 0)
                throw std::runtime_error("no entry " + text.toStdString());
            selected[static_cast<size_t>(row)] = true;
        }
        if (onClick)
            onClick();
    }
    QStringList SelectedItems() const {
        QStringList on;
        for (int i = 0; i < ListCount(); ++i)
            if (Selected(i))
                on << items[i];
        return on;
    }

    QStringList items;
    std::vector<bool> selected;
    QString tag;
    bool sorted = false;
    std::function<void()> onClick;
};

class FakeReportList : public IReportList {
public:
    void Clear() override { rows.clear(); }
    void AddRow(const QString& key, const QStringList& columns) override {
        rows.push_back({key, columns});
    }
    int RowCount() const override { return static_cast<int>(rows.size()); }
    QString Key(int r) const override { return rows.at(r).first; }
    QString Text(int r, int c) const override { return rows.at(r).second.value(c); }
    int SelectedRow() const override { return selectedRow; }
    void SetSelectedRow(int r) override { selectedRow = r; }
    void SortByColumn(int c) override {
        std::stable_sort(rows.begin(), rows.end(), [c](const auto& a, const auto& b) {
            return a.second.value(c).compare(b.second.value(c), Qt::CaseInsensitive) < 0;
        });
        selectedRow = -1;
    }
    std::vector<std::pair<QString, QStringList>> rows;
    int selectedRow = -1;
};

// The tree in memory is the item model the window shows: the logic sees it only through
// ITree either way.
using FakeTree = TreeModel;

class FakePicture : public IPicture {
public:
    bool LoadFile(const QString& path) override {
        loads << path;
        loaded = !path.isEmpty() && QFile::exists(path);
        return loaded;
    }
    void Clear() override { loaded = false; }
    bool HasPicture() const override { return loaded; }
    QStringList loads;
    bool loaded = false;
};

// Answers message boxes from a script, in order, and records every box it was shown.
// A box with no scripted answer left fails the test through an exception.
class ScriptedPrompter : public Prompter {
public:
    struct Box {
        QString text;
        int style;
        QString title;
    };
    Answer MsgBox(const QString& text, int style, const QString& title) override {
        boxes.push_back({text, style, title});
        if (answers.empty())
            throw std::runtime_error("unexpected message box: " + title.toStdString() + ": " +
                                     text.toStdString());
        const Answer a = answers.front();
        answers.pop_front();
        return a;
    }
    std::optional<QString> InputBox(const QString& prompt, const QString& title,
                                    const QString&) override {
        boxes.push_back({prompt, -1, title});
        if (inputs.empty())
            throw std::runtime_error("unexpected input box: " + title.toStdString());
        auto a = inputs.front();
        inputs.pop_front();
        return a;
    }
    std::deque<Answer> answers;
    std::deque<std::optional<QString>> inputs;
    std::vector<Box> boxes;
};

class FakeDesktop : public IDesktop {
public:
    bool OpenDocument(const QString& path) override {
        opened << path;
        return result;
    }
    QStringList opened;
    bool result = false;
};

// The progress window in memory: loaded on first use with the defaults of a fresh window,
// forgotten on unload. calls records what happened to it, in order.
class FakeProgressWindow : public IProgressWindow {
public:
    void SetCaption(const QString& c) override {
        Load();
        caption = c;
        calls << "caption " + c;
    }
    QString Caption() const override { return loaded ? caption : QString(kProgressCaption); }
    void Show() override {
        Load();
        visible = true;
        calls << "show";
    }
    void SetMax(int m) override {
        Load();
        max = m;
        calls << QStringLiteral("max %1").arg(m);
    }
    int Max() const override { return loaded ? max : 100; }
    void SetValue(int v) override {
        Load();
        value = v;
        calls << QStringLiteral("value %1").arg(v);
    }
    int Value() const override { return loaded ? value : 0; }
    void Unload() override {
        loaded = false;
        visible = false;
        calls << "unload";
    }

    bool loaded = false;
    bool visible = false;
    QString caption;
    int max = 100;
    int value = 0;
    int loads = 0;
    QStringList calls;

private:
    void Load() {
        if (loaded)
            return;
        loaded = true;
        ++loads;
        caption = QString(kProgressCaption);
        max = 100;
        value = 0;
        calls << "load";
    }
};

// Records what start-up asked of the windowing side, in order.
class FakeStartupHost : public IStartupHost {
public:
    bool AnotherInstanceRunning() override {
        calls << "instance";
        return anotherInstance;
    }
    void ShowSplash() override { calls << "splash"; }
    void ShowMainWindow() override { calls << "main"; }
    void LoadSelectionWorkspace() override {
        calls << "workspace";
        if (onWorkspace)
            onWorkspace();
    }
    void ShowTip() override { calls << "tip"; }
    void ShowCheckMedia() override { calls << "checkmedia"; }
    bool anotherInstance = false;
    QStringList calls;
    std::function<void()> onWorkspace; // what loading the workspace does, e.g. read the library
};

} // namespace tarvex::fakes
