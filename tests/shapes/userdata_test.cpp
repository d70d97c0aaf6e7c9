// SPDX-License-Identifier: MIT
// User data records and the dialogs that edit them.
#include <tessal/platform/message.h>
#include <tessal/shapes/userdata.h>
#include <tessal/shapes/userdatadialogs.h>

#include <gtest/gtest.h>

#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QTimer>

namespace tessal {
namespace {

TEST(UserData, OrderDuplicatesAndLookups)
{
    TUserData d;
    for (const char *k : {"a", "b", "c"})
        EXPECT_TRUE(d.AddKeyandValue(k, QString::number(k[0] - 'a' + 1)));
    EXPECT_FALSE(d.AddKeyandValue("b", "changed"));
    EXPECT_EQ(d.GetValueByKey("b"), "2");
    EXPECT_TRUE(d.AddKeyandValue("B", "case")); // keys are case-sensitive
    EXPECT_EQ(d.GetCount(), 4);
    EXPECT_TRUE(d.DeleteRecordByKey("B"));

    EXPECT_TRUE(d.DeleteRecordByKey("b"));
    EXPECT_EQ(d.Records(), (std::vector<TUserDataRecord>{{"a", "1"}, {"c", "3"}}));
    EXPECT_FALSE(d.DeleteRecordByKey("b"));
    EXPECT_FALSE(d.ChangeValueByKey("zz", "x"));
    EXPECT_TRUE(d.ChangeValueByKey("c", "33"));
    EXPECT_EQ(d.GetValueByKey("c") + d.GetValueByKey("missing"), "33");

    EXPECT_EQ(QStringList({d.GetKeyByNo(-1), d.GetKeyByNo(1), d.GetKeyByNo(2)}),
              (QStringList{"", "c", ""}));
}

TEST(UserData, RenameToExistingKeyMakesDuplicateAndLookupsFindTheFirst)
{
    TUserData d;
    d.AddKeyandValue("x", "first");
    d.AddKeyandValue("y", "second");
    EXPECT_FALSE(d.ReNameKey("nope", "x"));
    EXPECT_TRUE(d.ReNameKey("y", "x"));
    EXPECT_EQ(d.GetValueByKey("x"), "first");
    EXPECT_TRUE(d.ChangeValueByKey("x", "new"));
    EXPECT_EQ(d.Records(), (std::vector<TUserDataRecord>{{"x", "new"}, {"x", "second"}}));
    EXPECT_TRUE(d.DeleteRecordByKey("x"));
    EXPECT_EQ(d.Records(), (std::vector<TUserDataRecord>{{"x", "second"}}));

    // Records set wholesale keep their duplicates; Assign copies and ClearAll empties.
    d.SetUserDataRecord({{"k", "1"}, {"k", "2"}, {"j", "3"}});
    TUserData copy;
    copy.AddKeyandValue("old", "gone");
    copy.Assign(d);
    EXPECT_EQ(copy.Records(), d.Records());
    copy.ClearAll();
    EXPECT_EQ(copy.GetCount(), 0);
}

// Collects what the component shows as messages while alive.
class MessageCapture
{
public:
    MessageCapture()
        : m_Previous(SetMessageHandler([this](const QString &t) { Messages << t; }))
    {}
    ~MessageCapture() { SetMessageHandler(m_Previous); }
    QStringList Messages;

private:
    TMessageHandler m_Previous;
};

QPushButton *Button(QWidget &w, const char *name)
{
    auto *b = w.findChild<QPushButton *>(QLatin1String(name));
    EXPECT_NE(b, nullptr) << name;
    return b;
}

QStringList Rows(const TUserKeyFrm &f)
{
    QStringList out;
    for (int i = 0; i < f.RowCount(); ++i)
        out << f.KeyAt(i) + "=" + f.ValueAt(i);
    return out;
}

TEST(UserKeyFrm, LayoutAndRowCommandsWithoutSelectionComplain)
{
    TUserKeyFrm form;
    EXPECT_EQ(form.windowTitle(), "Key and Value Editor");
    auto *list = form.findChild<QTableWidget *>("lvKeyValue");
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->horizontalHeaderItem(1)->text(), "Value");
    EXPECT_EQ(list->selectionBehavior(), QAbstractItemView::SelectRows);
    EXPECT_EQ(list->editTriggers(), QAbstractItemView::NoEditTriggers);
    EXPECT_TRUE(Button(form, "OKButton")->isDefault());

    int runs = 0;
    form.SetAddDialogRunner([&](QWidget *, QString &, QString &) { return ++runs, true; });
    form.AppendRow("k", "v");
    MessageCapture capture;
    for (const char *name : {"DeleteButton", "InsertButton", "EditButton"})
        Button(form, name)->click();
    EXPECT_EQ(capture.Messages, QStringList(3, "Please select the Key/Value first."));
    EXPECT_EQ(runs, 0);
    EXPECT_EQ(Rows(form), QStringList{"k=v"});
}

TEST(UserKeyFrm, AddInsertEditDeleteSequence)
{
    TUserKeyFrm form;
    QStringList answers{"a", "1", "b", "2", "c", "3", "edited", "9"};
    QStringList shown; // what the add dialog was filled with
    bool accept = true;
    form.SetAddDialogRunner([&](QWidget *, QString &key, QString &value) {
        shown << key + "|" + value;
        if (!accept)
            return false;
        key = answers.takeFirst();
        value = answers.takeFirst();
        return true;
    });
    QTableWidget *list = form.KeyValueList();
    MessageCapture capture;

    Button(form, "AddButton")->click();
    Button(form, "AddButton")->click();
    EXPECT_EQ(Rows(form), (QStringList{"a=1", "b=2"}));
    list->selectRow(1);
    Button(form, "InsertButton")->click(); // before the selected row
    EXPECT_EQ(Rows(form), (QStringList{"a=1", "c=3", "b=2"}));
    list->clearSelection();
    list->selectRow(0);
    Button(form, "EditButton")->click();
    EXPECT_EQ(Rows(form), (QStringList{"edited=9", "c=3", "b=2"}));
    EXPECT_EQ(shown, (QStringList{"|", "|", "|", "a|1"}));

    accept = false; // a cancelled add dialog changes nothing
    Button(form, "EditButton")->click();
    Button(form, "AddButton")->click();
    EXPECT_EQ(Rows(form), (QStringList{"edited=9", "c=3", "b=2"}));

    list->clearSelection();
    list->selectRow(1);
    Button(form, "DeleteButton")->click();
    EXPECT_EQ(Rows(form), (QStringList{"edited=9", "b=2"}));
    EXPECT_TRUE(capture.Messages.isEmpty());
}

// Runs action on the modal dialog of the given class as soon as it shows.
void WhenModal(const char *className, std::function<void(QWidget *)> action)
{
    QTimer::singleShot(0, [=] {
        QWidget *w = QApplication::activeModalWidget();
        if (!w || !w->inherits(className))
            return WhenModal(className, action);
        action(w);
    });
}

TEST(EditUserData, ModalDialogsRewriteTheRecordsDroppingRepeatedKeys)
{
    TUserData data;
    data.AddKeyandValue("one", "1");
    data.AddKeyandValue("two", "2");

    // The real add dialog, opened by the editor's Add button, adds a row whose key repeats
    // "one"; OK then writes the rows back, and the repeat is dropped.
    WhenModal("tessal::TUserKeyFrm", [](QWidget *editor) {
        auto *form = static_cast<TUserKeyFrm *>(editor);
        EXPECT_EQ(Rows(*form), (QStringList{"one=1", "two=2"}));
        WhenModal("tessal::TUserKeyAddFrm", [form](QWidget *add) {
            EXPECT_EQ(add->windowTitle(), "Add key and value");
            add->findChild<QLineEdit *>("KeyEdit")->setText("one");
            add->findChild<QLineEdit *>("ValueEdit")->setText("again");
            add->findChild<QPushButton *>("OKButton")->click();
        });
        // The click returns once the nested add dialog has closed.
        form->findChild<QPushButton *>("AddButton")->click();
        EXPECT_EQ(Rows(*form), (QStringList{"one=1", "two=2", "one=again"}));
        form->findChild<QPushButton *>("OKButton")->click();
    });
    EXPECT_TRUE(EditUserData(nullptr, data));
    EXPECT_EQ(data.Records(), (std::vector<TUserDataRecord>{{"one", "1"}, {"two", "2"}}));

    // Cancel leaves the data alone even after edits in the list.
    WhenModal("tessal::TUserKeyFrm", [](QWidget *editor) {
        auto *form = static_cast<TUserKeyFrm *>(editor);
        form->KeyValueList()->removeRow(0);
        form->findChild<QPushButton *>("CancelButton")->click();
    });
    EXPECT_FALSE(EditUserData(nullptr, data));
    EXPECT_EQ(data.GetCount(), 2);
}

} // namespace
} // namespace tessal
