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

using TRecords = std::vector<TUserDataRecord>;

TEST(UserData, OrderDuplicatesRenamesAndLookups)
{
    TUserData d;
    for (const char *k : {"a", "b", "c"})
        EXPECT_TRUE(d.AddKeyandValue(k, QString::number(k[0] - 'a' + 1)));
    EXPECT_FALSE(d.AddKeyandValue("b", "changed"));
    EXPECT_TRUE(d.AddKeyandValue("B", "case")); // keys are case-sensitive
    EXPECT_EQ(d.GetCount(), 4);
    EXPECT_TRUE(d.DeleteRecordByKey("B"));
    EXPECT_TRUE(d.DeleteRecordByKey("b"));
    EXPECT_EQ(d.Records(), (TRecords{{"a", "1"}, {"c", "3"}}));
    EXPECT_FALSE(d.DeleteRecordByKey("b"));
    EXPECT_FALSE(d.ChangeValueByKey("zz", "x"));
    EXPECT_EQ(d.GetValueByKey("c") + d.GetValueByKey("missing"), "3");
    EXPECT_EQ(QStringList({d.GetKeyByNo(-1), d.GetKeyByNo(1), d.GetKeyByNo(2)}),
              (QStringList{"", "c", ""}));

    // Renaming onto an existing key makes a duplicate; look-ups find the first.
    EXPECT_FALSE(d.ReNameKey("nope", "a"));
    EXPECT_TRUE(d.ReNameKey("c", "a"));
    EXPECT_EQ(d.GetValueByKey("a"), "1");
    EXPECT_TRUE(d.ChangeValueByKey("a", "new"));
    EXPECT_TRUE(d.DeleteRecordByKey("a"));
    EXPECT_EQ(d.Records(), (TRecords{{"a", "3"}}));

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

void Click(QWidget *w, const char *name)
{
    auto *b = w->findChild<QPushButton *>(QLatin1String(name));
    ASSERT_NE(b, nullptr) << name;
    b->click();
}

QStringList Rows(const TUserKeyFrm &f)
{
    QStringList out;
    for (int i = 0; i < f.RowCount(); ++i)
        out << f.KeyAt(i) + "=" + f.ValueAt(i);
    return out;
}

// Add, insert before the selected row, edit, a cancelled add dialog, delete; the row
// commands without a selection only complain.
TEST(UserKeyFrm, RowCommandsInSequence)
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
    TUserKeyFrm idle;
    idle.AppendRow("k", "v");
    for (const char *name : {"DeleteButton", "InsertButton", "EditButton"})
        Click(&idle, name);
    EXPECT_EQ(capture.Messages, QStringList(3, "Please select the Key/Value first."));
    EXPECT_EQ(Rows(idle), QStringList{"k=v"});
    Click(&form, "AddButton");
    Click(&form, "AddButton");
    EXPECT_EQ(Rows(form), (QStringList{"a=1", "b=2"}));
    list->selectRow(1);
    Click(&form, "InsertButton");
    EXPECT_EQ(Rows(form), (QStringList{"a=1", "c=3", "b=2"}));
    list->clearSelection();
    list->selectRow(0);
    Click(&form, "EditButton");
    EXPECT_EQ(Rows(form), (QStringList{"edited=9", "c=3", "b=2"}));
    EXPECT_EQ(shown, (QStringList{"|", "|", "|", "a|1"}));

    accept = false;
    Click(&form, "EditButton");
    Click(&form, "AddButton");
    EXPECT_EQ(Rows(form), (QStringList{"edited=9", "c=3", "b=2"}));
    list->clearSelection();
    list->selectRow(1);
    Click(&form, "DeleteButton");
    EXPECT_EQ(Rows(form), (QStringList{"edited=9", "b=2"}));
    EXPECT_EQ(capture.Messages.size(), 3); // no further complaint
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
        WhenModal("tessal::TUserKeyAddFrm", [](QWidget *add) {
            add->findChild<QLineEdit *>("KeyEdit")->setText("one");
            add->findChild<QLineEdit *>("ValueEdit")->setText("again");
            Click(add, "OKButton");
        });
        // The click returns once the nested add dialog has closed.
        Click(form, "AddButton");
        EXPECT_EQ(Rows(*form), (QStringList{"one=1", "two=2", "one=again"}));
        Click(form, "OKButton");
    });
    EXPECT_TRUE(EditUserData(nullptr, data));
    EXPECT_EQ(data.Records(), (TRecords{{"one", "1"}, {"two", "2"}}));

    // Cancel leaves the data alone even after edits in the list.
    WhenModal("tessal::TUserKeyFrm", [](QWidget *editor) {
        static_cast<TUserKeyFrm *>(editor)->KeyValueList()->removeRow(0);
        Click(editor, "CancelButton");
    });
    EXPECT_FALSE(EditUserData(nullptr, data));
    EXPECT_EQ(data.GetCount(), 2);
}

} // namespace
} // namespace tessal
