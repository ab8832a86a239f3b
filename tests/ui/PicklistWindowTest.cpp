#include "ui/PicklistEditorDialog.h"

#include "picklist/PicklistStore.h"
#include "ui/MainWindowRun.h"
#include "ui/WorkspaceWindow.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTreeView>
#include <gtest/gtest.h>

using namespace tarvex;
using tarvex::testing::MainWindowRun;
using tarvex::testing::Opened;

namespace {

struct PicklistRun : MainWindowRun {
    PicklistEditorDialog* Open() {
        window.MenuCommands().Action("mnuEditPicklist")->trigger();
        return Opened<PicklistEditorDialog>(*this);
    }
    QStringList Combo(const QString& tag) {
        QComboBox box;
        box.setProperty("tag", tag);
        QtComboBox combo(&box);
        LoadComboBox(state, combo);
        QStringList items;
        for (int i = 0; i < box.count(); ++i)
            items << box.itemText(i);
        return items;
    }
    // The user clicks the node in the tree.
    static void Click(PicklistEditorDialog* d, const QString& key) {
        QTreeView* view = d->tvwDB;
        view->scrollTo(d->Model().IndexOf(key));
        const QRect rect = view->visualRect(d->Model().IndexOf(key));
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, rect.center());
    }
    // The user renames the chosen node: F2, the text, Return.
    static void Rename(PicklistEditorDialog* d, const QString& text) {
        QTest::keyClick(d->tvwDB, Qt::Key_F2);
        auto* edit = d->tvwDB->viewport()->findChild<QLineEdit*>();
        ASSERT_NE(edit, nullptr);
        edit->selectAll();
        QTest::keyClicks(edit, text);
        QTest::keyClick(edit, Qt::Key_Return);
        // The view commits the text and closes the editor from a queued call.
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    static QString EntryKey(PicklistEditorDialog* d, const QString& list, const QString& text) {
        for (const QString& key : d->Model().ChildKeys(list))
            if (d->Model().NodeText(key) == text)
                return key;
        return {};
    }
};

} // namespace

TEST(PicklistEditorWindow, OpensWithTheTreeAndRenamesAnEntryWithTheKeyboard) {
    PicklistRun r;
    PicklistEditorDialog* d = r.Open();
    ASSERT_NE(d, nullptr);
    EXPECT_EQ(d->windowTitle(), "Edit Picklists");
    EXPECT_TRUE(d->tvwDB->isExpanded(d->Model().IndexOf("Picklist")));
    EXPECT_EQ(d->StatusText(), "");
    const QStringList usage = r.Combo("Usage");
    ASSERT_FALSE(usage.isEmpty());
    d->tvwDB->expand(d->Model().IndexOf("Usage"));
    const QString key = PicklistRun::EntryKey(d, "Usage", usage[0]);
    PicklistRun::Click(d, key);
    EXPECT_EQ(d->StatusText(), "Picklist\\Usage\\" + usage[0]);
    PicklistRun::Rename(d, "Every morning before breakfast");
    EXPECT_EQ(d->Model().NodeText(key), "Every morning before"); // cut to 20
    // A list's name cannot be edited.
    PicklistRun::Click(d, "Usage");
    QTest::keyClick(d->tvwDB, Qt::Key_F2);
    EXPECT_EQ(d->tvwDB->viewport()->findChild<QLineEdit*>(), nullptr);

    QDir().mkpath(TARVEX_SCREENSHOT_DIR);
    d->grab().save(QStringLiteral(TARVEX_SCREENSHOT_DIR) + "/picklist-editor.png");
    d->Button("OK")->click();
    QStringList expected = usage;
    expected[0] = "Every morning before";
    EXPECT_EQ(r.Combo("Usage"), expected);
}

TEST(PicklistEditorWindow, AddOnAProviderListThenTypingKeepsFortyCharacters) {
    PicklistRun r;
    PicklistEditorDialog* d = r.Open();
    const QStringList providers = r.Combo("Provider");
    PicklistRun::Click(d, "Provider");
    d->Button("Add")->click();
    const QString added = d->Model().SelectedKey();
    EXPECT_EQ(d->Model().NodeText(added), "Enter Name");
    EXPECT_EQ(d->StatusText(), "Picklist\\Provider"); // the path of the node clicked
    PicklistRun::Rename(d, "Dr. Maria Fernanda Gonzalez-Oyelaran, DPT, OCS");
    EXPECT_EQ(d->Model().NodeText(added).size(), 40);
    d->Button("OK")->click();
    EXPECT_EQ(
        r.Combo("Provider"),
        providers +
            QStringList({QString("Dr. Maria Fernanda Gonzalez-Oyelaran, DPT, OCS").left(40)}));
}

TEST(PicklistEditorWindow, EscTheCloseBoxAndCancelDropEveryChange) {
    PicklistRun r;
    const QStringList usage = r.Combo("Usage");
    for (int way = 0; way < 3; ++way) {
        PicklistEditorDialog* d = r.Open();
        d->tvwDB->expand(d->Model().IndexOf("Usage"));
        PicklistRun::Click(d, PicklistRun::EntryKey(d, "Usage", usage[0]));
        d->Button("Delete")->click();
        d->Button("Add")->click();
        QPointer<PicklistEditorDialog> watched = d;
        if (way == 0)
            QTest::keyClick(d, Qt::Key_Escape);
        else if (way == 1)
            d->close();
        else
            d->Button("Cancel")->click();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        EXPECT_TRUE(watched.isNull()) << way;
        EXPECT_EQ(r.Combo("Usage"), usage) << way;
    }
}

TEST(PicklistEditorWindow, TheWorkspaceKeepsItsCombosUntilItIsLoadedAgain) {
    PicklistRun r;
    const int before = r.window.Workspace()->UsageBox()->count();
    PicklistEditorDialog* d = r.Open();
    PicklistRun::Click(d, "Usage");
    d->Button("Add")->click();
    d->Button("OK")->click();
    EXPECT_EQ(r.Combo("Usage").size(), before + 1);
    EXPECT_EQ(r.window.Workspace()->UsageBox()->count(), before);
}
