#pragma once

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QLineEdit>
#include <QListWidget>
#include <QRadioButton>
#include <QStyleOptionButton>
#include <QTabBar>
#include <QTest>

// What a person does to a dialog's controls, with the mouse and the keys,
// each followed by the events it sets off.
namespace UserActions {

inline void Settle() { QCoreApplication::processEvents(); }

// A click on a button, or on the box or circle of a check box or option button.
inline void Click(QAbstractButton* Button) {
    QPoint At = Button->rect().center();
    const bool IsCheckBox = qobject_cast<QCheckBox*>(Button) != nullptr;
    if (IsCheckBox || qobject_cast<QRadioButton*>(Button) != nullptr) {
        QStyleOptionButton Option;
        Option.initFrom(Button);
        At = Button->style()
                 ->subElementRect(
                     IsCheckBox ? QStyle::SE_CheckBoxIndicator : QStyle::SE_RadioButtonIndicator,
                     &Option, Button)
                 .center();
    }
    QTest::mouseClick(Button, Qt::LeftButton, Qt::NoModifier, At);
    Settle();
}

inline void Type(QLineEdit* Box, const QString& Text) {
    QTest::keyClicks(Box, Text);
    Settle();
}

// Selects all of a text box and types over it.
inline void TypeOver(QLineEdit* Box, const QString& Text) {
    QTest::keyClick(Box, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(Box, Qt::Key_Backspace);
    Type(Box, Text);
}

// Opens a drop-down list with a click, goes to its entry Index with the
// arrow keys and takes it with Enter. (A click on the entry would do, but
// the list ignores a click that comes within a double click's time of its
// opening.)
inline void Choose(QComboBox* Combo, int Index) {
    QTest::mouseClick(Combo, Qt::LeftButton);
    Settle();
    QAbstractItemView* View = Combo->view();
    QTest::keyClick(View, Qt::Key_Home);
    for (int Step = 0; Step < Index; ++Step) {
        QTest::keyClick(View, Qt::Key_Down);
    }
    QTest::keyClick(View, Qt::Key_Return);
    Settle();
}

// A click on a list's line Row.
inline void Click(QListWidget* List, int Row) {
    const QRect Line = List->visualItemRect(List->item(Row));
    QTest::mouseClick(List->viewport(), Qt::LeftButton, Qt::NoModifier, Line.center());
    Settle();
}

// A click on a tab.
inline void Click(QTabBar* Tabs, int Index) {
    QTest::mouseClick(Tabs, Qt::LeftButton, Qt::NoModifier, Tabs->tabRect(Index).center());
    Settle();
}

}  // namespace UserActions
